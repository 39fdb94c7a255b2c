// SPDX-License-Identifier: MIT

#include "Reading.h"

#include "AnyOutline.h"
#include "Outlines.h"
#include "Picture.h"
#include "SvgDocument.h"
#include "SvgEdit.h"
#include "SvgPath.h"
#include "SvgReader.h"
#include "TextEncoding.h"

#include <memory>
#include <utility>
#include <vector>

namespace fuzz {

namespace {

/// A drawing out of the grammar, with mistakes here and there.
class Grammar {
public:
    explicit Grammar(Input& in) : mIn(in) {}

    std::string Document() {
        std::string text = mIn.Flag() ? "<?xml version=\"1.0\"?>\n" : "";
        if (mIn.Int(0, 7) == 0) {
            text += "<!DOCTYPE svg [<!ENTITY e \"" + Value() + "\"><!ENTITY f '&e;&e;'>]>";
        }
        text += "<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attributes() + ">";
        for (int i = mIn.Int(0, 8); i > 0; --i) {
            text += Element(0);
        }
        return text + "</svg>\n";
    }

private:
    std::string Element(int depth) {
        static char const* const kNames[] = {
            "path",   "path",    "path",     "path",          "rect",
            "circle", "ellipse", "line",     "polyline",      "polygon",
            "g",      "g",       "use",      "use",           "svg",
            "a",      "switch",  "defs",     "symbol",        "clipPath",
            "text",   "style",   "mask",     "marker",        "pattern",
            "image",  "title",   "svg:path", "foreignObject", "linearGradient"};
        std::string const name = AnyOf(mIn, kNames);
        std::string text = "<" + name + Attributes();
        if (name == "path") {
            text += " d=\"" + PathData() + "\"";
        } else if (name == "use") {
            text += " href=\"#" + Id() + "\"";
        } else if (name == "style") {
            return text + ">" + Sheet() + "</style>";
        }
        int const children = depth < 4 ? mIn.Int(0, 3) : 0;
        if (children == 0) {
            return text + "/>";
        }
        text += ">";
        for (int i = children; i > 0; --i) {
            text += Element(depth + 1);
        }
        return text + (mIn.Int(0, 63) == 0 ? "" : "</" + name + ">");
    }

    std::string Attributes() {
        static char const* const kNames[] = {"id",
                                             "id",
                                             "class",
                                             "x",
                                             "y",
                                             "width",
                                             "height",
                                             "rx",
                                             "ry",
                                             "r",
                                             "cx",
                                             "cy",
                                             "x1",
                                             "y1",
                                             "x2",
                                             "y2",
                                             "points",
                                             "transform",
                                             "transform",
                                             "viewBox",
                                             "style",
                                             "style",
                                             "fill",
                                             "stroke",
                                             "stroke-width",
                                             "fill-rule",
                                             "clip-rule",
                                             "clip-path",
                                             "display",
                                             "visibility",
                                             "href",
                                             "xlink:href",
                                             "opacity",
                                             "pathLength",
                                             "overflow",
                                             "preserveAspectRatio",
                                             "paint-order",
                                             "vector-effect",
                                             "clipPathUnits",
                                             "transform-origin",
                                             "d",
                                             "stroke-linecap",
                                             "stroke-linejoin",
                                             "stroke-miterlimit",
                                             "font-size",
                                             "color",
                                             "stroke-dasharray",
                                             "stroke-dashoffset",
                                             "fill-opacity",
                                             "systemLanguage",
                                             "requiredExtensions",
                                             "xml:space"};
        std::string text;
        std::string used = " d href ";
        for (int i = mIn.Int(0, 6); i > 0; --i) {
            std::string const name = AnyOf(mIn, kNames);
            if (used.find(" " + name + " ") != std::string::npos) {
                continue;
            }
            used += name + " ";
            text += " " + name + "=\"" + ValueOf(name) + "\"";
        }
        return text;
    }

    std::string ValueOf(std::string const& name) {
        if (mIn.Int(0, 7) == 0) {
            return Value();
        }
        if (name == "id" || name == "class") {
            return Id();
        }
        if (name == "style") {
            return Declarations();
        }
        if (name == "transform") {
            return Transform();
        }
        if (name == "clip-path") {
            return "url(#" + Id() + ")";
        }
        if (name == "viewBox" || name == "points" || name == "stroke-dasharray") {
            return Numbers(mIn.Int(0, 6));
        }
        if (name == "href" || name == "xlink:href") {
            return "#" + Id();
        }
        return mIn.Flag() ? Length() : Keyword();
    }

