// SPDX-License-Identifier: MIT

// Numbers as text, the same in every locale. Not installed.

#ifndef TRAMMEL_TEXT_P_H
#define TRAMMEL_TEXT_P_H

#include "TrammelExport.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace trammel_detail {

/// Returns the value with six decimals and a decimal point, as `%f` writes it in the classic
/// locale.
///
/// All digits before the point are written (309 of them for 1e308). The exact value is rounded to
/// nearest, a tie to the even last digit. -0 and small negative values give "-0.000000". NaN of
/// either sign is "nan", the infinities are "inf" and "-inf". Throws std::bad_alloc when memory is
/// short.
TRAMMEL_API std::string FormatFixed6(double value);

/// Returns the values, each by FormatFixed6, in braces: "{1.000000, 2.500000}"; "{}" for none.
TRAMMEL_API std::string FormatFixed6List(std::initializer_list<double> values);

/// Returns the values in decimal, in braces: "{1, -2}"; "{}" for none.
TRAMMEL_API std::string FormatIntegerList(std::initializer_list<int> values);

/// Room for a numeral of the functions below.
inline constexpr std::size_t kNumeralRoom = 40;

/// Writes a finite value as "-d.ddde-xx" with that many decimals (0 to 17), or with the fewest
/// digits that read as the value. Returns the end.
char* WriteScientific(char* to, double value, int decimals);
char* WriteScientific(char* to, double value);

/// Writes the value with the fewest digits that read as it, plain or scientific, whichever is
/// shorter. Returns the end.
char* WriteShortest(char* to, double value);

/// Returns the double nearest to a numeral of digits with or without sign '-', point and exponent:
/// infinity where it is too great, and 0 where it is too small. May throw std::bad_alloc.
double ReadNumeral(std::string_view numeral);

} // namespace trammel_detail

#endif
