// SPDX-License-Identifier: MIT

#include "SvgReader.h"

#include "Ascii.h"
#include "Cascade.h"
#include "Clip.h"
#include "Css.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "PaperUnit.h"
#include "PenNames.h"
#include "SvgAttributes.h"
#include "SvgElements.h"
#include "SvgShapes.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/Stroke.h>
#include <trammel/UTrigonometry.h>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// The greatest depth of nested elements, `use` included. Drawings stay below 50.
constexpr int kMostLevels = 500;

// The limits of what all `use` elements draw together: elements, and bytes of them. A few hundred
// bytes of nested uses could otherwise multiply without end.
constexpr std::size_t kMostUsedElements = 250000;
constexpr std::size_t kMostUsedBytes = std::size_t{64} << 20;

/// The greatest depth of elements in each other that have transforms about their boxes.
constexpr int kMostBoxLevels = 16;

/// The limits of clips: their nesting, and the elements in all of them together.
constexpr std::size_t kMostClipLevels = 16;
constexpr std::size_t kMostClipElements = 20000;

/// Returns the area of an outline's line without dashes, in the drawing's coordinates.
CPath SolidLine(Outline const& outline) {
    CPath line;
    std::optional<CMatrix3x3> const own = InverseOf(outline.source.toDrawing);
    if (outline.stroke == "none" || !own) {
        return line;
    }
    constexpr double kShare = 1e-9; // of the width: what the line may be off
    trammel::StrokeStyle style = outline.pen->style;
    style.dashes.clear();
    trammel::Stroke(Moved(outline.path, *own), style, kShare * style.width, line);
    return Moved(std::move(line), outline.source.toDrawing);
}

bool Hidden(ElementStyle const& style) {
    return AsciiLower(style[Property::kDisplay].value) == "none";
}

/// True for a user who reads English, and a reader without extensions. There is nobody to ask.
bool ConditionsHold(pugi::xml_node element) {
    if (!Trimmed(element.attribute("requiredExtensions").value()).empty()) {
        return false;
    }
    pugi::xml_attribute const languages = element.attribute("systemLanguage");
    if (!languages) {
        return true;
    }
    std::string_view rest = languages.value();
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find(','), rest.size());
        std::string const language = AsciiLower(Trimmed(rest.substr(0, end)));
        if (language == "en" || language.compare(0, 3, "en-") == 0) {
            return true;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

} // namespace

void SvgElements::Add(pugi::xml_node element, Form form, Context const& context) {
    CPath& path = form.path;
    if (path.mCtls.empty() || (!context.visible && mBoxLevels == 0)) {
        return;
    }
    Outline outline;
    outline.fill = context.fill;
    outline.stroke = context.stroke;
    outline.pen = context.pen;
    outline.opacity = context.opacity;
    try {
        std::string_view const length = Trimmed(element.attribute("pathLength").value());
        outline.pathLength = length.empty() ? 0.0 : std::max(ParseLength(length).number, 0.0);
    } catch (TextError const&) { // as if it were not there
    }
    outline.rule = mClipping.empty() ? context.rule : context.clipRule;
    outline.source.element = mDocument->Offset(element);
    bool const used = context.placed != kNoElement;
    outline.source.placed = used ? context.placed : outline.source.element;
    outline.source.toDrawing = context.transform;
    outline.source.around = context.around;
    outline.source.beside = used ? context.beside : context.around;
    path.Transform(context.transform);
    if (form.arcs > 0) {
        outline.arcDistance = form.tolerance * Stretch(context.transform);
        outline.arcLength = 2.0 * pi * static_cast<double>(form.arcs) * outline.arcDistance;
    }
    bool const finite = std::all_of(path.mPts.begin(), path.mPts.end(), [](Pt const& p) {
        return std::isfinite(p.h) && std::isfinite(p.v);
    });
    if (!finite) {
        Skip(element, "has coordinates that are too large");
        return;
    }
    std::string id = element.attribute("id").value();
    if (id.empty()) {
        id = std::string(LocalName(element)) + "#" + std::to_string(mDrawing.outlines.size() + 1);
    }
    outline.id = context.prefix + id;
    outline.path = std::move(path);
    mDrawing.outlines.push_back(std::move(outline));
}

void SvgElements::Children(pugi::xml_node element, Context const& context) {
    for (pugi::xml_node const child : element.children()) {
        Element(child, context);
    }
}

