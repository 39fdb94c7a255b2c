// SPDX-License-Identifier: MIT

#include "Text_p.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <string_view>

namespace trammel_detail {
namespace {

constexpr int kDecimals = 6;
/// The longest text: sign, all digits of the largest double, point, decimals.
constexpr int kLongestFixed6 =
    1 + (std::numeric_limits<double>::max_exponent10 + 1) + 1 + kDecimals;
/// More for the C library: a point of some bytes, and an end.
constexpr int kRoom = kLongestFixed6 + 16;

void AppendNumber(std::string& text, double value) {
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    char digits[kRoom];
#ifdef __cpp_lib_to_chars
    std::to_chars_result const end =
        std::to_chars(digits, digits + kRoom, value, std::chars_format::fixed, kDecimals);
    text.append(digits, end.ptr);
#else
    // Some C++ libraries cannot do that. The C library's text has the locale's point, of one or
    // more bytes, in front of the decimals.
    int const length = std::snprintf(digits, sizeof digits, "%.*f", kDecimals, value);
    std::string_view const written(digits, static_cast<std::size_t>(length));
    std::size_t const whole = written.find_first_not_of("-0123456789");
    if (!std::isfinite(value)) {
        text += written;
    } else {
        text += written.substr(0, whole);
        text += '.';
        text += written.substr(written.size() - kDecimals);
    }
#endif
}

void AppendNumber(std::string& text, int value) { text += std::to_string(value); }

template <class T> std::string FormatList(std::initializer_list<T> values) {
    std::string text = "{";
    for (T const value : values) {
        if (text.size() > 1) {
            text += ", ";
        }
        AppendNumber(text, value);
    }
    text += '}';
    return text;
}

} // namespace

std::string FormatFixed6(double value) {
    std::string text;
    AppendNumber(text, value);
    return text;
}

std::string FormatFixed6List(std::initializer_list<double> values) { return FormatList(values); }

std::string FormatIntegerList(std::initializer_list<int> values) { return FormatList(values); }

} // namespace trammel_detail