    std::string Id() {
        static char const* const kIds[] = {"a", "b", "c", "d", "e"};
        return AnyOf(mIn, kIds);
    }
    std::string Length() {
        static char const* const kUnits[] = {"",   "",   "",   "",   "px", "mm", "cm",
                                             "in", "pt", "pc", "em", "%",  "Q",  "rem"};
        std::string const number = mIn.Int(0, 3) == 0 ? AnyNumber(mIn) : Small();
        return number + AnyOf(mIn, kUnits);
    }
    std::string Small() { return tool::Exact(mIn.Int(-40, 120) * 0.5); }
    std::string Numbers(int count) {
        std::string text;
        for (; count > 0; --count) {
            text += (mIn.Int(0, 7) == 0 ? AnyNumber(mIn) : Small()) + (mIn.Flag() ? " " : ",");
        }
        return text;
    }
    std::string Keyword() {
        static char const* const kKeywords[] = {"none",
                                                "inherit",
                                                "initial",
                                                "unset",
                                                "evenodd",
                                                "nonzero",
                                                "red",
                                                "#abc",
                                                "currentColor",
                                                "inline",
                                                "hidden",
                                                "visible",
                                                "collapse",
                                                "round",
                                                "bevel",
                                                "miter",
                                                "butt",
                                                "square",
                                                "stroke",
                                                "normal",
                                                "non-scaling-stroke",
                                                "en",
                                                "100%",
                                                "auto",
                                                "center",
                                                "scroll",
                                                "xMidYMid meet",
                                                "xMinYMax slice",
                                                "objectBoundingBox",
                                                "var(--a)",
                                                "calc(1px + 2 * (3mm - 10%))",
                                                "url(#a) none",
                                                "left top"};
        return AnyOf(mIn, kKeywords);
    }
    std::string Transform() {
        static char const* const kNames[] = {"matrix", "translate", "scale",     "rotate",
                                             "skewX",  "skewY",     "translateX"};
        std::string text;
        for (int i = mIn.Int(1, 3); i > 0; --i) {
            std::string const name = AnyOf(mIn, kNames);
            text += name + "(" + Numbers(name == "matrix" ? 6 : mIn.Int(1, 3)) + ") ";
        }
        return text;
    }
    std::string PathData() {
        static char const* const kCommands[] = {"M", "m", "L", "l", "H", "v", "C", "c",
                                                "S", "q", "T", "A", "a", "Z", "z", "L"};
        static int const kCounts[] = {2, 2, 2, 2, 1, 1, 6, 6, 4, 4, 2, 0, 0, 0, 0, 2};
        std::string text = "M" + Numbers(2);
        for (int i = mIn.Int(0, 8); i > 0; --i) {
            std::size_t const k = mIn.Byte() % 16U;
            text += kCommands[k];
            text += k == 11 || k == 12 ? Numbers(3) + "0 1 " + Numbers(2) : Numbers(kCounts[k]);
        }
        return mIn.Int(0, 31) == 0 ? text + Value() : text;
    }
    std::string Declarations() {
        static char const* const kProperties[] = {
            "fill",      "stroke",    "display",   "visibility", "stroke-width",
            "--a",       "fill-rule", "clip-path", "transform",  "overflow",
            "opacity",   "color",     "d",         "width",      "paint-order",
            "font-size", "r",         "x"};
        std::string text;
        for (int i = mIn.Int(0, 4); i > 0; --i) {
            std::string const name = AnyOf(mIn, kProperties);
            std::string const value = name == "d" ? "path('" + PathData() + "')" : ValueOf(name);
            text += name + ":" + value + (mIn.Int(0, 7) == 0 ? "!important;" : ";");
        }
        return text;
    }
    std::string Sheet() {
        static char const* const kSelectors[] = {"path",
                                                 "*",
                                                 ".a",
                                                 "#a",
                                                 "g > path",
                                                 "g path",
                                                 "rect ~ *",
                                                 "a + b",
                                                 "[id]",
                                                 "[id=a]",
                                                 ":root",
                                                 ":first-child",
                                                 ":nth-child(2n+1)",
                                                 ":not(.b)",
                                                 ":is(#b, .c)",
                                                 "path:last-of-type",
                                                 "@media screen{path",
                                                 ":hover",
                                                 "::before",
                                                 ":nth-of-type(-n+2)"};
        std::string text;
        for (int i = mIn.Int(0, 4); i > 0; --i) {
            text += AnyOf(mIn, kSelectors);
            text += (mIn.Int(0, 3) == 0 ? "," + AnyOf(mIn, kSelectors) : "") + "{" +
                    Declarations() + "}";
            text += mIn.Int(0, 15) == 0 ? "}" : "";
        }
        return text;
    }
    /// Any characters that an attribute may have.
    std::string Value() {
        static char const kCharacters[] = "#()%+-.,:;/*!@\\'~ 0123456789aeMmZx{}[]\n&;\xC3\xA9";
        std::string text;
        for (int i = mIn.Int(0, 12); i > 0; --i) {
            text += kCharacters[mIn.Byte() % (sizeof kCharacters - 1)];
        }
        for (std::size_t at = 0; (at = text.find('&', at)) != std::string::npos; at += 3) {
            text.replace(at, 1, mIn.Flag() ? "&e;" : "&#9;");
        }
        return text;
    }

