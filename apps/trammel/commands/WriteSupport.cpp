// SPDX-License-Identifier: MIT

#include "WriteSupport.h"

#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Warning.h"

#include <trammel/AccurateCurve.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace tool {

namespace {

/// Lengths that differ by no more, beside their size, are the same within rounding.
constexpr double kSameLength = 1e-9;

/// What a coordinate that goes through a matrix and back may be off by, beside its size.
constexpr double kUndoneRounding = 0x1p-52;

/// Returns the number of an option, which must be above 0; 0 when the option is missing.
double Positive(std::string const& option, std::string const& text) {
    if (text.empty()) {
        return 0.0;
    }
    double const number = NumberOf(option, text);
    if (!(number > 0.0)) {
        throw Error(option, "'" + text + "'", "must be above 0");
    }
    return number;
}

/// Returns the colour of an option: #rgb, #rrggbb, white or black; nothing for "none".
std::optional<Colour> ColourOf(std::string const& option, std::string const& text) {
    if (text == "none" || text == "transparent") {
        return std::nullopt;
    }
    std::string hex = text == "white" ? "#ffffff" : text == "black" ? "#000000" : text;
    if (hex.size() == 4) {
        hex = {'#', hex[1], hex[1], hex[2], hex[2], hex[3], hex[3]};
    }
    if (hex.size() != 7 || hex[0] != '#' ||
        hex.find_first_not_of("0123456789abcdefABCDEF", 1) != std::string::npos) {
        throw Error(option, "'" + text + "'", "must be #rgb, #rrggbb, white, black or none");
    }
    auto const part = [&hex](std::size_t i) {
        return static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16));
    };
    return Colour{part(1), part(3), part(5)};
}

/// Returns how many decimals the coordinates have that rounding leaves alone when a path goes
/// through a matrix and back. The others are noise: 10 would come back as 9.9999999999999. Returns
/// nothing where a double has no such decimals, in drawings that are very small or very large.
/// \param path  behind the matrix `there`, which `back` undoes
std::optional<int> DecimalsOfUndone(CPath const& path, CMatrix3x3 const& there,
                                    CMatrix3x3 const& back) {
    TRect<double> const bounds = ControlBounds(path);
    double const h = std::max(std::abs(bounds.left), std::abs(bounds.right)) + std::abs(there.tx);
    double const v = std::max(std::abs(bounds.top), std::abs(bounds.bottom)) + std::abs(there.ty);
    double const most = std::max(std::abs(back.a) * h + std::abs(back.c) * v + std::abs(back.tx),
                                 std::abs(back.b) * h + std::abs(back.d) * v + std::abs(back.ty));
    double const decimals = -std::round(std::log10(DigitAccuracy(kUndoneRounding * most)));
    bool const exact = decimals >= 0.0 && decimals <= std::numeric_limits<double>::digits10;
    return exact ? std::optional<int>(static_cast<int>(decimals)) : std::nullopt;
}

} // namespace

void AddWriteOptions(Command const& command, WriteOptions& options, bool required) {
    command
        .AddOption("-o,--output", options.output,
                   "The file to write: .svg, .svgz or .png; - for standard output")
        .Required(required)
        .TypeName("FILE");
    command
        .AddOption("--precision", options.precision,
                   "Decimals of new coordinates (default: all that are needed)")
        .TypeName("N");
    command
        .AddOption("--stroke-width", options.strokeWidth,
                   "Width of the lines that are added, in the drawing's units")
        .TypeName("W");
    command.AddOption("--width", options.width, "PNG: width in pixels").TypeName("PX");
    command.AddOption("--height", options.height, "PNG: height in pixels").TypeName("PX");
    command.AddOption("--zoom", options.scale, "PNG: pixels for each unit of the drawing")
        .TypeName("S");
    command
        .AddOption("--background", options.background,
                   "PNG: #rgb, #rrggbb, white, black or none (default: white)")
        .TypeName("COLOUR");
}

void CheckWriteOptions(WriteOptions const& options) {
    DigitsOf(options);
    Positive("--accuracy", options.accuracy);
    Positive("--stroke-width", options.strokeWidth);
    bool const png = IsPngName(options.output);
    std::pair<char const*, std::string const*> const sizes[] = {
        {"--width", &options.width}, {"--height", &options.height}, {"--zoom", &options.scale}};
    for (auto const& [name, text] : sizes) {
        Positive(name, *text);
        if (!text->empty() && !png) {
            throw Error(name, "'" + *text + "'", "is for .png");
        }
    }
    if (!options.background.empty()) {
        ColourOf("--background", options.background);
        if (!png) {
            throw Error("--background", "'" + options.background + "'", "is for .png");
        }
    }
    if (!options.scale.empty() && !(options.width.empty() && options.height.empty())) {
        throw Error("--zoom", "'" + options.scale + "'", "cannot go with --width or --height");
    }
}

bool KeepsDocument(Drawing const& drawing, std::string const& file) {
    return drawing.document && IsSvgName(file);
}

