// SPDX-License-Identifier: MIT

#include "CssTransform.h"

#include "Ascii.h"
#include "CssMath.h"
#include "Numbers.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace tool {

namespace {

typedef std::vector<double> Numbers;

/// Reads one argument. Only a length and an angle of 0 may go without a unit.
/// \param kind  'n' for a number, 'a' for an angle, 'l' for a length or 'v' for one downward
double Argument(Scanner& scanner, char kind, LengthUnits const& units) {
    scanner.SkipSpace();
    std::size_t const begin = scanner.Position();
    CssValue const value = ReadCssValue(scanner, [&](Length const& length) {
        if (kind == 'n' && length.unit == "%") {
            return length.number / 100.0;
        }
        if (kind == 'n') {
            throw TextError(begin, "found the unit '" + length.unit + "', expected a number");
        }
        return units(length, kind == 'v');
    });
    bool const zero = value.kind == CssKind::kNumber && value.number == 0.0;
    if (kind == 'n' && value.kind == CssKind::kAngle) {
        throw TextError(begin, "found an angle, expected a number");
    }
    if (kind == 'a' && value.kind != CssKind::kAngle && !zero) {
        throw TextError(begin, "expected an angle with its unit");
    }
    if ((kind == 'l' || kind == 'v') && value.kind != CssKind::kLength && !zero) {
        throw TextError(begin, "expected a length with its unit");
    }
    return value.number;
}

CMatrix3x3 Translation(double h, double v) { return CMatrix3x3().Translate(h, v); }
CMatrix3x3 Scaling(double h, double v) { return CMatrix3x3().Scale(h, v); }
CMatrix3x3 Rotation(double angle) { return CMatrix3x3().Rotate(angle); }
CMatrix3x3 Shearing(double h, double v) { return CMatrix3x3().Shear(h, v); }

double SecondOr(Numbers const& n, double otherwise) { return n.size() > 1 ? n[1] : otherwise; }

/// Returns what a transform of space does to the plane. It must not depend on the depth.
CMatrix3x3 InPlane(Numbers const& n) {
    bool const flat =
        n[3] == 0.0 && n[7] == 0.0 && n[8] == 0.0 && n[9] == 0.0 && n[11] == 0.0 && n[15] == 1.0;
    if (!flat) {
        throw TextError(0, "matrix3d() leaves the plane");
    }
    return CMatrix3x3(n[0], n[1], n[4], n[5], n[12], n[13], 0);
}

struct Function {
    char const* name;
    std::string_view arguments; ///< the kind of each
    std::size_t least;          ///< so many of them
    CMatrix3x3 (*make)(Numbers const& n);
};

constexpr Function kPlaneFunctions[] = {
    {"matrix", "nnnnnn", 6,
     [](Numbers const& n) { return CMatrix3x3(n[0], n[1], n[2], n[3], n[4], n[5], 0); }},
    {"matrix3d", "nnnnnnnnnnnnnnnn", 16, InPlane},
    {"translate", "lv", 1, [](Numbers const& n) { return Translation(n[0], SecondOr(n, 0.0)); }},
    {"translatex", "l", 1, [](Numbers const& n) { return Translation(n[0], 0.0); }},
    {"translatey", "v", 1, [](Numbers const& n) { return Translation(0.0, n[0]); }},
    {"translatez", "l", 1, [](Numbers const&) { return CMatrix3x3(); }},
    {"translate3d", "lvl", 3, [](Numbers const& n) { return Translation(n[0], n[1]); }},
    {"scale", "nn", 1, [](Numbers const& n) { return Scaling(n[0], SecondOr(n, n[0])); }},
    {"scalex", "n", 1, [](Numbers const& n) { return Scaling(n[0], 1.0); }},
    {"scaley", "n", 1, [](Numbers const& n) { return Scaling(1.0, n[0]); }},
    {"scalez", "n", 1, [](Numbers const&) { return CMatrix3x3(); }},
    {"scale3d", "nnn", 3, [](Numbers const& n) { return Scaling(n[0], n[1]); }},
    {"rotate", "a", 1, [](Numbers const& n) { return Rotation(n[0]); }},
    {"rotatez", "a", 1, [](Numbers const& n) { return Rotation(n[0]); }},
    {"skew", "aa", 1, [](Numbers const& n) { return Shearing(n[0], SecondOr(n, 0.0)); }},
    {"skewx", "a", 1, [](Numbers const& n) { return Shearing(n[0], 0.0); }},
    {"skewy", "a", 1, [](Numbers const& n) { return Shearing(0.0, n[0]); }}};

/// Reads one function of the list.
CMatrix3x3 ReadFunction(Scanner& scanner, LengthUnits const& units) {
    std::size_t const begin = scanner.Position();
    std::string name(scanner.Word());
    if (scanner.Take('3')) {
        name += "3" + std::string(scanner.Word());
    }
    auto const* const function =
        std::find_if(std::begin(kPlaneFunctions), std::end(kPlaneFunctions),
                     [&name](Function const& known) { return AsciiLower(name) == known.name; });
    if (function == std::end(kPlaneFunctions) || !scanner.Take('(')) {
        throw TextError(begin, "'" + name + "' is no function of transforms that is read here");
    }
    Numbers n;
    do {
        n.push_back(Argument(scanner, function->arguments[n.size()], units));
    } while (scanner.SkipComma() && n.size() < function->arguments.size());
    if (n.size() < function->least || !scanner.Take(')')) {
        scanner.Fail("')'");
    }
    return function->make(n);
}

/// Reads values with space between them, up to the end. "none" has none.
/// \param kinds  of the values, of which there may be fewer
Numbers Values(std::string_view text, std::string_view kinds, LengthUnits const& units) {
    Numbers n;
    if (AsciiLower(text) == "none") {
        return n;
    }
    Scanner scanner(text);
    do {
        n.push_back(Argument(scanner, kinds[n.size()], units));
        scanner.SkipSpace();
    } while (!scanner.AtEnd() && n.size() < kinds.size());
    if (!scanner.AtEnd()) {
        scanner.Fail("the end of the value");
    }
    return n;
}

/// The direction in which a word of transform-origin counts.
enum class Side { kAny, kHorizontal, kVertical };

/// A length or a word of transform-origin.
struct OriginPart {
    TPoint<double> length; ///< to the right and downward, which differ for a share
    Side side;             ///< of a word, which may also stand in the other place
    bool word;
};

TPoint<double> ShareOfBox(double percent, LengthUnits const& units) {
    return TPoint<double>(units({percent, "%"}, false), units({percent, "%"}, true));
}

OriginPart ReadOriginPart(Scanner& scanner, std::string_view text, LengthUnits const& units) {
    struct Word {
        char const* name;
        Side side;
        double share;
    };
    static constexpr Word words[] = {{"left", Side::kHorizontal, 0.0},
                                     {"right", Side::kHorizontal, 100.0},
                                     {"top", Side::kVertical, 0.0},
                                     {"bottom", Side::kVertical, 100.0},
                                     {"center", Side::kAny, 50.0}};
    std::size_t const begin = scanner.Position();
    if (scanner.NumberFollows() || IsCssMath(text.substr(begin))) {
        auto const length = [&](Scanner& from, bool vertical) {
            CssValue const value =
                ReadCssValue(from, [&](Length const& part) { return units(part, vertical); });
            return value.kind == CssKind::kNumber ? units({value.number, ""}, vertical)
                                                  : value.number;
        };
        Scanner again = scanner;
        double const h = length(again, false);
        return {TPoint<double>(h, length(scanner, true)), Side::kAny, false};
    }
    std::string const name = AsciiLower(scanner.Word());
    auto const* const word =
        std::find_if(std::begin(words), std::end(words),
                     [&name](Word const& known) { return name == known.name; });
    if (word == std::end(words)) {
        throw TextError(begin, "expected a length, left, right, top, bottom or center");
    }
    return {ShareOfBox(word->share, units), word->side, true};
}

/// No lengths are allowed.
double NoUnits(Length const& length, bool /*vertical*/) {
    throw TextError(0, "found the unit '" + length.unit + "', expected another");
}

} // namespace