/// Draws the first child whose conditions hold.
void SvgElements::Switch(pugi::xml_node element, Context const& context) {
    for (pugi::xml_node const child : element.children()) {
        if (child.type() == pugi::node_element && !LocalName(child).empty() &&
            ConditionsHold(child)) {
            Element(child, context);
            return;
        }
    }
}

/// Draws the children of an inner svg or a symbol, at its place and fitted to its size.
void SvgElements::Viewport(pugi::xml_node element, Context const& context, Size const& own) {
    std::optional<Pt> size = context.whole;
    if (own.width && own.height) {
        size = Pt(*own.width, *own.height);
    } else if (size) {
        size = Pt(own.width.value_or(size->h), own.height.value_or(size->v));
    }
    if (size && (size->h == 0.0 || size->v == 0.0)) {
        return; // SVG says that it draws nothing
    }
    Context inner = context;
    inner.transform = Concat(CMatrix3x3().Translate(PlaceOf(element, context)), context.transform);
    CMatrix3x3 const toFrame = inner.transform;
    inner.whole = size;
    if (std::optional<TRect<double>> const box = ViewBoxOf(element)) {
        if (box->Empty()) {
            return;
        }
        if (size) {
            CMatrix3x3 const fit = FitViewBox(*box, *size, AspectRatioOf(element));
            inner.transform = Concat(fit, toFrame);
        }
        inner.whole = box->GetSize();
    }
    std::size_t const first = mDrawing.outlines.size();
    Children(element, inner);
    std::string_view const overflow = (*context.style)[Property::kOverflow].value;
    if (size && overflow != "visible" && overflow != "auto") {
        inner.transform = toFrame;
        ClipToViewport(first, element, *size, inner);
    }
}

/// Returns the bounds of the outlines from the index `first` on, in the coordinates that a
/// transform takes to the drawing's. They are null without outlines.
TRect<double> SvgElements::BoundsFrom(std::size_t first, CMatrix3x3 const& toDrawing,
                                      Box kind) const {
    TRect<double> bounds;
    std::optional<CMatrix3x3> const inverse = InverseOf(toDrawing);
    if (!inverse) {
        return bounds;
    }
    for (std::size_t i = first; i < mDrawing.outlines.size(); ++i) {
        Outline const& outline = mDrawing.outlines[i];
        bounds = Around(bounds, DrawnBounds(Moved(outline.path, *inverse)));
        if (kind == Box::kStroke) {
            bounds = Around(bounds, DrawnBounds(Moved(SolidLine(outline), *inverse)));
        }
    }
    return bounds;
}

/// Returns a box of an element in its own coordinates; nothing where it has none here.
/// \param context  around the element
std::optional<TRect<double>> SvgElements::BoxOf(pugi::xml_node element, ElementStyle const& style,
                                                Context const& context, Box kind) {
    std::string_view const name = LocalName(element);
    if (element == mDocument->Root() || name == "symbol" || name == "clipPath" ||
        mBoxLevels == kMostBoxLevels) {
        return std::nullopt;
    }
    // A copy by `use` may inherit other lengths.
    auto const place = std::make_pair(mDocument->Offset(element), kind);
    auto const known = mUsed.empty() ? mBoxes.find(place) : mBoxes.end();
    if (known != mBoxes.end()) {
        return known->second;
    }
    Context inner = context;
    ++inner.level;
    inner.style = &style;
    Inherit(element, style, inner);
    std::size_t const first = mDrawing.outlines.size();
    ++mBoxLevels;
    Draw(element, name, inner);
    --mBoxLevels;
    TRect<double> const box = BoundsFrom(first, context.transform, kind);
    mDrawing.outlines.erase(mDrawing.outlines.begin() + static_cast<std::ptrdiff_t>(first),
                            mDrawing.outlines.end());
    if (mUsed.empty()) {
        mBoxes.emplace(place, box);
    }
    return box;
}

/// Clips the outlines from the index `first` on to the viewport of their element.
void SvgElements::ClipToViewport(std::size_t first, pugi::xml_node element, Pt const& size,
                                 Context const& context) {
    TRect<double> const bounds = BoundsFrom(first, context.transform, Box::kFill);
    TRect<double> const frame(0.0, 0.0, size.h, size.v);
    bool const inside = bounds.left >= frame.left && bounds.top >= frame.top &&
                        bounds.right <= frame.right && bounds.bottom <= frame.bottom;
    if (first == mDrawing.outlines.size() || inside) {
        return;
    }
    if (context.transform.IsSingular()) {
        Skip(element, "its transform presses it into a line");
        return;
    }
    auto clip = std::make_shared<Clip>();
    clip->path = RectanglePath(frame, 0.0, 0.0, 0.0);
    clip->path.Transform(context.transform);
    for (std::size_t i = first; i < mDrawing.outlines.size(); ++i) {
        mDrawing.outlines[i].clips.push_back(clip);
    }
}