std::optional<int> DigitsOf(WriteOptions const& options) {
    if (options.precision.empty()) {
        return std::nullopt;
    }
    double const digits = NumberOf("--precision", options.precision);
    if (!(digits >= 0.0 && digits <= 15.0 && digits == std::floor(digits))) {
        throw Error("--precision", "'" + options.precision + "'",
                    "must be a whole number from 0 to 15");
    }
    return static_cast<int>(digits);
}

void AddCurveAccuracy(Command const& command, WriteOptions& options) {
    command
        .AddOption("--accuracy", options.accuracy,
                   "How far curves may be from the circles and arcs that they stand for (default: "
                   "4e-6 of the radius)")
        .TypeName("A");
}

ArcAccuracy ArcsOf(WriteOptions const& options) {
    double const most = Positive("--accuracy", options.accuracy);
    return {most > 0.0 ? ArcAccuracy::By::kDistance : ArcAccuracy::By::kPicture, most, ""};
}

double LineWidth(WriteOptions const& options, Page const& page) {
    double const width = Positive("--stroke-width", options.strokeWidth);
    return width > 0.0 ? width : HairWidth(page);
}

std::string NewFile(Picture picture, std::string const& file, WriteOptions const& options) {
    for (Shape& shape : picture.shapes) {
        shape.path = Rounded(std::move(shape.path), DigitsOf(options));
    }
    PngSize size;
    size.width = Positive("--width", options.width);
    size.height = Positive("--height", options.height);
    size.scale = Positive("--zoom", options.scale);
    if (!options.background.empty()) {
        picture.background = ColourOf("--background", options.background);
        size.transparent = !picture.background;
    }
    return PictureBytes(picture, file, size);
}

void TellDistance(std::string const& file, std::string const& id, double distance,
                  double tolerance) {
    if (distance > tolerance && tolerance > 0.0) { // it is 0 for a drawing of no size
        Warn(file, id,
             "keeps within " + Figure(distance) + " only, not within " + Figure(tolerance));
    }
}

CMatrix3x3 Undone(CMatrix3x3 const& m, Drawing const& drawing, Outline const& outline) {
    std::optional<CMatrix3x3> const inverse = InverseOf(m);
    if (!inverse) {
        throw Error(drawing.file, outline.id, "its transform presses it into a line");
    }
    return *inverse;
}

CPath MovedBack(CPath path, CMatrix3x3 const& m, Drawing const& drawing, Outline const& outline) {
    CMatrix3x3 const back = Undone(m, drawing, outline);
    std::optional<int> const decimals =
        IsIdentity(m) ? std::nullopt : DecimalsOfUndone(path, m, back);
    return Rounded(Moved(std::move(path), back), decimals);
}

void SetPath(SvgEdit& edit, Drawing const& drawing, Outline const& outline, CPath path) {
    edit.SetPath(outline.source.element,
                 MovedBack(std::move(path), outline.source.toDrawing, drawing, outline));
}

void KeepDashes(SvgEdit& edit, Outline const& outline, CPath const& path) {
    if (!(outline.pathLength > 0.0) || !outline.pen || outline.stroke == "none") {
        return;
    }
    std::vector<double> const& dashes = outline.pen->style.dashes;
    std::optional<CMatrix3x3> const own = InverseOf(outline.source.toDrawing);
    if (dashes.empty() || !own ||
        *std::max_element(dashes.begin(), dashes.end()) >= outline.pathLength) {
        return;
    }
    double const before = trammel::ArcLength(Moved(outline.path, *own), 0.0);
    double const after = trammel::ArcLength(Moved(path, *own), 0.0);
    double const length = outline.pathLength * (after / before);
    if (std::abs(after - before) > kSameLength * before && length > 0.0 && std::isfinite(length)) {
        edit.SetAttribute(outline.source.element, "pathLength", Exact(length));
    }
}

std::vector<Outline const*> OnePerElement(Drawing const& drawing) {
    std::vector<Outline const*> chosen;
    std::unordered_map<std::size_t, std::size_t> places;
    std::unordered_map<std::size_t, std::size_t> counts;
    for (Outline const& outline : drawing.outlines) {
        ++counts[outline.source.element];
        if (!InverseOf(outline.source.toDrawing)) {
            continue;
        }
        auto const place = places.emplace(outline.source.element, chosen.size());
        if (place.second) {
            chosen.push_back(&outline);
            continue;
        }
        Outline const*& other = chosen[place.first->second];
        if (std::abs(outline.source.toDrawing.Determinant()) >
            std::abs(other->source.toDrawing.Determinant())) {
            other = &outline;
        }
    }
    for (Outline const* const outline : chosen) {
        std::size_t const copies = outline->source.copies;
        if (copies > counts[outline->source.element]) {
            Warn(drawing.file, outline->id,
                 "is drawn " + std::to_string(copies) + " times; every copy changes");
        }
    }
    return chosen;
}

} // namespace tool
