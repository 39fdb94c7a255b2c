// SPDX-License-Identifier: MIT

#include "GeometryText.h"

#include "PathCursor.h"
#include "Text_p.h"

#include <array>
#include <cstddef>
#include <initializer_list>

namespace trammel {

namespace {

void Append(std::string& text, double number) {
    std::array<char, trammel_detail::kNumeralRoom> digits;
    text.append(digits.data(), trammel_detail::WriteShortest(digits.data(), number));
}

void Append(std::string& text, short number) { text += std::to_string(number); }

template <class T> void Append(std::string& text, TPoint<T> const& p) {
    text += '(';
    Append(text, p.h);
    text += ", ";
    Append(text, p.v);
    text += ')';
}

template <class T> std::string RectText(TRect<T> const& r) {
    std::string text = "[";
    char const* separator = "";
    for (T const field : {r.left, r.top, r.right, r.bottom}) {
        text += separator;
        Append(text, field);
        separator = ", ";
    }
    return text += ']';
}

std::string Chain(std::initializer_list<TPoint<double>> points) {
    std::string text;
    for (TPoint<double> const& p : points) {
        if (!text.empty()) {
            text += '-';
        }
        Append(text, p);
    }
    return text;
}

char LetterOf(char code) {
    switch (code) {
    case kPathMove:
        return 'M';
    case kPathLine:
        return 'L';
    case kPathCurve:
        return 'C';
    case kPathClose:
        return 'Z';
    default:
        return '?';
    }
}

} // namespace

std::string ToString(TPoint<double> const& p) { return Chain({p}); }

std::string ToString(TPoint<short> const& p) {
    std::string text;
    Append(text, p);
    return text;
}

std::string ToString(TRect<double> const& r) { return RectText(r); }

std::string ToString(TRect<short> const& r) { return RectText(r); }

std::string ToString(TLine<double> const& line) { return Chain({line.mStart, line.mEnd}); }

std::string ToString(CBezier const& c) { return Chain({c.P0, c.P1, c.P2, c.P3}); }

std::string ToString(CBSpline const& c) { return Chain({c.P0, c.P1, c.P2}); }

std::string ToString(CMatrix3x3 const& m) {
    std::string text = "matrix";
    char separator = '(';
    for (double const entry : {m.a, m.b, m.c, m.d, m.tx, m.ty}) {
        text += separator;
        Append(text, entry);
        separator = ' ';
    }
    return text += ')';
}

std::string ToString(CPath const& path) {
    std::string text;
    std::size_t written = 0;
    for (trammel_detail::ElementCursor element(path); element.Next(); ++written) {
        if (!text.empty()) {
            text += ' ';
        }
        text += LetterOf(element.Code());
        for (std::size_t i = 0; i < trammel_detail::PointCount(element.Code()); ++i) {
            TPoint<double> const p = element.Pt(i);
            text += ' ';
            Append(text, p.h);
            text += ' ';
            Append(text, p.v);
        }
    }
    if (written < path.mCtls.size()) {
        text += text.empty() ? "..." : " ...";
    }
    return text;
}

} // namespace trammel