CMatrix3x3 ParseCssTransform(std::string_view text, LengthUnits const& units) {
    CMatrix3x3 all;
    if (AsciiLower(text) == "none") {
        return all;
    }
    Scanner scanner(text);
    do {
        scanner.SkipSpace();
        all = Concat(ReadFunction(scanner, units), all);
        scanner.SkipSpace();
    } while (!scanner.AtEnd());
    return all;
}

CMatrix3x3 ParseCssTranslate(std::string_view text, LengthUnits const& units) {
    Numbers const n = Values(text, "lvl", units);
    return n.empty() ? CMatrix3x3() : Translation(n[0], SecondOr(n, 0.0));
}

CMatrix3x3 ParseCssRotate(std::string_view text) {
    // The axis may stand before the angle. That toward the eye is the only one in the plane.
    std::string value = AsciiLower(Trimmed(text));
    if (value.substr(0, 2) == "z ") {
        value.erase(0, 2);
    } else if (value.size() > 2 && value.substr(value.size() - 2) == " z") {
        value.resize(value.size() - 2);
    }
    Numbers const n = Values(value, "a", NoUnits);
    return n.empty() ? CMatrix3x3() : Rotation(n[0]);
}

CMatrix3x3 ParseCssScale(std::string_view text) {
    Numbers const n = Values(text, "nnn", NoUnits);
    return n.empty() ? CMatrix3x3() : Scaling(n[0], SecondOr(n, n[0]));
}

TPoint<double> ParseTransformOrigin(std::string_view text, LengthUnits const& units) {
    Scanner scanner(text);
    scanner.SkipSpace();
    std::vector<OriginPart> parts;
    do {
        parts.push_back(ReadOriginPart(scanner, text, units));
        scanner.SkipSpace();
    } while (!scanner.AtEnd() && parts.size() < 3);
    if (!scanner.AtEnd() || (parts.size() == 3 && parts[2].word)) {
        scanner.Fail("one or two lengths or words");
    }
    if (parts.size() == 1) {
        parts.push_back({ShareOfBox(50.0, units), Side::kAny, true});
    }
    OriginPart const& a = parts[0];
    OriginPart const& b = parts[1];
    bool const swapped = a.side == Side::kVertical || b.side == Side::kHorizontal;
    if (swapped &&
        (a.side == Side::kHorizontal || b.side == Side::kVertical || !a.word || !b.word)) {
        throw TextError(0, "the words do not go together");
    }
    return swapped ? TPoint<double>(b.length.h, a.length.v)
                   : TPoint<double>(a.length.h, b.length.v);
}

} // namespace tool
