// SPDX-License-Identifier: MIT

// GeometryText: values as text that reads back to the same values, and streams that take them.
//
//     std::cout << point << '\n';                          (1.5, -2)
//     throw std::runtime_error("at " + trammel::ToString(point));
//
// Numbers are the shortest decimals that give back the same double, as std::to_chars writes them:
// 0.1, 1e+20, -0, nan, inf. They depend neither on the locale nor on the stream: its precision,
// base and flags do not count and stay as they are. The stream's width and fill hold for the whole
// text, as for a string.
//
// A matrix goes into a stream by an operator of its own, which separates nothing and follows the
// stream's precision (CMatrix3x3.h). Its text here is that of SVG.
//
// The operators are in the global namespace, where the types are, so that expressions find them in
// every namespace. An operator that an application has written for itself goes first, because these
// are templates.
//
// Texts throw std::bad_alloc when memory is short. Each costs O(n). No shared state: safe in any
// thread.

#ifndef TRAMMEL_GEOMETRYTEXT_H
#define TRAMMEL_GEOMETRYTEXT_H

#include "CBSpline.h"
#include "CBezier.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <iosfwd>
#include <string>
#include <string_view>

namespace trammel {

/// Returns "(h, v)".
TRAMMEL_API std::string ToString(TPoint<double> const& p);
TRAMMEL_API std::string ToString(TPoint<short> const& p);
/// Returns "[left, top, right, bottom]".
TRAMMEL_API std::string ToString(TRect<double> const& r);
TRAMMEL_API std::string ToString(TRect<short> const& r);
/// Returns "(h, v)-(h, v)".
TRAMMEL_API std::string ToString(TLine<double> const& line);
/// Returns the four points with hyphens between: "(h, v)-(h, v)-(h, v)-(h, v)".
TRAMMEL_API std::string ToString(CBezier const& curve);
/// Returns the three points with hyphens between.
TRAMMEL_API std::string ToString(CBSpline const& curve);
/// Returns "matrix(a b c d tx ty)", as SVG's transforms are written. The kind is left out.
TRAMMEL_API std::string ToString(CMatrix3x3 const& m);
/// Returns the elements in order as letters with their points: "M 0 0 L 4 0 C 5 1 5 2 4 3 Z".
///
/// Choose WriteSvgPath for files. This text is for logs and messages: it has every element as it
/// is, NaN and infinities too, and no element depends on the one before. ReadSvgPath reads it where
/// a move comes first and all numbers are finite. Unknown codes are "?", and the text ends with
/// "..." where the points do not suffice.
TRAMMEL_API std::string ToString(CPath const& path);

} // namespace trammel

namespace trammel_detail {

template <class Traits>
std::basic_ostream<char, Traits>& Put(std::basic_ostream<char, Traits>& out,
                                      std::string const& text) {
    return out << std::basic_string_view<char, Traits>(text.data(), text.size());
}

} // namespace trammel_detail

/// Writes ToString of the point, and returns the stream.
template <class Traits, class T>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             TPoint<T> const& p) {
    return trammel_detail::Put(out, trammel::ToString(p));
}
/// Writes ToString of the rectangle, and returns the stream.
template <class Traits, class T>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             TRect<T> const& r) {
    return trammel_detail::Put(out, trammel::ToString(r));
}
/// Writes ToString of the line, and returns the stream.
template <class Traits, class T>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             TLine<T> const& line) {
    return trammel_detail::Put(out, trammel::ToString(line));
}
/// Writes ToString of the curve, and returns the stream.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             CBezier const& curve) {
    return trammel_detail::Put(out, trammel::ToString(curve));
}
/// Writes ToString of the curve, and returns the stream.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             CBSpline const& curve) {
    return trammel_detail::Put(out, trammel::ToString(curve));
}
/// Writes ToString of the path, and returns the stream.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             CPath const& path) {
    return trammel_detail::Put(out, trammel::ToString(path));
}

#endif
