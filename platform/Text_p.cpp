// SPDX-License-Identifier: MIT

#include "Text_p.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>

// Some C++ libraries convert integers only. There the C library converts, and needs its locale's
// point replaced.
#if !defined(__cpp_lib_to_chars) && !defined(TRAMMEL_PLAIN_NUMERALS)
#define TRAMMEL_PLAIN_NUMERALS
#endif

namespace trammel_detail {
namespace {

constexpr int kDecimals = 6;
/// The longest text: sign, all digits of the largest double, point, decimals.
constexpr int kLongestFixed6 =
    1 + (std::numeric_limits<double>::max_exponent10 + 1) + 1 + kDecimals;
/// More for the C library: a point of some bytes, and an end.
constexpr int kRoom = kLongestFixed6 + 16;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Returns the exponent that is written behind the letter of a numeral, 0 where there is none. It
/// is cut to half of what 64 bits hold, so that the number of a text's digits can be added.
std::int64_t WrittenExponent(std::string_view numeral) {
    std::size_t const letter = numeral.find_first_of("eE");
    if (letter == std::string_view::npos) {
        return 0;
    }
    std::string_view written = numeral.substr(letter + 1);
    bool const negative = written[0] == '-';
    if (!IsDigit(written[0])) {
        written.remove_prefix(1);
    }
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / 2;
    std::int64_t value = 0;
    if (std::from_chars(written.data(), written.data() + written.size(), value).ec != std::errc()) {
        value = most;
    }
    value = std::min(value, most);
    return negative ? -value : value;
}

#ifdef TRAMMEL_PLAIN_NUMERALS

/// Puts a point where the locale's stands, which has one or more bytes. Returns the new end.
char* WithPoint(char* begin, char* end) {
    char* const point = std::find_if_not(begin + (*begin == '-' ? 1 : 0), end, IsDigit);
    char* const decimals = std::find_if(point, end, IsDigit);
    *point = '.';
    std::memmove(point + 1, decimals, static_cast<std::size_t>(end - decimals));
    return point + 1 + (end - decimals);
}

char* WriteFixed6(char* to, double value) {
    char* const end = to + std::snprintf(to, kRoom, "%.*f", kDecimals, value);
    return std::isfinite(value) ? WithPoint(to, end) : end;
}

/// Adds one to the last digit of "-d.ddde-xx". Returns false where all digits are nines.
bool CountUp(char* begin, char* end) {
    for (char* digit = std::find(begin, end, 'e'); digit != begin;) {
        --digit;
        if (*digit == '9') {
            *digit = '0';
        } else if (IsDigit(*digit)) {
            ++*digit;
            return true;
        }
    }
    return false;
}

#else

char* WriteFixed6(char* to, double value) {
    return std::to_chars(to, to + kRoom, value, std::chars_format::fixed, kDecimals).ptr;
}

/// Returns true where a numeral that no double is near to is too small for that.
bool IsTiny(std::string_view numeral) {
    std::size_t const mantissa = std::min(numeral.find_first_of("eE"), numeral.size());
    std::size_t const point = std::min(numeral.substr(0, mantissa).find('.'), mantissa);
    std::size_t const first = numeral.find_first_of("123456789");
    // The decimal exponent of the first digit.
    return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) -
               (first < point ? 1 : 0) + WrittenExponent(numeral) <
           0;
}

#endif

void AppendNumber(std::string& text, double value) {
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    char digits[kRoom];
    text.append(digits, WriteFixed6(digits, value));
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

#ifdef TRAMMEL_PLAIN_NUMERALS

char* WriteScientific(char* to, double value, int decimals) {
    char* const end = to + std::snprintf(to, kNumeralRoom, "%.*e", decimals, value);
    return decimals > 0 ? WithPoint(to, end) : end;
}

char* WriteScientific(char* to, double value) {
    auto const reads = [=](char* end) {
        return ReadNumeral(std::string_view(to, static_cast<std::size_t>(end - to))) == value;
    };
    int exponent = 0;
    bool const power = std::frexp(std::abs(value), &exponent) == 0.5;
    for (int decimals = 0;; ++decimals) {
        char* const end = WriteScientific(to, value, decimals);
        if (reads(end)) {
            return end;
        }
        // Above a power of two, doubles lie half as densely. So the nearest decimal of that length
        // may read as the double below, while the next decimal reads as the power.
        if (power && CountUp(to, end) && reads(end)) {
            return end;
        }
    }
}

char* WriteShortest(char* to, double value) {
    if (!std::isfinite(value)) {
        std::string_view const name = std::isnan(value) ? "nan" : "inf";
        *to = '-';
        return std::copy(name.begin(), name.end(), to + (std::signbit(value) ? 1 : 0));
    }
    char text[kNumeralRoom];
    std::string_view const written(text,
                                   static_cast<std::size_t>(WriteScientific(text, value) - text));
    char digits[kNumeralRoom];
    auto const count = static_cast<int>(
        std::copy_if(written.begin(), written.begin() + written.find('e'), digits, IsDigit) -
        digits);
    auto const exponent = static_cast<int>(WrittenExponent(written));
    int const behind = std::max(count - 1 - exponent, 0); // digits behind the point
    int const plain = behind == 0 ? exponent + 1 : std::max(behind + 1, count) + 1;
    bool const negative = written[0] == '-';
    if (plain + (negative ? 1 : 0) > static_cast<int>(written.size())) {
        return std::copy(written.begin(), written.end(), to);
    }
    if (behind == 0) {
        return to + std::snprintf(to, kNumeralRoom, "%.0f", value);
    }
    if (negative) {
        *to++ = '-';
    }
    int const whole = std::max(count - behind, 0);
    to = whole > 0 ? std::copy_n(digits, whole, to) : std::fill_n(to, 1, '0');
    *to++ = '.';
    to = std::fill_n(to, behind - (count - whole), '0');
    return std::copy_n(digits + whole, count - whole, to);
}

double ReadNumeral(std::string_view numeral) {
    // Without a point, the text is the same in all locales.
    std::string_view const mantissa = numeral.substr(0, numeral.find_first_of("eE"));
    std::size_t const point = std::min(mantissa.find('.'), mantissa.size());
    std::string text(mantissa.substr(0, point));
    std::int64_t exponent = WrittenExponent(numeral);
    if (point < mantissa.size()) {
        text += mantissa.substr(point + 1);
        exponent -= static_cast<std::int64_t>(mantissa.size() - point - 1);
    }
    text += 'e';
    text += std::to_string(exponent);
    return std::strtod(text.c_str(), nullptr);
}

#else

char* WriteScientific(char* to, double value, int decimals) {
    return std::to_chars(to, to + kNumeralRoom, value, std::chars_format::scientific, decimals).ptr;
}

char* WriteScientific(char* to, double value) {
    return std::to_chars(to, to + kNumeralRoom, value, std::chars_format::scientific).ptr;
}

char* WriteShortest(char* to, double value) {
    return std::to_chars(to, to + kNumeralRoom, value).ptr;
}

double ReadNumeral(std::string_view numeral) {
    double value = 0.0;
    std::errc const code =
        std::from_chars(numeral.data(), numeral.data() + numeral.size(), value).ec;
    if (code == std::errc::result_out_of_range) {
        value = IsTiny(numeral) ? 0.0 : std::numeric_limits<double>::infinity();
        return numeral[0] == '-' ? -value : value;
    }
    return value;
}

#endif

} // namespace trammel_detail
