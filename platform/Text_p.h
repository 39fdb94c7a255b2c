// SPDX-License-Identifier: MIT

// Numbers as text, the same in every locale.
#ifndef TRAMMEL_TEXT_P_H
#define TRAMMEL_TEXT_P_H

#include "TrammelExport.h"

#include <initializer_list>
#include <string>

namespace trammel_detail {

/// The value with six decimals and a decimal point, as `%f` writes it in the classic locale: all
/// digits before the point (309 of them for 1e308), rounded to nearest with a tie to the even last
/// digit; "-0.000000" for -0 and for small negative values. NaN of either sign is "nan", the
/// infinities are "inf" and "-inf". Throws std::bad_alloc when memory is short.
TRAMMEL_API std::string FormatFixed6(double value);

/// The values, each by FormatFixed6, in braces: "{1.000000, 2.500000}". "{}" for none.
TRAMMEL_API std::string FormatFixed6List(std::initializer_list<double> values);

/// The values in decimal, in braces: "{1, -2}". "{}" for none.
TRAMMEL_API std::string FormatIntegerList(std::initializer_list<int> values);

} // namespace trammel_detail

#endif
