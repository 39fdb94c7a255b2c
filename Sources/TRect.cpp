// SPDX-License-Identifier: MIT

#include "TRect.h"

#include "Text_p.h"
#include "UHygiene.h"

template <class T> std::string TRect<T>::NSString() const {
    if constexpr (std::is_same_v<T, double>) {
        // Only the double form names itself; readers of existing logs rely on the difference.
        return "TRect<double>::NSString() " +
               trammel_detail::FormatFixed6List({left, top, right, bottom});
    } else {
        return trammel_detail::FormatIntegerList({left, top, right, bottom});
    }
}

template <class T> bool SectTRect(TRect<T> const& a, TRect<T> const& b, TRect<T>& out) {
    TRect<T> sect;
    sect.left = std::max(std::min(a.left, a.right), std::min(b.left, b.right));
    sect.right = std::min(std::max(a.left, a.right), std::max(b.left, b.right));
    sect.top = std::max(std::min(a.top, a.bottom), std::min(b.top, b.bottom));
    sect.bottom = std::min(std::max(a.top, a.bottom), std::max(b.top, b.bottom));
    bool const meet = sect.left <= sect.right && sect.top <= sect.bottom;
    if (!meet) {
        sect.SetNull();
    }
    out = sect;
    return meet;
}

namespace {

/// True when the extents [a1, a2] and [b1, b2], each in either order, meet.
template <class T> bool ExtentsMeet(T a1, T a2, T b1, T b2) {
    T aLo;
    T aHi;
    T bLo;
    T bHi;
    minmax(aLo, aHi, a1, a2);
    minmax(bLo, bHi, b1, b2);
    // Negated, so that an extent that minmax made NaN counts as meeting.
    return !(bLo > aHi) && !(aLo > bHi);
}

} // namespace

template <class T> bool NaiveSectTRect(TRect<T> const& a, TRect<T> const& b) {
    return ExtentsMeet(a.left, a.right, b.left, b.right) &&
           ExtentsMeet(a.top, a.bottom, b.top, b.bottom);
}

bool ValidateRect(TRect<double>& r) {
    return ValidateFloat(r.left) || ValidateFloat(r.top) || ValidateFloat(r.right) ||
           ValidateFloat(r.bottom);
}

template struct TRect<double>;
template struct TRect<short>;
template bool SectTRect<short>(TRect<short> const&, TRect<short> const&, TRect<short>&);
template bool NaiveSectTRect<short>(TRect<short> const&, TRect<short> const&);
template bool NaiveSectTRect<double>(TRect<double> const&, TRect<double> const&);