/// Clips the outlines from the index `first` on, which an element drew, by the clipPath `id`.
void SvgElements::ClipFrom(std::size_t first, pugi::xml_node element, std::string const& id,
                           Context const& context) {
    if (first == mDrawing.outlines.size()) {
        return;
    }
    Clips clips;
    std::optional<TRect<double>> bounds;
    pugi::xml_node const node = mDocument->Find(id);
    bool const byBounds =
        std::string_view(node.attribute("clipPathUnits").value()) == "objectBoundingBox";
    if (byBounds) {
        bounds = BoundsFrom(first, context.transform, Box::kFill);
    }
    AppendClips(element, id, context.transform, bounds, clips);
    for (std::size_t i = first; i < mDrawing.outlines.size(); ++i) {
        Clips& all = mDrawing.outlines[i].clips;
        all.insert(all.end(), clips.begin(), clips.end());
    }
}

/// Appends the clip of a clipPath element, and the element's own clips.
/// \param toDrawing  from the coordinates of the element that refers to it
/// \param bounds  of that element, for a clipPath in their units
void SvgElements::AppendClips(pugi::xml_node element, std::string const& id,
                              CMatrix3x3 const& toDrawing,
                              std::optional<TRect<double>> const& bounds, Clips& clips) {
    pugi::xml_node const node = mDocument->Find(id);
    if (!node || LocalName(node) != "clipPath") {
        Skip(element, "its clip-path refers to '#" + id + "', which is no clipPath");
        return;
    }
    if (std::find(mClipping.begin(), mClipping.end(), node) != mClipping.end() ||
        mClipping.size() >= kMostClipLevels) {
        Skip(node, "refers to itself, or is nested too deeply; the clip is left out");
        return;
    }
    std::array<double, 6> const key{toDrawing.a, toDrawing.b,  toDrawing.c,
                                    toDrawing.d, toDrawing.tx, toDrawing.ty};
    auto const place = std::make_pair(mDocument->Offset(node), key);
    auto const known = bounds ? mClips.end() : mClips.find(place);
    if (known != mClips.end()) {
        clips.insert(clips.end(), known->second.begin(), known->second.end());
        return;
    }
    if (mClipElements > kMostClipElements) {
        Skip(element, "its clip-path is left out: there are too many elements in clips");
        return;
    }
    ElementStyle const style = mCascade.Of(node);
    Context context;
    context.style = &style;
    context.level = static_cast<int>(kMostClipLevels);
    if (!mDrawing.page.frame.Null()) {
        context.whole = mDrawing.page.frame.GetSize();
    }
    CMatrix3x3 const transform = TransformOf(node, style, context);
    context.transform = Concat(transform, toDrawing);
    if (std::string_view(node.attribute("clipPathUnits").value()) == "objectBoundingBox") {
        TRect<double> const box = bounds.value_or(TRect<double>());
        CMatrix3x3 const units =
            CMatrix3x3().Scale(box.Width(), box.Height()).Translate(box.TopLeft());
        context.transform = Concat(transform, Concat(units, toDrawing));
        context.whole = Pt(1.0, 1.0);
    }
    Inherit(node, style, context);
    // The clip's outlines are read as those of a drawing of their own.
    std::vector<Outline> outside = std::move(mDrawing.outlines);
    mDrawing.outlines.clear();
    mClipping.push_back(node);
    for (pugi::xml_node const child : node.children()) {
        std::string_view const name = LocalName(child);
        if (child.type() == pugi::node_element && name != "g" && name != "svg" && !name.empty()) {
            Element(child, context);
        }
    }
    Clips own;
    if (context.transform.IsSingular()) {
        own.push_back(std::make_shared<Clip>()); // nothing shows
    } else {
        own.push_back(std::make_shared<Clip>(UnionOf(mDrawing.outlines)));
    }
    mClipElements += mDrawing.outlines.size() + 1;
    mDrawing.outlines = std::move(outside);
    std::string const around = UrlFragment(style[Property::kClipPath].value);
    if (!around.empty()) {
        AppendClips(node, around, toDrawing, bounds, own);
    }
    mClipping.pop_back();
    clips.insert(clips.end(), own.begin(), own.end());
    if (!bounds) {
        mClips.emplace(place, std::move(own));
    }
}

