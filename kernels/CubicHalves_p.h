// SPDX-License-Identifier: MIT

// The halving of one cubic, or of several that lie side by side in the lanes of vectors. Not
// installed.

#ifndef TRAMMEL_CUBICHALVES_P_H
#define TRAMMEL_CUBICHALVES_P_H

namespace trammel_detail {

/// The control points that halving gives, in one coordinate of the cubics p0, p1, p2, p3. The left
/// half is p0, left1, left2, middle; the right half is middle, right1, right2, p3. Vector is double
/// or a vector.
///
/// A midpoint is (a + b)·0.5, which has the bits of (a + b)/2.
template <class Vector> struct CubicHalves {
    Vector left1, left2, middle, right1, right2;

    [[gnu::always_inline]] CubicHalves(Vector const& p0, Vector const& p1, Vector const& p2,
                                       Vector const& p3) {
        Vector const half = 0.5;
        Vector const between = (p1 + p2) * half;
        left1 = (p0 + p1) * half;
        right2 = (p2 + p3) * half;
        left2 = (left1 + between) * half;
        right1 = (between + right2) * half;
        middle = (left2 + right1) * half;
    }
};

} // namespace trammel_detail

#endif
