// SPDX-License-Identifier: MIT

#include "Text_p.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace trammel_detail {
namespace {

constexpr int kDecimals = 6;
/// The longest text: sign, all digits of the largest double, point, decimals.
constexpr int kLongestFixed6 =
    1 + (std::numeric_limits<double>::max_exponent10 + 1) + 1 + kDecimals;

void AppendNumber(std::string& text, double value) {
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    char digits[kLongestFixed6];
    std::to_chars_result const end =
        std::to_chars(digits, digits + kLongestFixed6, value, std::chars_format::fixed, kDecimals);
    text.append(digits, end.ptr);
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
