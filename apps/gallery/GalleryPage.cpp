// SPDX-License-Identifier: MIT

#include "Gallery.h"
#include "Markup.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool {
namespace {

constexpr std::string_view kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Trammel: a gallery</title>
<style>
:root { color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0; background: #f4f5f6; color: #262c33;
       font: 16px/1.5 system-ui, "DejaVu Sans", sans-serif; }
header, main, footer { max-width: 56rem; margin: 0 auto; padding: 0 1rem; }
header { padding-top: 2rem; }
h1 { font-size: 1.9rem; line-height: 1.2; margin: 0 0 .5rem; }
h2 { font-size: 1.25rem; line-height: 1.3; margin: 0 0 .25rem; }
nav { font-size: .95rem; }
nav a { display: inline-block; margin-right: .9rem; padding: .2rem 0; }
a { color: #005c91; }
section { background: #fff; border: 1px solid #dde1e5; border-radius: .5rem;
          margin: 1.5rem 0; padding: 1rem; }
section p { margin: 0 0 .75rem; }
img { display: block; width: 100%; height: auto; border-radius: .25rem; }
dl { margin: .75rem 0; }
dl div { display: flex; flex-wrap: wrap; justify-content: space-between; gap: 0 1rem;
         padding: .25rem 0; border-top: 1px solid #edf0f2; }
dt { color: #56616c; }
dd { margin: 0; font-variant-numeric: tabular-nums; overflow-wrap: anywhere; }
p.files { margin: 0; font-size: .95rem; }
p.files a { margin-right: .9rem; }
footer { padding-bottom: 2rem; color: #56616c; font-size: .95rem; overflow-wrap: anywhere; }
</style>
</head>
<body>
)";

void AddPlate(std::string& page, Plate const& plate) {
    std::string const name = Escaped(plate.name);
    page += "<section id=\"" + name + "\">\n<h2>" + Escaped(plate.title) + "</h2>\n<p>" +
            Escaped(plate.sentence) + "</p>\n<a href=\"" + name + ".svg\"><img src=\"" + name +
            ".svg\" alt=\"" + Escaped(plate.title) + "\" width=\"800\" height=\"560\"></a>\n<dl>\n";
    for (GalleryFigure const& figure : plate.figures) {
        page += "<div><dt>" + Escaped(figure.name) + "</dt><dd>" + Escaped(figure.value) +
                "</dd></div>\n";
    }
    page += "</dl>\n<p class=\"files\"><a href=\"" + name + ".svg\">" + name +
            ".svg</a> <a href=\"" + name + ".png\">" + name + ".png</a></p>\n</section>\n";
}

} // namespace

std::string GalleryPage(GalleryInput const& input, std::vector<Plate> const& plates) {
    std::string page(kHead);
    page += "<header>\n<h1>Trammel: a gallery</h1>\n<p>Outlines measured, cut, searched, "
            "hatched, transformed and combined. All figures were computed while the pictures were "
            "drawn; where no "
            "unit stands beside them, they are units of a picture, which is 800 wide.</p>\n<nav>\n";
    for (Plate const& plate : plates) {
        page += "<a href=\"#" + Escaped(plate.name) + "\">" + Escaped(plate.title) + "</a>\n";
    }
    page += "</nav>\n</header>\n<main>\n";
    for (Plate const& plate : plates) {
        AddPlate(page, plate);
    }
    page += "</main>\n<footer>\n<p>Letters: " + Escaped(input.typeFile) +
            "<br>Drawing: " + Escaped(input.drawing.file) + "<br>Map: " +
            (input.map != nullptr ? Escaped(input.map->file)
                                  : "none was there; the pictures made from one are left out") +
            "</p>\n</footer>\n</body>\n</html>\n";
    return page;
}

} // namespace tool