    Input& mIn;
};

std::optional<tool::Drawing> Read(std::string const& content, tool::ArcAccuracy const& arcs = {}) {
    return DrawingOf([&] {
        tool::Encoding const encoding = tool::EncodingOf(content);
        return tool::ReadSvg(kFile, tool::Decoded(kFile, content, encoding), encoding, arcs);
    });
}

/// An outline's source is an element of the document, and no change leaves the file as it is.
void CheckDocument(tool::Drawing const& drawing, std::string const& content) {
    Require(drawing.document != nullptr, "a drawing has its document");
    for (tool::Outline const& outline : drawing.outlines) {
        Require(bool(drawing.document->ElementAt(outline.source.element)),
                "an outline comes from an element");
        Require(bool(drawing.document->ElementAt(outline.source.placed)),
                "an outline is placed by an element");
    }
    if (content.size() < 2 || (content[0] != '\xFE' && content[0] != '\xFF')) {
        tool::SvgEdit const edit(drawing.document, {});
        Require(edit.Text() == content || drawing.document->Encoded("\xC3\xA9") != "\xC3\xA9",
                "no change leaves every byte as it is");
    }
}

/// The outlines come back from a picture of them.
void CheckPicture(tool::Drawing const& drawing) {
    tool::Picture picture;
    picture.page.frame = Box(0.0, 0.0, 100.0, 100.0);
    std::vector<tool::Outline> drawn;
    for (tool::Outline const& outline : drawing.outlines) {
        // Only what its own text gives back, bit by bit.
        std::string const text = trammel::WriteSvgPath(outline.path);
        if (!text.empty() && Same(trammel::ReadSvgPath(text).path, outline.path)) {
            drawn.push_back(outline);
        }
    }
    tool::AddOutlines(picture, drawn, {});
    std::optional<tool::Drawing> const again = Read(tool::SvgText(picture));
    Require(again && again->outlines.size() == drawn.size(), "a picture has the outlines");
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        Require(Same(again->outlines[i].path, drawn[i].path), "the points come back, bit by bit");
    }
}

/// An element that gets another outline has it when the document is read again.
void CheckEdit(tool::Drawing const& drawing, std::size_t index) {
    tool::Outline const& outline = drawing.outlines[index];
    CPath path;
    path.MoveTo(Pt(1.0, 2.0)).LineTo(Pt(5.0, 2.0)).LineTo(Pt(5.0, 7.5)).ClosePath();
    tool::SvgEdit edit(drawing.document, {});
    edit.SetPath(outline.source.element, path);
    std::optional<tool::Drawing> const again = Read(edit.Text());
    Require(again.has_value(), "a changed drawing can be read");
    CPath wanted = path;
    for (Pt& p : wanted.mPts) {
        p.Transform(outline.source.toDrawing);
    }
    bool const has = std::any_of(
        again->outlines.begin(), again->outlines.end(), [&](tool::Outline const& other) {
            return other.source.element == outline.source.element &&
                   other.path.mCtls == wanted.mCtls &&
                   std::equal(wanted.mPts.begin(), wanted.mPts.end(), other.path.mPts.begin());
        });
    Require(has, "an element has the outline that it got");
}

} // namespace

void Svg(Input& in) {
    int const kind = in.Int(0, 7);
    tool::ArcAccuracy arcs;
    arcs.by = static_cast<tool::ArcAccuracy::By>(in.Int(0, 4));
    arcs.most = in.Int(1, 100) * 0.01;
    std::string const content = kind == 0 ? std::string(in.Rest()) : Grammar(in).Document();
    std::optional<tool::Drawing> const drawing = Read(content, arcs);
    if (!drawing) {
        return;
    }
    CheckDocument(*drawing, content);
    CheckPicture(*drawing);
    if (!drawing->outlines.empty()) {
        CheckEdit(*drawing, in.Byte() % drawing->outlines.size());
    }
}

} // namespace fuzz
