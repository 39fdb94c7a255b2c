// SPDX-License-Identifier: MIT

#include "SvgAttributes.h"

#include "Ascii.h"
#include "Numbers.h"

#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <iterator>

namespace tool {

namespace {

Length ReadLength(Scanner& scanner) {
    Length length{scanner.Number(), ""};
    length.unit = AsciiLower(scanner.Word());
    if (length.unit == "q") {
        length.unit = "Q";
    }
    return length;
}

/// One entry of a transform list: its name and its arguments in parentheses.
CMatrix3x3 ParseOneTransform(Scanner& scanner) {
    std::size_t const begin = scanner.Position();
    std::string const name(scanner.Word());
    std::size_t least = 1;
    std::size_t most = 1;
    if (name == "matrix") {
        least = most = 6;
    } else if (name == "translate" || name == "scale") {
        most = 2;
    } else if (name == "rotate") {
        most = 3;
    } else if (name != "skewX" && name != "skewY") {
        throw TextError(begin, (name.empty() ? "found something else" : "found '" + name + "'") +
                                   ", expected matrix, translate, scale, rotate, skewX or skewY");
    }
    scanner.SkipSpace();
    if (!scanner.Take('(')) {
        scanner.Fail("'('");
    }
    scanner.SkipSpace();
    std::vector<double> n = {scanner.Number()};
    bool comma = scanner.SkipComma();
    while (n.size() < most && (comma || scanner.NumberFollows())) {
        n.push_back(scanner.Number());
        comma = scanner.SkipComma();
    }
    if (n.size() < least || (name == "rotate" && n.size() == 2) || comma) {
        scanner.Fail("a number");
    }
    if (!scanner.Take(')')) {
        scanner.Fail("')'");
    }

    CMatrix3x3 m;
    if (name == "matrix") {
        m = CMatrix3x3(n[0], n[1], n[2], n[3], n[4], n[5], 0);
    } else if (name == "translate") {
        m.Translate(n[0], n.size() > 1 ? n[1] : 0.0);
    } else if (name == "scale") {
        m.Scale(n[0], n.size() > 1 ? n[1] : n[0]);
    } else if (name == "rotate" && n.size() == 3) {
        m.Rotate(DegToRad(n[0]), TPoint<double>(n[1], n[2]));
    } else if (name == "rotate") {
        m.Rotate(DegToRad(n[0]));
    } else if (name == "skewX") {
        m.Shear(DegToRad(n[0]), 0.0);
    } else {
        m.Shear(0.0, DegToRad(n[0]));
    }
    return m;
}

/// What an argument of a function in a style sheet measures.
enum class CssUnit { kNone, kLength, kAngle };

/// Reads an argument with its unit. Only 0 may go without. Angles are in radians.
/// \param vertical  whether a length runs downward
double CssArgument(Scanner& scanner, CssUnit kind, bool vertical, LengthUnits const& units) {
    std::size_t const begin = scanner.Position();
    auto const [number, unit] = ReadLength(scanner);
    if (kind == CssUnit::kNone ? unit.empty() : (unit.empty() && number == 0.0)) {
        return number;
    }
    if (kind == CssUnit::kLength && !unit.empty()) {
        return units({number, unit}, vertical);
    }
    if (kind == CssUnit::kAngle) {
        struct Unit {
            char const* name;
            double degrees;
        };
        for (Unit const& known : {Unit{"deg", 1.0}, Unit{"grad", 0.9}, Unit{"turn", 360.0}}) {
            if (unit == known.name) {
                return DegToRad(number * known.degrees);
            }
        }
        if (unit == "rad") {
            return number;
        }
    }
    throw TextError(begin, "found the unit '" + unit + "', expected another");
}

/// One function of a transform in a style sheet.
CMatrix3x3 ParseOneCssTransform(Scanner& scanner, LengthUnits const& units) {
    struct Function {
        char const* name;
        CssUnit unit;
        std::size_t least;
        std::size_t most;
    };
    static Function const functions[] = {
        {"matrix", CssUnit::kNone, 6, 6},       {"translate", CssUnit::kLength, 1, 2},
        {"translateX", CssUnit::kLength, 1, 1}, {"translateY", CssUnit::kLength, 1, 1},
        {"scale", CssUnit::kNone, 1, 2},        {"scaleX", CssUnit::kNone, 1, 1},
        {"scaleY", CssUnit::kNone, 1, 1},       {"rotate", CssUnit::kAngle, 1, 1},
        {"skew", CssUnit::kAngle, 1, 2},        {"skewX", CssUnit::kAngle, 1, 1},
        {"skewY", CssUnit::kAngle, 1, 1}};
    std::size_t const begin = scanner.Position();
    std::string const name(scanner.Word());
    auto const* const function =
        std::find_if(std::begin(functions), std::end(functions),
                     [&name](Function const& known) { return name == known.name; });
    if (function == std::end(functions) || !scanner.Take('(')) {
        throw TextError(begin, "'" + name + "' is no function of transforms that is read here");
    }
    std::vector<double> n;
    do {
        scanner.SkipSpace();
        bool const vertical = !n.empty() || name == "translateY";
        n.push_back(CssArgument(scanner, function->unit, vertical, units));
    } while (scanner.SkipComma() && n.size() < function->most);
    if (n.size() < function->least || !scanner.Take(')')) {
        scanner.Fail("')'");
    }
    CMatrix3x3 m;
    if (name == "matrix") {
        m = CMatrix3x3(n[0], n[1], n[2], n[3], n[4], n[5], 0);
    } else if (name == "translate" || name == "translateX") {
        m.Translate(n[0], n.size() > 1 ? n[1] : 0.0);
    } else if (name == "translateY") {
        m.Translate(0.0, n[0]);
    } else if (name == "scale") {
        m.Scale(n[0], n.back());
    } else if (name == "scaleX") {
        m.Scale(n[0], 1.0);
    } else if (name == "scaleY") {
        m.Scale(1.0, n[0]);
    } else if (name == "rotate") {
        m.Rotate(n[0]);
    } else if (name == "skewY") {
        m.Shear(0.0, n[0]);
    } else {
        m.Shear(n[0], n.size() > 1 ? n[1] : 0.0);
    }
    return m;
}

} // namespace

CMatrix3x3 ParseTransform(std::string_view text) {
    CMatrix3x3 all;
    Scanner scanner(text);
    scanner.SkipSpace();
    if (text.substr(scanner.Position()) == "none") {
        return all;
    }
    while (!scanner.AtEnd()) {
        // The last entry of the list applies to a point first.
        all = Concat(ParseOneTransform(scanner), all);
        scanner.SkipComma();
    }
    return all;
}

CMatrix3x3 ParseCssTransform(std::string_view text, LengthUnits const& units) {
    CMatrix3x3 all;
    Scanner scanner(text);
    scanner.SkipSpace();
    if (text == "none") {
        return all;
    }
    while (!scanner.AtEnd()) {
        all = Concat(ParseOneCssTransform(scanner, units), all);
        scanner.SkipSpace();
    }
    return all;
}

TransformOrigin ParseTransformOrigin(std::string_view text) {
    enum class Side { kAny, kHorizontal, kVertical };
    struct Word {
        char const* name;
        Side side;
        double share;
    };
    static Word const words[] = {{"left", Side::kHorizontal, 0.0},
                                 {"right", Side::kHorizontal, 100.0},
                                 {"top", Side::kVertical, 0.0},
                                 {"bottom", Side::kVertical, 100.0},
                                 {"center", Side::kAny, 50.0}};
    struct Part {
        Length length;
        Side side; ///< of a word, which may also stand in the other place
        bool word;
    };
    Scanner scanner(text);
    scanner.SkipSpace();
    std::vector<Part> parts;
    while (!scanner.AtEnd() && parts.size() < 3) {
        if (scanner.NumberFollows()) {
            parts.push_back({ReadLength(scanner), Side::kAny, false});
        } else {
            std::size_t const begin = scanner.Position();
            std::string const name = AsciiLower(scanner.Word());
            auto const* const word =
                std::find_if(std::begin(words), std::end(words),
                             [&name](Word const& known) { return name == known.name; });
            if (word == std::end(words) || parts.size() == 2) {
                throw TextError(begin, "expected a length, left, right, top, bottom or center");
            }
            parts.push_back({{word->share, "%"}, word->side, true});
        }
        scanner.SkipSpace();
    }
    if (parts.empty() || !scanner.AtEnd()) {
        scanner.Fail("one or two lengths or words");
    }
    if (parts.size() == 1) {
        parts.push_back({{50.0, "%"}, Side::kAny, true});
    }
    Part const& a = parts[0];
    Part const& b = parts[1];
    bool const swapped = a.side == Side::kVertical || b.side == Side::kHorizontal;
    bool const fits =
        swapped ? a.side != Side::kHorizontal && b.side != Side::kVertical && a.word && b.word
                : true;
    if (!fits) {
        throw TextError(0, "the words do not go together");
    }
    return swapped ? TransformOrigin{b.length, a.length} : TransformOrigin{a.length, b.length};
}

Length ParseLength(std::string_view text) {
    Scanner scanner(text);
    scanner.SkipSpace();
    Length length = ReadLength(scanner);
    scanner.SkipSpace();
    if (!scanner.AtEnd()) {
        scanner.Fail("the end of the length");
    }
    return length;
}

std::vector<Length> ParseLengths(std::string_view text) {
    std::vector<Length> lengths;
    Scanner scanner(text);
    try {
        scanner.SkipSpace();
        bool more = scanner.NumberFollows(); // "none" is too frequent for an exception
        while (more) {
            lengths.push_back(ReadLength(scanner));
            more = scanner.SkipComma() || !scanner.AtEnd();
        }
    } catch (TextError const&) {
        lengths.clear();
    }
    return lengths;
}

namespace {

/// The greatest depth of parentheses in a sum.
constexpr int kMostCalcLevels = 32;

/// Reads sums of lengths and numbers.
class Calc {
public:
    Calc(std::string_view text, std::function<double(Length const&)> const& units)
        : mScanner(text), mUnits(units) {}

