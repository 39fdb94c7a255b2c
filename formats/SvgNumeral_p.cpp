// SPDX-License-Identifier: MIT

#include "SvgNumeral_p.h"

#include "SvgPathGrammar_p.h"

#include <algorithm>
#include <charconv>

namespace trammel_detail {

namespace {

/// Respells "-d.ddde-xx" without superfluous zeros, point, sign or exponent.
SvgNumeral Respelled(std::string_view scientific) {
    SvgNumeral out;
    auto const put = [&](char c) { out.text[out.length++] = c; };
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
        out.fraction = exponent < 0;
    } else {
        for (int i = 0; i < count; ++i) {
            put(digits[i]);
        }
        put('e');
        for (std::size_t i = 0; i < exponentLength; ++i) {
            put(exponentText[i]);
        }
        out.fraction = true;
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

} // namespace

SvgNumeral AbsoluteNumeral(double value) {
    char buffer[40];
    return Respelled(Scientific(buffer, value));
}

// The numbers that give `to` fill an interval around the difference; it is as wide as the rounding
// of `to`. With each further digit the nearest decimal comes no farther from the interval's middle,
// so halving finds the least number of digits.
bool FindRelativeNumeral(double from, double to, SvgNumeral& numeral) {
    double const difference = to - from;
    if (!std::isfinite(difference) || !Same(from + difference, to)) {
        return false;
    }
    char text[40];
    std::string_view best = Scientific(text, difference);
    int lowest = 1;
    int highest =
        static_cast<int>(std::count_if(best.begin(), best.begin() + best.find('e'), IsDigit));
    char trial[40];
    while (lowest < highest) {
        int const middle = (lowest + highest) / 2;
        std::string_view const rounded = Scientific(trial, difference, middle - 1);
        double read = 0.0;
        std::from_chars(rounded.data(), rounded.data() + rounded.size(), read);
        if (Same(from + read, to)) {
            highest = middle;
            best = std::string_view(text, rounded.copy(text, sizeof text));
        } else {
            lowest = middle + 1;
        }
    }
    numeral = Respelled(best);
    return true;
}

} // namespace trammel_detail
