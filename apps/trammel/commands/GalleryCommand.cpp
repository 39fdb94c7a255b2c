// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "Drawing.h"
#include "Error.h"
#include "FontReader.h"
#include "Gallery.h"
#include "Output.h"
#include "Picture.h"
#include "Progress.h"

#include <trammel/AccurateCurve.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tool {

namespace {

/// The pixels of a PNG's longer side: two for each unit of the page.
constexpr int kPixels = 1600;

struct GalleryOptions {
    std::string folder;
    // Debian's packages fonts-ebgaramond, fonts-dejavu-core and breeze-icon-theme have these files.
    std::string font = "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf";
    std::string labelFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    // `script/setup maps` puts the map here, seen from the folder of the sources.
    std::string map = "build/data/world-atlas/countries-50m.json";
    bool mapChosen = false;
    std::string drawing = "/usr/share/icons/breeze/devices/64/input-gaming.svg";
};

/// A folder for output. The constructor makes it and the folders above it, as far as they do not
/// exist. The destructor removes the new ones again unless Keep was called.
class OutputFolder {
public:
    explicit OutputFolder(std::string const& name) {
        namespace fs = std::filesystem;
        std::error_code error;
        fs::path const folder = fs::absolute(name, error).lexically_normal();
        std::vector<fs::path> missing;
        for (fs::path path = folder;
             !error && !path.empty() && !fs::exists(path, error) && path != path.parent_path();
             path = path.parent_path()) {
            if (path.has_filename()) {
                missing.push_back(path);
            }
        }
        std::reverse(missing.begin(), missing.end());
        for (fs::path const& path : missing) {
            if (error) {
                break;
            }
            if (fs::create_directory(path, error)) {
                mMade.push_back(path);
            }
        }
        bool const usable = !error && fs::is_directory(folder, error);
        if (error || !usable) {
            Remove();
            throw Error(name, "",
                        error ? "cannot be made: " + SystemMessage(error.value())
                              : "is a file, not a folder");
        }
    }
    ~OutputFolder() { Remove(); }
    OutputFolder(OutputFolder const&) = delete;
    OutputFolder& operator=(OutputFolder const&) = delete;

    void Keep() { mMade.clear(); }

private:
    void Remove() {
        std::error_code ignored;
        for (auto path = mMade.rbegin(); path != mMade.rend(); ++path) {
            std::filesystem::remove(*path, ignored);
        }
        mMade.clear();
    }

    std::vector<std::filesystem::path> mMade; ///< the new folders, outer ones first
};

/// Returns the drawing without the outlines that have no length.
Drawing LoadDrawing(std::string const& file) {
    Drawing drawing = ReadDrawing(file, ArcAccuracy{ArcAccuracy::By::kDigits, 0.0, ""});
    auto const hasNoLength = [](Outline const& outline) {
        double const length = trammel::ArcLength(outline.path, 0.0);
        return !(length > 0.0 && std::isfinite(length));
    };
    drawing.outlines.erase(
        std::remove_if(drawing.outlines.begin(), drawing.outlines.end(), hasNoLength),
        drawing.outlines.end());
    if (drawing.outlines.empty()) {
        throw Error(file, "", "has no outline with a length");
    }
    return drawing;
}

/// Returns the map. A missing map is an error only if the user asked for it.
std::optional<Drawing> LoadMap(GalleryOptions const& options) {
    std::error_code ignored;
    if (!options.mapChosen && !std::filesystem::exists(options.map, ignored)) {
        return std::nullopt;
    }
    return ReadDrawing(options.map);
}

std::string InFolder(std::string const& folder, std::string const& name) {
    return (std::filesystem::path(folder) / name).string();
}

void RunGallery(GalleryOptions const& options) {
    Font const type(options.font);
    Font const labels(options.labelFont);
    Drawing const drawing = LoadDrawing(options.drawing);
    std::optional<Drawing> const map = LoadMap(options);
    GalleryInput const input{type, labels, options.font, drawing, map ? &*map : nullptr};
    std::vector<PlateMaker> const makers = GalleryPlates(map.has_value());

    OutputFolder folder(options.folder);
    std::vector<Plate> plates;
    std::vector<std::pair<std::string, std::string>> contents;
    {
        Progress progress("drawing pictures", makers.size());
        for (PlateMaker const& make : makers) {
            plates.push_back(make(input));
            Plate const& plate = plates.back();
            contents.emplace_back(plate.name + ".svg", SvgText(plate.picture));
            contents.emplace_back(plate.name + ".png", PngBytes(plate.picture, kPixels));
            progress.Update(plates.size());
        }
    }
    contents.emplace_back("index.html", GalleryPage(input, plates));

    OutputFiles files;
    for (auto const& [name, content] : contents) {
        files.Add(InFolder(options.folder, name), content);
    }
    Print(InFolder(options.folder, "index.html") + "\n");
    files.Commit();
    folder.Keep();
    if (!map) {
        std::string const note = "trammel: no map in " + options.map +
                                 " (script/setup maps fetches it); its pictures are left out\n";
        std::fwrite(note.data(), 1, note.size(), stderr);
    }
}

} // namespace

void AddGallery(Command const& app) {
    auto const options = std::make_shared<GalleryOptions>();
    Command const command = app.AddCommand(
        "gallery", "Draws a page of pictures that show what the library does, with figures");
    command
        .AddOption("-o,--output", options->folder,
                   "Folder for index.html and its pictures; made if it does not exist")
        .Required()
        .TypeName("DIR");
    command.AddOption("--font", options->font, "Font whose letters are drawn and measured")
        .TypeName("FILE")
        .ShowDefault();
    command.AddOption("--label-font", options->labelFont, "Font of the words in the pictures")
        .TypeName("FILE")
        .ShowDefault();
    command.AddOption("--drawing", options->drawing, "Drawing that is measured and searched")
        .TypeName("FILE")
        .ShowDefault();
    Option const map =
        command.AddOption("--map", options->map, "TopoJSON map whose countries are drawn")
            .TypeName("FILE")
            .ShowDefault();
    command.SetFooter("Prints where the page is.\nExample: trammel gallery -o pictures");
    command.SetAction([options, map] {
        options->mapChosen = map.IsGiven();
        RunGallery(*options);
    });
}

} // namespace tool
