// SPDX-License-Identifier: MIT

// Numbers from and to text, the same in every locale. Only finite numbers are numbers.

#ifndef TRAMMEL_APP_NUMBERS_H
#define TRAMMEL_APP_NUMBERS_H

#include <trammel/TPoint.h>

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// A mistake in a text, with the position of the first wrong character.
class TextError : public std::exception {
public:
    TextError(std::size_t position, std::string message)
        : mPosition(position), mMessage(std::move(message)) {}
    std::size_t Position() const { return mPosition; }
    char const* what() const noexcept override { return mMessage.c_str(); }

private:
    std::size_t mPosition;
    std::string mMessage;
};

/// Reads a text from left to right. An operation that does not find its part throws TextError.
class Scanner {
public:
    explicit Scanner(std::string_view text) : mText(text) {}

    std::size_t Position() const { return mPosition; }
    bool AtEnd() const { return mPosition == mText.size(); }
    /// Returns the next character; NUL at the end.
    char Peek() const { return AtEnd() ? '\0' : mText[mPosition]; }
    /// Passes blanks, tabs and line ends.
    void SkipSpace();
    /// Passes space and one comma among it. True when there was a comma.
    bool SkipComma();
    /// Passes `c` if it is next. True when it was.
    bool Take(char c);
    /// Passes letters and percent signs, and returns them.
    std::string_view Word();
    /// True when a number begins here.
    bool NumberFollows() const;
    /// Passes a decimal number with optional sign, fraction and exponent, and returns it. A number
    /// too large for a double is an error; one too small is 0.
    double Number();
    /// Throws "found X, expected `what`" for this position.
    [[noreturn]] void Fail(std::string const& what) const;

private:
    std::string_view mText;
    std::size_t mPosition = 0;
};

/// As many numbers as there are.
inline constexpr std::size_t kMany = static_cast<std::size_t>(-1);

/// Returns the numbers in the value of an option, which commas separate. Throws an Error that names
/// the option unless there are at least `least` and at most `most`.
std::vector<double> NumbersOf(std::string const& option, std::string const& text, std::size_t least,
                              std::size_t most);
/// Returns the one number of an option.
double NumberOf(std::string const& option, std::string const& text);
/// Returns the point "h,v" of an option.
TPoint<double> PointOf(std::string const& option, std::string const& text);

/// Returns a number for people: up to eight significant digits.
std::string Figure(double number);
/// Returns the least power of ten that is at least twice the `error`. It is the accuracy of figures
/// that are rounded to this decimal place: their last digit may be off by one. 0 for an error of 0,
/// infinity or NaN.
double DigitAccuracy(double error);
/// Returns the number rounded to the decimal place that the accuracy, a power of ten, names. An
/// accuracy of 0 leaves the number as it is.
double RoundedTo(double number, double accuracy);
/// Returns a number for people: up to eight significant digits, and none below the accuracy.
std::string Figure(double number, double accuracy);
/// Returns the shortest text that reads back to the same number.
std::string Exact(double number);

} // namespace tool

#endif
