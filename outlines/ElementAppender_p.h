// SPDX-License-Identifier: MIT

// Elements appended to a path as they are. Not installed.

#ifndef TRAMMEL_ELEMENTAPPENDER_P_H
#define TRAMMEL_ELEMENTAPPENDER_P_H

#include "CPath.h"
#include "TPoint.h"

#include <algorithm>
#include <cstddef>

namespace trammel_detail {

/// Makes room in a path for more elements, without giving up geometric growth. Without memory it
/// throws std::bad_alloc and leaves the path as it was.
///
/// It also brings up to date what CPath::Transform leaves behind. With the cache of the bounds
/// empty, the next point would become all of the bounds. With an old current point, lines and
/// curves would be compared with a point where they do not begin.
inline void PrepareToAppend(CPath& path, std::size_t codes, std::size_t points) {
    auto const reserve = [](auto& items, std::size_t more) {
        std::size_t const needed = items.size() + more;
        if (needed > items.capacity()) {
            items.reserve(std::max(needed, 2 * items.capacity()));
        }
    };
    reserve(path.mCtls, codes);
    reserve(path.mPts, points);
    path.Bounds();
    if (!path.mPts.empty()) {
        path.mCurrentPt = path.mPts.back();
    }
}

/// Appends elements to a path without the joining rules of its building operations. So lines
/// without length, and curves that end where they start, stay.
class ElementAppender {
public:
    /// Prepares the path; nothing throws afterwards, as long as the room suffices.
    ElementAppender(CPath& path, std::size_t codes, std::size_t points) : mPath(path) {
        PrepareToAppend(path, codes, points);
    }

    void Move(TPoint<double> const& p) {
        mPath.AddCtl(kPathMove).AddPt(p);
        mPath.mOpen = true;
    }
    void Line(TPoint<double> const& p) { mPath.AddCtl(kPathLine).AddPt(p); }
    void Curve(TPoint<double> const& c1, TPoint<double> const& c2, TPoint<double> const& e) {
        mPath.AddCtl(kPathCurve).AddPt(c1).AddPt(c2).AddPt(e);
    }
    void Close() {
        mPath.AddCtl(kPathClose);
        mPath.mOpen = false;
    }

private:
    CPath& mPath;
};

} // namespace trammel_detail

#endif
