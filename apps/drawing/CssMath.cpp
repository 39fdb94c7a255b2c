// SPDX-License-Identifier: MIT

#include "CssMath.h"

#include "Ascii.h"

#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace tool {

namespace {

/// The greatest depth of parentheses.
constexpr int kMostBrackets = 32;

constexpr std::string_view kFunctions[] = {"calc", "min", "max", "clamp"};

/// Returns an angle in radians; nothing for the unit of something else.
std::optional<double> Angle(Length const& value) {
    struct Unit {
        char const* name;
        double degrees;
    };
    for (Unit const& known : {Unit{"deg", 1.0}, Unit{"grad", 0.9}, Unit{"turn", 360.0}}) {
        if (value.unit == known.name) {
            return DegToRad(value.number * known.degrees);
        }
    }
    return value.unit == "rad" ? std::make_optional(value.number) : std::nullopt;
}

/// Reads values and functions of values.
class Math {
public:
    Math(Scanner& scanner, CssUnits const& units) : mScanner(scanner), mUnits(units) {}

    /// \param level  of parentheses around; outside of them there are none without a name
    CssValue Operand(int level) {
        mScanner.SkipSpace();
        if (mScanner.NumberFollows()) {
            Length const value = ReadLength(mScanner);
            if (value.unit.empty()) {
                return {value.number, CssKind::kNumber};
            }
            std::optional<double> const angle = Angle(value);
            return angle ? CssValue{*angle, CssKind::kAngle}
                         : CssValue{mUnits(value), CssKind::kLength};
        }
        std::size_t const begin = mScanner.Position();
        std::string const name = AsciiLower(mScanner.Word());
        bool const known =
            (name.empty() && level > 0) ||
            std::find(std::begin(kFunctions), std::end(kFunctions), name) != std::end(kFunctions);
        if (!known || level >= kMostBrackets || !mScanner.Take('(')) {
            throw TextError(begin, "found '" + name + "', expected a length, a number or '('");
        }
        std::vector<CssValue> const arguments = Arguments(level + 1);
        if (!mScanner.Take(')')) {
            mScanner.Fail("')'");
        }
        return Result(begin, name, arguments);
    }

private:
    std::vector<CssValue> Arguments(int level) {
        std::vector<CssValue> arguments;
        do {
            arguments.push_back(Sum(level));
            if (arguments.back().kind != arguments.front().kind) {
                mScanner.Fail("values of one kind");
            }
        } while (mScanner.SkipComma());
        return arguments;
    }

    static CssValue Result(std::size_t begin, std::string const& name,
                           std::vector<CssValue> const& arguments) {
        bool const many = name == "min" || name == "max";
        std::size_t const wanted = name == "clamp" ? 3 : 1;
        if (!many && arguments.size() != wanted) {
            throw TextError(begin,
                            name + "() takes " + std::to_string(wanted) + ", separated by commas");
        }
        auto const less = [](CssValue const& a, CssValue const& b) { return a.number < b.number; };
        if (name == "clamp") {
            return std::max(arguments[0], std::min(arguments[1], arguments[2], less), less);
        }
        return name == "max" ? *std::max_element(arguments.begin(), arguments.end(), less)
                             : *std::min_element(arguments.begin(), arguments.end(), less);
    }

    CssValue Product(int level) {
        CssValue value = Operand(level);
        while (true) {
            mScanner.SkipSpace();
            std::size_t const place = mScanner.Position();
            bool const times = mScanner.Take('*');
            if (!times && !mScanner.Take('/')) {
                return value;
            }
            CssValue const next = Operand(level);
            bool const plain = next.kind == CssKind::kNumber;
            if (!plain && (value.kind != CssKind::kNumber || !times)) {
                throw TextError(place, "only one factor of a product may have a unit");
            }
            value.kind = plain ? value.kind : next.kind;
            value.number = times ? value.number * next.number : value.number / next.number;
        }
    }

    CssValue Sum(int level) {
        CssValue value = Product(level);
        while (true) {
            mScanner.SkipSpace();
            std::size_t const place = mScanner.Position();
            bool const plus = mScanner.Take('+');
            if (!plus && !mScanner.Take('-')) {
                return value;
            }
            if (!IsSpace(mScanner.Peek())) {
                mScanner.Fail("a blank behind the sign");
            }
            CssValue const next = Product(level);
            if (next.kind != value.kind) {
                throw TextError(place, "a sum of values that measure different things");
            }
            value.number += plus ? next.number : -next.number;
        }
    }

    Scanner& mScanner;
    CssUnits const& mUnits;
};

} // namespace

CssValue ReadCssValue(Scanner& scanner, CssUnits const& units) {
    return Math(scanner, units).Operand(0);
}

bool IsCssMath(std::string_view text) {
    std::size_t const bracket = text.find('(');
    return bracket != std::string_view::npos &&
           std::find(std::begin(kFunctions), std::end(kFunctions),
                     AsciiLower(text.substr(0, bracket))) != std::end(kFunctions);
}

double ParseCssLength(std::string_view text, CssUnits const& units) {
    if (!IsCssMath(text)) {
        return units(ParseLength(text));
    }
    Scanner scanner(text);
    CssValue const value = ReadCssValue(scanner, units);
    scanner.SkipSpace();
    if (!scanner.AtEnd()) {
        scanner.Fail("the end of the length");
    }
    if (value.kind != CssKind::kLength) {
        throw TextError(0, "is no length");
    }
    return value.number;
}

} // namespace tool
