// SPDX-License-Identifier: MIT

#include "TPoint.h"

#include "Hypot_p.h"
#include "Text_p.h"

double trammel_detail::LengthOf(double h, double v) noexcept { return Hypot(h, v); }

template <class T> std::string TPoint<T>::NSString() const {
    if constexpr (std::is_same_v<T, double>) {
        return trammel_detail::FormatFixed6List({h, v});
    } else {
        return trammel_detail::FormatIntegerList({h, v});
    }
}

template struct TPoint<double>;
template struct TPoint<short>;