    double Read() {
        mScanner.SkipSpace();
        Value const value = Operand(0);
        mScanner.SkipSpace();
        if (!mScanner.AtEnd()) {
            mScanner.Fail("the end of the sum");
        }
        if (!value.length) {
            throw TextError(0, "a sum of numbers, not of lengths");
        }
        return value.number;
    }

private:
    /// A number, or a length in user units.
    struct Value {
        double number = 0.0;
        bool length = false;
    };

    Value Operand(int level) {
        mScanner.SkipSpace();
        if (mScanner.NumberFollows()) {
            Length const length = ReadLength(mScanner);
            return length.unit.empty() ? Value{length.number, false} : Value{mUnits(length), true};
        }
        std::size_t const begin = mScanner.Position();
        std::string const name(mScanner.Word());
        if (!(name.empty() || name == "calc") || level >= kMostCalcLevels || !mScanner.Take('(')) {
            throw TextError(begin, "found '" + name + "', expected a length, a number or '('");
        }
        Value const value = Sum(level + 1);
        mScanner.SkipSpace();
        if (!mScanner.Take(')')) {
            mScanner.Fail("')'");
        }
        return value;
    }

    Value Product(int level) {
        Value value = Operand(level);
        while (true) {
            mScanner.SkipSpace();
            std::size_t const place = mScanner.Position();
            bool const times = mScanner.Take('*');
            if (!times && !mScanner.Take('/')) {
                return value;
            }
            Value const next = Operand(level);
            if (next.length && (value.length || !times)) {
                throw TextError(place, "only one factor of a product may be a length");
            }
            value.length = value.length || next.length;
            value.number = times ? value.number * next.number : value.number / next.number;
        }
    }

