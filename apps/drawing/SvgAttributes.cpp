// SPDX-License-Identifier: MIT

#include "SvgAttributes.h"

#include "Ascii.h"
#include "Numbers.h"

#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <string>
#include <utility>

namespace tool {

namespace {

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

Length ReadLength(Scanner& scanner) {
    Length length{scanner.Number(), ""};
    length.unit = AsciiLower(scanner.Word());
    if (length.unit == "q") {
        length.unit = "Q";
    }
    return length;
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

AspectRatio ParseAspectRatio(std::string_view text) {
    AspectRatio ratio;
    Scanner scanner(text);
    scanner.SkipSpace();
    if (scanner.AtEnd()) {
        return ratio;
    }
    std::string const align(scanner.Word());
    auto const share = [&align](std::size_t at, std::string_view axis) {
        std::string_view const word = std::string_view(align).substr(std::min(at, align.size()), 4);
        for (auto const& [name, value] :
             {std::make_pair("Min", 0.0), std::make_pair("Mid", 0.5), std::make_pair("Max", 1.0)}) {
            if (word == std::string(axis) + name) {
                return value;
            }
        }
        throw TextError(0, "found '" + align + "', expected none, xMidYMid or its like");
    };
    ratio.stretch = align == "none";
    if (!ratio.stretch) {
        ratio.share = TPoint<double>(share(0, "x"), share(4, "Y"));
    }
    scanner.SkipSpace();
    std::string_view const fit = scanner.Word();
    ratio.slice = fit == "slice";
    scanner.SkipSpace();
    if (align.size() > 8 || !(fit.empty() || ratio.slice || fit == "meet") || !scanner.AtEnd()) {
        throw TextError(align.size(), "expected meet or slice, and nothing else");
    }
    return ratio;
}

CMatrix3x3 FitViewBox(TRect<double> const& box, TPoint<double> const& size,
                      AspectRatio const& ratio) {
    TPoint<double> const scale = size / box.GetSize();
    if (ratio.stretch) {
        return CMatrix3x3().Translate(-box.TopLeft()).Scale(scale);
    }
    double const s = ratio.slice ? std::max(scale.h, scale.v) : std::min(scale.h, scale.v);
    TPoint<double> const room = size - box.GetSize() * s;
    return CMatrix3x3().Translate(-box.TopLeft()).Scale(s).Translate(room * ratio.share);
}

} // namespace tool
