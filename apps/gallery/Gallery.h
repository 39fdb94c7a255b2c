// SPDX-License-Identifier: MIT

// The gallery: pictures of the library's work, each with one sentence and the figures that were
// computed while it was drawn.

#ifndef TRAMMEL_APP_GALLERY_H
#define TRAMMEL_APP_GALLERY_H

#include "Drawing.h"
#include "FontReader.h"
#include "Picture.h"

#include <functional>
#include <string>
#include <vector>

namespace tool {

/// The material of the pictures.
struct GalleryInput {
    Font const& type;       ///< its glyphs are drawn and measured
    Font const& labels;     ///< for the words in the pictures
    std::string typeFile;   ///< the name of the file of `type`
    Drawing const& drawing; ///< a drawing, with at least one outline that has a length
    Drawing const* map;     ///< a map with the countries that are drawn; null: no such pictures
};

/// One figure below a picture.
struct GalleryFigure {
    std::string name;
    std::string value;
};

/// One picture with its text.
struct Plate {
    std::string name;     ///< of the files, without ".svg" and ".png"
    std::string title;    ///< a few words
    std::string sentence; ///< what the picture shows
    std::vector<GalleryFigure> figures;
    Picture picture;
};

/// A function that draws one plate. Throws Error when the font lacks a glyph or the map a country.
using PlateMaker = std::function<Plate(GalleryInput const&)>;

/// Returns the plates in the order of the page. Plates that need a map are there only with one.
std::vector<PlateMaker> GalleryPlates(bool withMap);

/// Returns the page that shows the plates. It is HTML without script. It refers to nothing except
/// the pictures, which lie beside it as NAME.svg and NAME.png.
std::string GalleryPage(GalleryInput const& input, std::vector<Plate> const& plates);

// The plates

Plate DrawMarks(GalleryInput const& input);
Plate DrawTextAlong(GalleryInput const& input);
Plate DrawCut(GalleryInput const& input);
Plate DrawFlattening(GalleryInput const& input);
Plate DrawHitMap(GalleryInput const& input);
Plate DrawHatching(GalleryInput const& input);
Plate DrawTransforms(GalleryInput const& input);
Plate DrawCircles(GalleryInput const& input);
Plate DrawPolygons(GalleryInput const& input);
Plate DrawRounding(GalleryInput const& input);
Plate DrawNearest(GalleryInput const& input);
Plate DrawWelded(GalleryInput const& input);
Plate DrawQuadratics(GalleryInput const& input);
Plate DrawCachedPath(GalleryInput const& input);
Plate DrawCornerTest(GalleryInput const& input);
Plate DrawHardBooleans(GalleryInput const& input);
Plate DrawMoreHardBooleans(GalleryInput const& input);
Plate DrawHardStrokes(GalleryInput const& input);

// The plates that need a map

Plate DrawFourOperations(GalleryInput const& input);
Plate DrawWordCut(GalleryInput const& input);
Plate DrawJoined(GalleryInput const& input);

} // namespace tool

#endif