    Value Sum(int level) {
        Value value = Product(level);
        while (true) {
            mScanner.SkipSpace();
            std::size_t const place = mScanner.Position();
            bool const plus = mScanner.Take('+');
            if (!plus && !mScanner.Take('-')) {
                return value;
            }
            Value const next = Product(level);
            if (next.length != value.length) {
                throw TextError(place, "a sum of a length and a number");
            }
            value.number += plus ? next.number : -next.number;
        }
    }

    Scanner mScanner;
    std::function<double(Length const&)> const& mUnits;
};

} // namespace

double ParseCalc(std::string_view text, std::function<double(Length const&)> const& units) {
    return Calc(text, units).Read();
}

double UserUnits(Length const& length, std::optional<double> whole, UnitSizes const* sizes) {
    // An inch has 96 units everywhere in SVG.
    struct Unit {
        char const* name;
        double size;
    };
    static Unit const units[] = {{"", 1.0},    {"px", 1.0},         {"pt", 96.0 / 72.0},
                                 {"pc", 16.0}, {"mm", 96.0 / 25.4}, {"cm", 96.0 / 2.54},
                                 {"in", 96.0}, {"Q", 96.0 / 101.6}};
    for (Unit const& unit : units) {
        if (length.unit == unit.name) {
            return length.number * unit.size;
        }
    }
    if (length.unit == "%") {
        if (!whole) {
            throw TextError(0, "a percentage, but the drawing does not state its size");
        }
        return length.number * *whole / 100.0;
    }
    if (sizes != nullptr) {
        Unit const ofFonts[] = {{"em", sizes->fontSize},
                                {"rem", sizes->rootFontSize},
                                {"ex", sizes->fontSize / 2.0},
                                {"ch", sizes->fontSize / 2.0}};
        for (Unit const& unit : ofFonts) {
            if (length.unit == unit.name) {
                return length.number * unit.size;
            }
        }
        TPoint<double> const window = sizes->window.value_or(TPoint<double>());
        Unit const ofWindows[] = {{"vw", window.h},
                                  {"vh", window.v},
                                  {"vmin", std::min(window.h, window.v)},
                                  {"vmax", std::max(window.h, window.v)}};
        for (Unit const& unit : ofWindows) {
            if (length.unit == unit.name && sizes->window) {
                return length.number * unit.size / 100.0;
            }
            if (length.unit == unit.name) {
                throw TextError(0, "the unit '" + length.unit +
                                       "', but the drawing does not state its size");
            }
        }
    }
    throw TextError(0, "the unit '" + length.unit +
                           "' is none of px, pt, pc, mm, cm, in, Q, %, em, rem, ex, ch, vw, vh, "
                           "vmin and vmax");
}

void ParsePoints(std::string_view text, std::vector<TPoint<double>>& points) {
    Scanner scanner(text);
    scanner.SkipSpace();
    while (!scanner.AtEnd()) {
        double const h = scanner.Number();
        scanner.SkipComma();
        double const v = scanner.Number();
        points.emplace_back(h, v);
        if (scanner.SkipComma() && scanner.AtEnd()) {
            scanner.Fail("a number");
        }
    }
}

TRect<double> ParseViewBox(std::string_view text) {
    Scanner scanner(text);
    scanner.SkipSpace();
    double n[4];
    for (double& number : n) {
        number = scanner.Number();
        scanner.SkipComma();
    }
    if (!scanner.AtEnd()) {
        scanner.Fail("the end of the view box");
    }
    if (n[2] < 0.0 || n[3] < 0.0) {
        throw TextError(0, "the view box has a negative size");
    }
    return TRect<double>(n[0], n[1], n[0] + n[2], n[1] + n[3]);
}

CMatrix3x3 FitViewBox(TRect<double> const& box, TPoint<double> const& size,
                      std::string_view preserveAspectRatio) {
    TPoint<double> scale = size / box.GetSize();
    std::string_view const rule = preserveAspectRatio;
    if (rule.find("none") != std::string_view::npos) {
        return CMatrix3x3().Translate(-box.TopLeft()).Scale(scale);
    }
    bool const slice = rule.find("slice") != std::string_view::npos;
    double const s = slice ? std::max(scale.h, scale.v) : std::min(scale.h, scale.v);
    TPoint<double> const room = size - box.GetSize() * s;
    auto const share = [rule](char const* least, char const* most) {
        return rule.find(least) != std::string_view::npos  ? 0.0
               : rule.find(most) != std::string_view::npos ? 1.0
                                                           : 0.5;
    };
    TPoint<double> const shift =
        room * TPoint<double>(share("xMin", "xMax"), share("YMin", "YMax"));
    return CMatrix3x3().Translate(-box.TopLeft()).Scale(s).Translate(shift);
}

} // namespace tool
