// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "FontReader.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "TextAlong.h"
#include "WriteSupport.h"

#include <algorithm>
#include <utility>

namespace tool {

namespace {

struct TextOptions {
    std::string font;
    std::string words;
    Source along;
    std::string size;
    std::string start = "0";
    WriteOptions write;
    bool outline = false;
    bool rawQuadratics = false;
    std::string error;
};

/// The flattening error of --raw-quadratics without --error, as a share of the type's size.
constexpr double kRawErrorShare = 1e-3;

/// Returns the size at which the words fill the given length, less a thousandth for rounding.
double FittingSize(Font const& font, std::string const& words, double length) {
    double const width = TextWidth(font, words, font.UnitsPerEm());
    if (!(width > 0.0)) {
        throw Error("words", "'" + words + "'", "have no width");
    }
    return font.UnitsPerEm() * length / width * 0.999;
}

/// Returns the document with the glyphs after the outline that carries them.
std::string Lettered(TextOptions const& options, Drawing const& drawing,
                     std::vector<Outline> const& glyphs) {
    Outline const& along = drawing.outlines.front();
    std::string const paint = along.stroke == "none" ? "black" : along.stroke;
    SvgEdit edit(drawing.document, DigitsOf(options.write));
    for (Outline const& glyph : glyphs) {
        edit.InsertPath(along.source.placed,
                        {glyph.id, "", "fill:" + paint + ";fill-rule:nonzero;stroke:none"},
                        MovedBack(glyph.path, along.source.beside, drawing, along));
    }
    return edit.Text();
}

void RunText(TextOptions const& options) {
    double const start = NumberOf("--start", options.start);
    if (!(start >= 0.0)) {
        throw Error("--start", "'" + options.start + "'", "must not be negative");
    }
    double size = 0.0;
    if (!options.size.empty()) {
        size = NumberOf("--size", options.size);
        if (!(size > 0.0)) {
            throw Error("--size", "'" + options.size + "'", "must be above 0");
        }
    }
    double error = 0.0;
    if (!options.error.empty()) {
        error = NumberOf("--error", options.error);
        if (!(error > 0.0)) {
            throw Error("--error", "'" + options.error + "'", "must be above 0");
        }
        if (!options.rawQuadratics) {
            throw Error("--error", "'" + options.error + "'", "is for --raw-quadratics");
        }
    }
    CheckWriteOptions(options.write);
    Font font(options.font);
    Drawing const drawing = Load(options.along, ArcAccuracy{ArcAccuracy::By::kDigits, 0.0, ""});
    Outline const& along = drawing.outlines.front();
    double const length = LengthToDivide(drawing, along);
    if (!(start < length)) {
        throw Error("--start", "'" + options.start + "'",
                    "is beyond the outline, whose length is " + Figure(length));
    }
    if (options.size.empty()) {
        size = FittingSize(font, options.words, length - start);
    }
    if (options.rawQuadratics) {
        double const unit = size / font.UnitsPerEm(); // the size of a font unit in the drawing
        error = error > 0.0 ? error : size * kRawErrorShare;
        font.FlattenQuadratics(error / unit);
    }
    std::vector<Outline> glyphs;
    try {
        glyphs = TextAlong(font, options.words, size, WithoutDots(along.path), start);
    } catch (Error const& e) {
        throw Error(options.along.file, along.id, e.what());
    }

    double distance = 0.0;
    for (Outline const& glyph : glyphs) {
        distance = std::max(distance, glyph.arcDistance);
    }
    TellDistance(options.font, "", distance, error);

    std::string const& output = options.write.output;
    if (KeepsDocument(drawing, output)) {
        WriteFile(output, SvgBytes(Lettered(options, drawing, glyphs), output));
        return;
    }
    std::vector<Outline> everything = glyphs;
    everything.push_back(along);
    Picture picture;
    picture.page = LinePicture(drawing.page, everything).page;
    if (options.outline) {
        Style line;
        line.stroke = Colour{128, 128, 128};
        line.strokeWidth = LineWidth(options.write, picture.page);
        AddOutlines(picture, {along}, line);
    }
    Style ink;
    ink.fill = Colour{};
    AddOutlines(picture, glyphs, ink);
    WriteFile(output, NewFile(std::move(picture), output, options.write));
}

} // namespace

void AddText(Command const& app) {
    auto const options = std::make_shared<TextOptions>();
    Command const command =
        app.AddCommand("text", "Sets words along an outline and writes their outlines");
    command.AddOption("FONT", options->font, "The font file").Required().TypeName("");
    command.AddOption("WORDS", options->words, "The words (UTF-8)").Required().TypeName("");
    command.AddOption("--along", options->along.file, "Drawing whose first outline carries them")
        .Required()
        .TypeName("FILE");
    AddIds(command, options->along.ids);
    command
        .AddOption("--size", options->size,
                   "Size of the type (default: the words fill the outline)")
        .TypeName("S");
    command
        .AddOption("--start", options->start, "Where the words begin: distance along the outline")
        .TypeName("D");
    command.AddFlag("--outline", options->outline,
                    "In a new picture: draw the outline that carries the words");
    command.AddFlag("--raw-quadratics", options->rawQuadratics,
                    "Flatten TrueType's quadratic curves as they are, instead of raising them to "
                    "cubics");
    command
        .AddOption("--error", options->error,
                   "With it: how far the lines may deviate (default: a 1000th of the size)")
        .TypeName("E");
    AddWriteOptions(command, options->write);
    command.SetFooter(
        "An SVG drawing is kept: the words stand after the outline that carries them.\n"
        "CFF fonts have cubic curves only: --raw-quadratics leaves them as they are.\n"
        "Example: trammel text font.ttf \"once around\" --along circle.svg -o ring.png");
    command.SetAction([options] { RunText(*options); });
}

} // namespace tool