void SvgElements::Use(pugi::xml_node element, Context const& context) {
    std::string_view const target = Trimmed(LinkOf(element).value());
    if (target.empty()) {
        return;
    }
    if (target[0] != '#') {
        Skip(element, "refers to '" + std::string(target) +
                          "'; only elements of the same file (#id)"
                          " are read");
        return;
    }
    pugi::xml_node const used = mDocument->Find(target.substr(1));
    if (!used) {
        return; // SVG says that it draws nothing; real icon themes contain such leftovers
    }
    bool cyclic = std::find(mUsed.begin(), mUsed.end(), used) != mUsed.end();
    for (pugi::xml_node around = element; around; around = around.parent()) {
        cyclic = cyclic || around == used;
    }
    if (cyclic) {
        Skip(element, "refers to '" + std::string(target) + "', of which it is a part");
        return;
    }

    Context inner = context;
    CMatrix3x3 const shift = CMatrix3x3().Translate(PlaceOf(element, context));
    inner.transform = Concat(shift, context.transform);
    if (pugi::xml_attribute const id = element.attribute("id")) {
        inner.prefix += std::string(id.value()) + "/";
    }
    if (inner.placed == kNoElement) {
        inner.placed = mDocument->Offset(element);
        inner.beside = context.around;
    }
    std::string_view const name = LocalName(used);
    mUsed.push_back(used);
    if (name == "symbol" || name == "svg") {
        ElementStyle const style = mCascade.Of(used);
        inner.style = &style;
        if (Hidden(style)) {
            mUsed.pop_back();
            return;
        }
        Inherit(used, style, inner);
        inner.opacity *= OpacityOf(style[Property::kOpacity].value);
        Size size = SizeOf(element, context);
        Size const other = SizeOf(used, inner);
        size.width = size.width ? size.width : other.width;
        size.height = size.height ? size.height : other.height;
        if (++inner.level > kMostLevels) {
            Fail(element, "is nested more than " + std::to_string(kMostLevels) + " levels deep");
        }
        inner.transform = Concat(TransformOf(used, style, inner), inner.transform);
        Viewport(used, inner, size);
    } else {
        Element(used, inner);
    }
    mUsed.pop_back();
}

void SvgElements::Draw(pugi::xml_node element, std::string_view name, Context const& context) {
    if (name == "g" || name == "a") {
        Children(element, context);
    } else if (std::optional<Form> form = FormOf(element, name, context)) {
        Add(element, std::move(*form), context);
    } else if (name == "use") {
        Use(element, context);
    } else if (name == "switch") {
        Switch(element, context);
    } else if (name == "svg") {
        Viewport(element, context, SizeOf(element, context));
    } else if (name != "text" && name != "image" && name != "foreignObject") {
        return;
    } else if (mBoxLevels > 0) {
        Skip(element, "does not count in the box of the transform around it");
    } else {
        mComplaints.CountOther(name, mDocument->Place(element));
    }
}

void SvgElements::Element(pugi::xml_node element, Context const& context) {
    std::string_view const name = LocalName(element);
    if (element.type() != pugi::node_element || name.empty() || !ConditionsHold(element)) {
        return;
    }
    ElementStyle const style = mCascade.Of(element);
    if (Hidden(style)) {
        return;
    }
    if (context.level >= kMostLevels) {
        Fail(element, "is nested more than " + std::to_string(kMostLevels) + " levels deep");
    }
    if (!mUsed.empty()) {
        ++mUsedElements;
        for (char const* attribute : {"d", "points", "transform"}) {
            mUsedBytes += std::string_view(element.attribute(attribute).value()).size();
        }
        if (mUsedElements > kMostUsedElements || mUsedBytes > kMostUsedBytes) {
            Fail(element, "the use elements of this drawing multiply to more than 250000 elements"
                          " or 64 MiB of coordinates");
        }
    }
    try {
        Context inner = context;
        ++inner.level;
        inner.style = &style;
        inner.around = context.transform;
        inner.transform = Concat(TransformOf(element, style, context), context.transform);
        Inherit(element, style, inner);
        double const around = context.placed == kNoElement ? 1.0 : context.opacity;
        inner.opacity = around * OpacityOf(style[Property::kOpacity].value);
        std::size_t const first = mDrawing.outlines.size();
        Draw(element, name, inner);
        std::string const clip = UrlFragment(style[Property::kClipPath].value);
        if (!clip.empty()) {
            ClipFrom(first, element, clip, inner);
        }
        auto const refers = [&style](Property property) {
            return !UrlFragment(style[property].value).empty();
        };
        bool const counts = mDrawing.outlines.size() > first && mBoxLevels == 0;
        if (counts && refers(Property::kMask)) {
            mComplaints.CountUnread("a mask", mDocument->Place(element));
        }
        if (counts && (refers(Property::kMarkerStart) || refers(Property::kMarkerMid) ||
                       refers(Property::kMarkerEnd))) {
            mComplaints.CountUnread("markers", mDocument->Place(element));
        }
    } catch (AttributeError const& e) {
        Skip(element, e.attribute, e.position, e.message + "; the element is left out");
    }
}

