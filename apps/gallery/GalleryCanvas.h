// SPDX-License-Identifier: MIT

// GalleryCanvas: a page of the gallery and the few things that are drawn on it. Everything, words
// included, becomes filled and stroked outlines, so that SVG and PNG show the same.

#ifndef TRAMMEL_APP_GALLERYCANVAS_H
#define TRAMMEL_APP_GALLERYCANVAS_H

#include "FontReader.h"
#include "Gallery.h"
#include "Picture.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/CPath.h>
#include <trammel/TLine.h>
#include <trammel/TPoint.h>
#include <trammel/TRect.h>

#include <string>
#include <utility>
#include <vector>

namespace tool {

/// The colours of the gallery: the set of Okabe and Ito, which stay apart for colour-blind eyes,
/// with black and greys.
namespace palette {

inline constexpr Colour paper{255, 255, 255};
inline constexpr Colour ink{38, 44, 51};
inline constexpr Colour grey{128, 138, 148};
inline constexpr Colour ghost{197, 204, 211};
inline constexpr Colour mist{232, 235, 238};
inline constexpr Colour blue{0, 114, 178};
inline constexpr Colour vermilion{213, 94, 0};
inline constexpr Colour green{0, 132, 96};
inline constexpr Colour sky{86, 180, 233};
inline constexpr Colour amber{230, 159, 0};

} // namespace palette

/// The part of the words that stands at the label's point.
enum class Align { left, centre, right };

/// Returns an ellipse of curves that are within 2e-9 of the greater radius: figures of it are right
/// to the digits that the pictures show.
CPath EllipsePath(TPoint<double> const& centre, double hRadius, double vRadius);

/// A page that is drawn on.
class Canvas {
public:
    static constexpr double kWidth = 800.0;
    static constexpr double kHeight = 560.0;
    static constexpr double kLabelSize = 20.0;

    explicit Canvas(Font const& labels);

    /// Fills by the even-odd rule.
    void Fill(CPath const& path, Colour colour, double opacity = 1.0);
    void Stroke(CPath const& path, Colour colour, double width, double opacity = 1.0);
    void Segment(TPoint<double> const& a, TPoint<double> const& b, Colour colour, double width);
    /// Strokes dashes along a path. Equal dashes and gaps, each about `dash` long, fill it.
    void Dashes(CPath const& path, Colour colour, double width, double dash = 7.0);
    /// Draws filled discs of one size.
    void Dots(std::vector<TPoint<double>> const& points, double radius, Colour colour);
    /// Draws a filled disc in a thin rim of paper, so that it stands out from lines.
    void Dot(TPoint<double> const& p, double radius, Colour colour);
    /// Draws a circle filled with paper.
    void Ring(TPoint<double> const& p, double radius, Colour colour, double width);
    /// Draws a line with a head at its end.
    void Arrow(TPoint<double> const& a, TPoint<double> const& b, Colour colour, double width);
    /// Draws words, with the middle of their capitals at the height of `p`. A rim of paper keeps
    /// them apart from lines below.
    void Label(std::string const& words, TPoint<double> const& p, Align align = Align::centre,
               Colour colour = palette::ink, double size = kLabelSize);
    /// Returns the width of the words in the label font.
    double LabelWidth(std::string const& words, double size = kLabelSize) const;

    Picture TakePicture() { return std::move(mPicture); }

private:
    Font const& mLabels;
    Picture mPicture;
};

/// Returns the transform that brings `from` into the middle of `to`, as large as fits, in
/// proportion.
CMatrix3x3 Fitting(TRect<double> const& from, TRect<double> const& to);

/// Returns a copy of the path, transformed.
CPath Transformed(CPath path, CMatrix3x3 const& m);

/// Returns the outline of a letter of `input.type`, in font units. Throws Error when the font has
/// none.
CPath LetterPath(GalleryInput const& input, char character);

/// Returns the outline of a letter, fitted into a rectangle.
CPath LetterIn(GalleryInput const& input, char character, TRect<double> const& to);

/// Finds places for labels beside marks on an outline.
class LabelPlacer {
public:
    /// \param outline  labels keep clear of it
    /// \param frame    labels stay inside of it
    LabelPlacer(CPath const& outline, TRect<double> const& frame);

    /// Keeps clear of a line as well.
    void Avoid(TLine<double> const& line);

    /// Returns a place for a label of the given size near `mark`, and keeps it. The best place is
    /// clear of the outline and of the places given so far, and as near to the mark as that allows.
    TPoint<double> Place(TPoint<double> const& mark, double width, double height);

private:
    double Clearance(TRect<double> const& box) const;

    std::vector<TPoint<double>> mOutline; ///< points all along it
    TRect<double> mFrame;
    std::vector<TRect<double>> mTaken;
};

/// Returns a number with a fixed count of decimals.
std::string Rounded(double number, int decimals);

/// Returns a number with two significant digits, for errors: "3.1e-14", "0.0021", "0".
std::string Small(double number);

} // namespace tool

#endif
