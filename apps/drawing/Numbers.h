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

/// A text that is not what it should be, with the position of the first character that is wrong.
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

/// Reads a text from left to right. Operations that find something else throw TextError.
class Scanner {
public:
    explicit Scanner(std::string_view text) : mText(text) {}

    std::size_t Position() const { return mPosition; }
    bool AtEnd() const { return mPosition == mText.size(); }
    /// The next character; NUL at the end.
    char Peek() const { return AtEnd() ? '\0' : mText[mPosition]; }
    /// Passes blanks, tabs and line ends.
    void SkipSpace();
    /// Passes space and one comma among it; true when there was a comma.
    bool SkipComma();
    /// Passes `c` if it is next.
    bool Take(char c);
    /// Letters and percent signs up to something else.
    std::string_view Word();
    /// True when a number begins here.
    bool NumberFollows() const;
    /// A decimal number with optional sign, fraction and exponent. Too large for a double is an
    /// error; too small is 0.
    double Number();
    /// "found X, expected `what`" at this position.
    [[noreturn]] void Fail(std::string const& what) const;

private:
    std::string_view mText;
    std::size_t mPosition = 0;
};

/// As many numbers as there are.
inline constexpr std::size_t kMany = static_cast<std::size_t>(-1);

/// Numbers separated by commas, for the value of an option. Throws Error, which names the option,
/// unless there are at least `least` and at most `most`.
std::vector<double> NumbersOf(std::string const& option, std::string const& text, std::size_t least,
                              std::size_t most);
/// One number of an option.
double NumberOf(std::string const& option, std::string const& text);
/// A point "h,v" of an option.
TPoint<double> PointOf(std::string const& option, std::string const& text);

/// A number for people: up to eight significant digits.
std::string Figure(double number);
/// The shortest text that reads back to the same number.
std::string Exact(double number);

} // namespace tool

#endif