void SvgElements::ReadPage(pugi::xml_node root, Context const& context) {
    Page& page = mDrawing.page;
    page.frame = ViewBoxOf(root).value_or(TRect<double>());
    page.ratio = AspectRatioOf(root);
    std::optional<Length> sizes[2];
    char const* const names[2] = {"width", "height"};
    for (int i = 0; i < 2; ++i) {
        std::string_view const value = Trimmed(root.attribute(names[i]).value());
        if (value.empty() || value == "auto") {
            continue;
        }
        try {
            sizes[i] = ParseLength(value);
        } catch (TextError const& e) {
            Skip(root, names[i], e.Position(), e.what());
        }
    }
    if (!sizes[0] || !sizes[1]) {
        return;
    }
    // A size in per cent depends on the window that shows the drawing, so it does not help.
    UnitSizes const known{context.fontSize, context.fontSize, std::nullopt};
    Pt size;
    try {
        size = Pt(UserUnits(*sizes[0], std::nullopt, &known),
                  UserUnits(*sizes[1], std::nullopt, &known));
    } catch (TextError const&) {
        return;
    }
    if (!(size.h > 0.0 && size.v > 0.0 && std::isfinite(size.h) && std::isfinite(size.v))) {
        return;
    }
    if (page.frame.Null()) {
        page.frame = TRect<double>(0.0, 0.0, size.h, size.v);
    }
    mWindow = size;
    bool const sameUnit = sizes[0]->unit == sizes[1]->unit && IsPaperUnit(sizes[0]->unit);
    page.width = sameUnit ? sizes[0]->number : size.h;
    page.height = sameUnit ? sizes[1]->number : size.v;
    page.unit = sameUnit ? sizes[0]->unit : "px";
}

Drawing SvgElements::Read() {
    pugi::xml_node const root = mDocument->Root();
    ElementStyle const style = mCascade.Of(root);
    Context context;
    context.style = &style;
    Context sized = context;
    InheritFontSize(style, sized);
    ReadPage(root, sized);
    if (!mArcs.unit.empty()) {
        mUnitStretch = Stretch(PaperFit(mDrawing, mArcs.unit));
    }
    if (!mDrawing.page.frame.Null()) {
        context.whole = mDrawing.page.frame.GetSize();
    }
    context.transform = TransformOf(root, style, context);
    Inherit(root, style, context);
    mRootFontSize = context.fontSize;
    if (!Hidden(style)) {
        Children(root, context);
    }
    mComplaints.Tell();
    std::unordered_map<std::size_t, std::size_t> copies;
    std::unordered_map<std::size_t, std::size_t> siblings;
    for (Outline const& outline : mDrawing.outlines) {
        ++copies[outline.source.element];
        ++siblings[outline.source.placed];
    }
    for (Outline& outline : mDrawing.outlines) {
        outline.source.copies = copies[outline.source.element];
        outline.source.siblings = siblings[outline.source.placed];
    }
    mDrawing.rootTransform = context.transform;
    return std::move(mDrawing);
}

Drawing ReadSvg(std::string const& file, std::string text, Encoding encoding,
                ArcAccuracy const& arcs) {
    auto document = std::make_shared<SvgDocument const>(file, std::move(text), encoding);
    return SvgElements(std::move(document), arcs).Read();
}

} // namespace tool
