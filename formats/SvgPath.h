// SPDX-License-Identifier: MIT

// SvgPath: outlines as SVG path text, the language of the `d` attribute.
//
// ReadSvgPath understands the whole grammar:
// - the commands M L H V C S Q T A Z in absolute and relative form,
// - repeated groups of arguments, which are lines after a move,
// - compact numbers (`1.5.5-3e2` is 1.5, 0.5, -300),
// - arc flags that touch the next number (`a1 1 0 00.5.5`).
//
// WriteSvgPath writes the shortest such text that reads back to the same doubles. h is x,
// rightward, and v is y, downward, as in SVG: coordinates are taken over as they are.
//
// Neither function depends on the locale, recurses, or keeps anything between calls: both are safe
// in any thread. Both cost O(n). They throw std::bad_alloc when memory is short.

#ifndef TRAMMEL_SVGPATH_H
#define TRAMMEL_SVGPATH_H

#include "CPath.h"
#include "TrammelExport.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace trammel {

/// The place of an error in a path text, and its reason.
struct TRAMMEL_API SvgPathError {
    std::size_t position; ///< offset in bytes from the start of the text, 0 for its first byte
    /// The text there, in printable ASCII and at most 40 characters: `'x'`, `'1e999'`,
    /// `byte 0x00`, `U+00E9`, `end of text`.
    std::string found;
    std::string expected; ///< the text that could stand there: `a number`, `a command or a number`

    /// Returns the whole error as one line without a line end: "at byte 7: expected a number, found
    /// 'x'".
    std::string Message() const;
};

/// The result of ReadSvgPath.
struct TRAMMEL_API SvgPathResult {
    CPath path;                        ///< all segments, or those before the error
    std::optional<SvgPathError> error; ///< empty: the text was read to its end
    /// The number of elliptical arcs that became curves. Arcs that are lines, or nothing, do not
    /// count.
    std::size_t arcs = 0;
};

/// Reads SVG path text.
///
/// Empty text and mere white space give an empty path. Any other text begins with a move. After an
/// error the result holds the complete segments before it.
///
/// The result is an ordinary path, as if built by its own operations. Every curve and line lies in
/// a subpath that begins with a move, and every coordinate is finite. The building operations would
/// drop or bend some elements of a text, which are read in this way:
/// - A curve that ends where it starts is cut in two at the middle of its parameter, or at a
///   quarter if the middle lies on its ends. The new points are right to rounding.
/// - A curve that never leaves its start is dropped.
/// - A segment after a close is preceded by a move to the closed subpath's start.
/// - Lines without length, and a close after a close, are dropped. The next command nevertheless
///   starts where they end.
/// - Of moves in a row only the last is kept, also when nothing is drawn after it.
///
/// Numbers are decimal and correctly rounded. They may have a leading +, a leading or trailing
/// point and an exponent. A number nearer to zero than the smallest double is zero, with its sign.
/// These are errors: words (NaN, inf), numbers beyond the range of double, and coordinates that get
/// there by relative or smooth commands.
///
/// Quadratic curves become cubic curves. Their two control points are (p + 2q) / 3 for each end p
/// and the control point q, with an error below 0.51 units in the last place.
///
/// Elliptical arcs become cubic curves of equal sweep, at most an eighth turn each. They run along
/// the outside of the ellipse and leave it by at most 4.3e-6 of the greater radius, rounding aside.
/// The last one ends in the given point exactly. Other functions of this name take another
/// distance.
/// - Radii are taken without their sign, and grow in proportion where they are too small to reach
///   the ends.
/// - With a radius of zero the arc is a line; with equal ends it is nothing.
/// - An arc whose chord is its diameter to within the rounding of its ends turns by exactly half a
///   turn, so that two such arcs make a circle.
///
/// Source of the arcs: the endpoint-to-centre conversion of the SVG standard (implementation notes,
/// elliptical arcs). It is carried out relative to the arc's start, so that radii much greater than
/// the arc lose nothing.
///
/// Errors in the text are in the result. Cost: O(n).
/// \param text need not end in NUL; a NUL byte is an error like any other character out of place.
TRAMMEL_API SvgPathResult ReadSvgPath(std::string_view text);

/// Does the same, with elliptical arcs within a distance.
///
/// An arc becomes cubic curves of equal sweep, as few as the tolerance allows and at most a quarter
/// turn each. They run along the outside of the ellipse: rounding aside, each of their points is at
/// most `arcTolerance` away from it, and each of its points from them. So they are longer than the
/// arc, by at most 2 pi times the tolerance.
/// \param arcTolerance in coordinate units, inclusive. Less than 2^-52 of an arc's greater radius
///     counts as that, and so do NaN and negative numbers. A full turn takes 4 curves at 2.73e-4 of
///     the radius, 8 at 4.3e-6, 28 at 2.4e-9, and 414 at most.
TRAMMEL_API SvgPathResult ReadSvgPath(std::string_view text, double arcTolerance);

/// What ReadSvgPath may do otherwise.
struct SvgPathOptions {
    /// As the function above takes it; empty: an eighth of a turn a curve.
    std::optional<double> arcTolerance;
    /// A subpath that has segments, but none of any length, keeps a line without length: `M60 30h0`
    /// is a move and that line, as `M60 30z` is a move and a close. Strokes with round and square
    /// caps paint a dot there, see Stroke(). A move that no segment follows stays a mere move.
    bool keepDots = false;
};

/// Does the same, as the options say. Without `keepDots` it reads what the functions above read.
TRAMMEL_API SvgPathResult ReadSvgPath(std::string_view text, SvgPathOptions const& options);

/// Writes a path as the shortest text that ReadSvgPath reads back to the same elements and, bit by
/// bit, the same points.
///
/// The text is the shortest of all spellings with M L H V C S Z. Commands are absolute or relative,
/// and command letters and separators stand only where needed. Numbers have the fewest digits that
/// reproduce the double; of equally short spellings, one without exponent is taken. An empty path
/// gives empty text. The text is one line in ASCII.
///
/// Reading back gives the same elements for every path of the building operations whose drawn
/// elements each lie in a subpath begun by a move. Elements that the grammar or these operations
/// cannot express are written as they are measured:
/// - A curve or line with no move before it gets a move to the point that it is measured from. This
///   is (0, 0) for the first element and the last point drawn after a close.
/// - A close that is measured to another point than the start of the subpath as written is a line.
/// - Not written are a close without an open subpath, unknown codes, codes with too few points, and
///   moves in a row except the last.
///
/// Lines without length, and curves that end where they start, can come from a transform, and such
/// lines from SvgPathOptions::keepDots. They are written, and read back as ReadSvgPath says.
///
/// Throws std::invalid_argument naming the element when a point of an element is NaN or infinite,
/// because there is no text for it. Cost: O(n).
TRAMMEL_API std::string WriteSvgPath(CPath const& path);

} // namespace trammel

#endif
