// SPDX-License-Identifier: MIT

// The numerals of SVG path text by the standard library alone: each is what std::to_chars writes
// with the fewest digits, respelled.

#ifndef TRAMMEL_PLAINNUMERAL_H
#define TRAMMEL_PLAINNUMERAL_H

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

namespace plain {

/// Respells "-d.ddde-xx" without superfluous zeros, point, sign or exponent.
inline std::string Respelled(std::string_view scientific) {
    std::string out;
    auto const put = [&](char c) { out += c; };
    if (scientific[0] == '-') {
        put('-');
        scientific.remove_prefix(1);
    }
    std::size_t const e = scientific.find('e');
    int exponent = 0;
    std::size_t const exponentBegin = e + (scientific[e + 1] == '+' ? 2 : 1);
    std::from_chars(scientific.data() + exponentBegin, scientific.data() + scientific.size(),
                    exponent);
    char digits[24];
    int count = 0;
    for (char const c : scientific.substr(0, e)) {
        if (c != '.') {
            digits[count++] = c;
        }
    }
    exponent -= count - 1; // of the last digit
    while (count > 1 && digits[count - 1] == '0') {
        --count;
        ++exponent;
    }
    if (count == 1 && digits[0] == '0') {
        exponent = 0;
    }

    char exponentText[8];
    std::size_t const exponentLength = static_cast<std::size_t>(
        std::to_chars(exponentText, exponentText + sizeof exponentText, exponent).ptr -
        exponentText);
    int const point = count + exponent; // digits in front of the point, below 0: zeros after it
    int const plainLength = exponent >= 0 ? point : point > 0 ? count + 1 : 1 - exponent;
    if (plainLength <= count + 1 + static_cast<int>(exponentLength)) {
        // From the first digit, or the point in front of it, to the last digit or the unit.
        int const begin = std::min(point, 0);
        for (int i = begin; i < std::max(count, point); ++i) {
            if (i == point && exponent < 0) {
                put('.');
            }
            put(i >= 0 && i < count ? digits[i] : '0');
        }
    } else {
        for (int i = 0; i < count; ++i) {
            put(digits[i]);
        }
        put('e');
        for (std::size_t i = 0; i < exponentLength; ++i) {
            put(exponentText[i]);
        }
    }
    return out;
}

/// Writes "-d.ddde-xx" into `buffer`: with the fewest digits that read as `value`, or with the
/// given number of digits after the point.
template <class... Digits>
std::string_view Scientific(char (&buffer)[40], double value, Digits... digits) {
    char* const end = std::to_chars(buffer, buffer + sizeof buffer, value,
                                    std::chars_format::scientific, digits...)
                          .ptr;
    return std::string_view(buffer, static_cast<std::size_t>(end - buffer));
}

/// Returns the shortest numeral that reads as `value`, which is finite.
inline std::string AbsoluteNumeral(double value) {
    char buffer[40];
    return Respelled(Scientific(buffer, value));
}

/// Returns the numeral of fewest digits that gives `to` when added to `from`; nothing where the
/// difference, as a double, does not.
inline std::string RelativeNumeral(double from, double to) {
    auto const gives = [&](double x) {
        return from + x == to && std::signbit(from + x) == std::signbit(to);
    };
    double const difference = to - from;
    if (!std::isfinite(difference) || !gives(difference)) {
        return "";
    }
    char text[40];
    std::string_view best = Scientific(text, difference);
    int lowest = 1;
    auto const isDigit = [](char c) { return c >= '0' && c <= '9'; };
    auto highest = static_cast<int>(std::count_if(
        best.begin(), best.begin() + static_cast<std::ptrdiff_t>(best.find('e')), isDigit));
    char trial[40];
    while (lowest < highest) {
        int const middle = (lowest + highest) / 2;
        std::string_view const rounded = Scientific(trial, difference, middle - 1);
        double read = 0.0;
        std::from_chars(rounded.data(), rounded.data() + rounded.size(), read);
        if (gives(read)) {
            highest = middle;
            best = std::string_view(text, rounded.copy(text, sizeof text));
        } else {
            lowest = middle + 1;
        }
    }
    return Respelled(best);
}

} // namespace plain

#endif
