// SPDX-License-Identifier: MIT

#include "Numbers.h"

#include "Ascii.h"
#include "Error.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace tool {

namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// How many numbers an option takes, in words.
std::string Wanted(std::size_t least, std::size_t most) {
    if (most == 1) {
        return "a number";
    }
    if (most == kMany) {
        return "numbers separated by commas";
    }
    std::string text = std::to_string(least);
    if (most != least) {
        text += " to " + std::to_string(most);
    }
    return text + " numbers separated by commas";
}

} // namespace

void Scanner::SkipSpace() {
    while (IsSpace(Peek())) {
        ++mPosition;
    }
}

bool Scanner::SkipComma() {
    SkipSpace();
    bool const comma = Take(',');
    SkipSpace();
    return comma;
}

bool Scanner::Take(char c) {
    if (AtEnd() || Peek() != c) {
        return false;
    }
    ++mPosition;
    return true;
}

std::string_view Scanner::Word() {
    std::size_t const begin = mPosition;
    while (IsLetter(Peek()) || Peek() == '%') {
        ++mPosition;
    }
    return mText.substr(begin, mPosition - begin);
}

bool Scanner::NumberFollows() const {
    std::string_view rest = mText.substr(mPosition);
    if (!rest.empty() && (rest[0] == '+' || rest[0] == '-')) {
        rest.remove_prefix(1);
    }
    return !rest.empty() &&
           (IsDigit(rest[0]) || (rest[0] == '.' && rest.size() > 1 && IsDigit(rest[1])));
}

double Scanner::Number() {
    if (!NumberFollows()) {
        Fail("a number");
    }
    std::string_view const rest = mText.substr(mPosition);
    char const* const begin = rest.data() + (rest[0] == '+' ? 1 : 0);
    double number = 0.0;
    auto const [end, code] = std::from_chars(begin, rest.data() + rest.size(), number);
    std::string_view const token(rest.data(), static_cast<std::size_t>(end - rest.data()));
    if (code == std::errc::result_out_of_range) {
        // The exponent's sign tells whether the number is too small. Without an exponent it is too
        // small if its first digit other than 0 is behind the point.
        std::size_t const exponent = token.find_first_of("eE");
        bool const small = exponent != std::string_view::npos
                               ? token.substr(exponent + 1, 1) == "-"
                               : token.find_first_of("123456789") > token.find('.');
        if (!small) {
            throw TextError(mPosition,
                            "the number " + std::string(token.substr(0, 40)) + " is too large");
        }
        number = 0.0;
    }
    mPosition += token.size();
    return number;
}

void Scanner::Fail(std::string const& what) const {
    std::string found = "the end";
    if (!AtEnd()) {
        std::string_view const rest = mText.substr(mPosition);
        std::size_t length = 1;
        while (length < rest.size() && length < 20 &&
               (IsLetter(rest[length - 1]) || (rest[length] & 0xC0) == 0x80) &&
               (IsLetter(rest[length]) || (rest[length] & 0xC0) == 0x80)) {
            ++length;
        }
        found = "'" + std::string(rest.substr(0, length)) + "'";
    }
    throw TextError(mPosition, "found " + found + ", expected " + what);
}

std::vector<double> NumbersOf(std::string const& option, std::string const& text, std::size_t least,
                              std::size_t most) {
    std::vector<double> numbers;
    Scanner scanner(text);
    try {
        do {
            scanner.SkipSpace();
            numbers.push_back(scanner.Number());
            scanner.SkipSpace();
        } while (numbers.size() < most && scanner.Take(','));
        if (!scanner.AtEnd()) {
            scanner.Fail("nothing more");
        }
    } catch (TextError const& e) {
        throw Error(option, "'" + text + "'",
                    std::string(e.what()) + " (the option takes " + Wanted(least, most) + ")");
    }
    if (numbers.size() < least) {
        throw Error(option, "'" + text + "'", "the option takes " + Wanted(least, most));
    }
    return numbers;
}

double NumberOf(std::string const& option, std::string const& text) {
    return NumbersOf(option, text, 1, 1).front();
}

TPoint<double> PointOf(std::string const& option, std::string const& text) {
    std::vector<double> const numbers = NumbersOf(option, text, 2, 2);
    return TPoint<double>(numbers[0], numbers[1]);
}

std::string Figure(double number) {
    std::array<char, 64> buffer{};
    auto const [end, code] = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                           number == 0.0 ? 0.0 : number, // no "-0"
                                           std::chars_format::general, 8);
    return code == std::errc() ? std::string(buffer.data(), end) : std::string();
}

double DigitAccuracy(double error) {
    double const place = std::ceil(std::log10(2.0 * error));
    return std::isfinite(place) ? std::pow(10.0, place) : 0.0;
}

double RoundedTo(double number, double accuracy) {
    double const place = std::round(std::log10(accuracy));
    if (!std::isfinite(place) || !std::isfinite(number)) {
        return number;
    }
    double rounded = number;
    if (place > 0.0) {
        double const unit = std::pow(10.0, place);
        rounded = std::round(number / unit) * unit;
    } else {
        // All digits of the greatest double, and all decimal places that an accuracy asks for.
        std::array<char, 800> buffer{};
        auto const [end, code] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                               std::chars_format::fixed, -static_cast<int>(place));
        std::from_chars(buffer.data(), end, rounded);
    }
    return rounded == 0.0 ? 0.0 : rounded; // no "-0"
}

std::string Figure(double number, double accuracy) { return Figure(RoundedTo(number, accuracy)); }

std::string Exact(double number) {
    std::array<char, 64> buffer{};
    auto const [end, code] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return code == std::errc() ? std::string(buffer.data(), end) : std::string();
}

} // namespace tool
