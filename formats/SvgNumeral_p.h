// SPDX-License-Identifier: MIT

// The shortest spellings of numbers in SVG path text. Not installed.

#ifndef TRAMMEL_SVGNUMERAL_P_H
#define TRAMMEL_SVGNUMERAL_P_H

#include "TrammelExport.h"

#include <cmath>
#include <cstddef>
#include <string_view>

namespace trammel_detail {

/// True when two finite numbers are equal bit by bit: unlike `==`, it tells 0 from -0.
inline bool Same(double a, double b) { return a == b && std::signbit(a) == std::signbit(b); }

/// The shortest spelling of one number.
struct SvgNumeral {
    char text[32];
    std::size_t length = 0;
    /// True when the numeral has a point or an exponent. A point right after it then begins a new
    /// number.
    bool fraction = false;

    std::string_view View() const { return std::string_view(text, length); }
};

/// Returns the shortest numeral that reads as `value`, which is finite.
/// \param guess the number of decimals, 0 or more, at which the search begins; becomes a number for
///     the next one like this. The numeral does not depend on it.
TRAMMEL_API SvgNumeral AbsoluteNumeral(double value, int& guess);

/// Sets `numeral` to the numeral of fewest digits that gives `to`, bit by bit, when added to
/// `from`. It is the difference, rounded to these digits. Returns false when the difference, as a
/// double, does not give `to` itself. `guess` is as above.
TRAMMEL_API bool FindRelativeNumeral(double from, double to, int& guess, SvgNumeral& numeral);

} // namespace trammel_detail

#endif
