// SPDX-License-Identifier: MIT

// The rules of SVG path text that its reader and its writer share. Not installed.

#ifndef TRAMMEL_SVGPATHGRAMMAR_P_H
#define TRAMMEL_SVGPATHGRAMMAR_P_H

#include "TPoint.h"

#include <cmath>

namespace trammel_detail {

// Characters in ASCII, whatever the locale.

inline bool IsSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f'; }
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// Returns the first control point of a smooth curve: `control` mirrored in `p`. Each coordinate is
/// rounded once.
inline TPoint<double> Reflected(TPoint<double> const& control, TPoint<double> const& p) {
    auto const reflected = [](double c, double at) {
        double const r = 2.0 * at - c;
        return std::isfinite(r) ? r : at + (at - c); // 2 * at alone may be out of range
    };
    return TPoint<double>(reflected(control.h, p.h), reflected(control.v, p.v));
}

} // namespace trammel_detail

#endif
