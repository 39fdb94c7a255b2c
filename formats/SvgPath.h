// SPDX-License-Identifier: MIT

// SvgPath: outlines as SVG path text, the language of the `d` attribute.
//
// ReadSvgPath understands the whole grammar: the commands M L H V C S Q T A Z in absolute and
// relative form, repeated groups of arguments (after a move they are lines), compact numbers
// (`1.5.5-3e2` is 1.5, 0.5, -300), arc flags that touch what follows (`a1 1 0 00.5.5`).
// WriteSvgPath writes the shortest such text that reads back to the same doubles. h is x and v is
// y, both downward and rightward as in SVG: coordinates are taken over as they are.
//
// Neither depends on the locale, recurses, or keeps anything between calls: both are safe from any
// thread. Both cost O(n). Memory exhaustion is std::bad_alloc.

#ifndef TRAMMEL_SVGPATH_H
#define TRAMMEL_SVGPATH_H

#include "CPath.h"
#include "TrammelExport.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace trammel {

/// Where and why a path text cannot be read on.
struct TRAMMEL_API SvgPathError {
    std::size_t position; ///< offset in bytes from the start of the text, 0 for its first byte
    /// What stands there, in printable ASCII and at most about 40 characters: `'x'`, `'1e999'`,
    /// `byte 0x00`, `U+00E9`, `end of text`.
    std::string found;
    std::string expected; ///< what could stand there: `a number`, `a command or a number`

    /// All of it in one line without a line end: "at byte 7: expected a number, found 'x'".
    std::string Message() const;
};

/// What ReadSvgPath makes of a text.
struct TRAMMEL_API SvgPathResult {
    CPath path;                        ///< all segments, or those before the error
    std::optional<SvgPathError> error; ///< empty: the text was read to its end
};

/// Reads SVG path text.
///
/// Empty text and mere white space give an empty path. Otherwise a path begins with a move; what
/// stands after the last complete segment before an error is not in the result.
///
/// The result is an ordinary path, as if built by its own operations; every curve and line lies in
/// a subpath that begins with a move, and every coordinate is finite. Of what these operations
/// would drop or bend,
/// - a curve that ends where it starts is cut in two, at the middle of its parameter (at a quarter
///   if the middle lies on its ends), the new points right to rounding; a curve that never leaves
///   its start is dropped,
/// - drawing that goes on after a close begins with a move to the closed subpath's start,
/// - lines without length, and a close that follows a close, are dropped; the commands after them
///   start where they lead all the same,
/// - of moves in a row only the last is kept (and a last move after which nothing is drawn).
///
/// Numbers: decimal, correctly rounded; a leading +, a leading or trailing point, an exponent; one
/// that is nearer to zero than the smallest double is zero (with its sign). Numbers beyond the
/// range of double, and coordinates that get there by relative or smooth commands, are errors, as
/// are words (NaN, inf).
///
/// Quadratic curves are raised to cubic ones exactly: the two control points are (p + 2q) / 3, each
/// coordinate rounded once from the exact value (off by less than 0.51 units in the last place).
///
/// Elliptical arcs become cubic curves of equal sweep, at most an eighth turn each, that run along
/// the outside of the ellipse and leave it by no more than 4.3e-6 of the greater radius (rounding
/// aside); the last one ends in the given point exactly. Radii are taken without their sign and,
/// where too small for the ends to be reached, enlarged in proportion; with a radius of zero the
/// arc is a line, with equal ends it is nothing. By the endpoint-to-centre conversion of the SVG
/// standard (implementation notes, elliptical arcs), carried out relative to the arc's start so
/// that radii much greater than the arc lose nothing.
///
/// \param text need not end in NUL; a NUL byte is an error like any other character out of place.
TRAMMEL_API SvgPathResult ReadSvgPath(std::string_view text);

/// Writes a path as the shortest text that ReadSvgPath reads back to the same elements and, bit by
/// bit, the same points.
///
/// Shortest of all spellings with M L H V C S Z: absolute or relative, command letters and
/// separators only where needed, numbers with the fewest digits that reproduce the double (of
/// equally short spellings without exponent, where there is one). An empty path gives empty text.
/// ASCII, one line.
///
/// Reading back gives the same elements for whatever the path's building operations make, each
/// drawn element in a subpath begun by a move. What the grammar or the building operations cannot
/// express is written as it is measured:
/// - a curve (or line) with no move before it: a move to where it is measured from, which is
///   (0, 0) in front and the last point drawn after a close;
/// - a close that is measured to another point than the start of the subpath as written: a line;
/// - a close without an open subpath, all but the last of moves in a row, unknown codes and codes
///   with too few points: not written.
///
/// Lines without length and curves that end where they start, as a transform may leave them, are
/// written, and come back as ReadSvgPath says.
///
/// Throws std::invalid_argument naming the element when a point of an element is NaN or infinite,
/// as there is no text for it.
TRAMMEL_API std::string WriteSvgPath(CPath const& path);

} // namespace trammel

#endif
