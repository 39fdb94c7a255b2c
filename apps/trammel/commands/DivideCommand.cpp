// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Clip.h"
#include "Commands.h"
#include "Css.h"
#include "Divide.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "PaintServer.h"
#include "PenNames.h"
#include "SvgDocument.h"
#include "Warning.h"
#include "WriteSupport.h"

#include <trammel/AccurateCurve.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace tool {

namespace {

/// The share by which a transform may stretch a line more in one direction than in another.
constexpr double kUneven = 1e-6;

/// The outlines of a drawing, and what becomes of them.
class DivideWork {
public:
    DivideWork(Drawing& drawing, bool all) : mDrawing(drawing) {
        for (Outline const& outline : drawing.outlines) {
            ++mShown[outline.source.placed];
            ++mCopies[outline.source.element];
            if (!outline.clips.empty()) {
                mClipped.insert(outline.source.element);
            }
            mWhole.push_back(WholeOf(outline));
        }
        ApplyClips(drawing);
        for (Outline const& outline : drawing.outlines) {
            bool const isLine = outline.stroke != "none" && EnclosesNothing(outline);
            if ((all || (outline.fill != "none" && !isLine)) &&
                !outline.source.toDrawing.IsSingular()) {
                mPlaces.push_back(static_cast<std::size_t>(&outline - drawing.outlines.data()));
            }
        }
    }

    /// Divides the outlines, and returns the distance that is kept.
    double Divide(double tolerance) {
        double arcDistance = 0.0;
        std::vector<Outline const*> chosen;
        for (std::size_t const place : mPlaces) {
            chosen.push_back(&mDrawing.outlines[place]);
            arcDistance = std::max(arcDistance, chosen.back()->arcDistance);
        }
        double const rest = std::max(tolerance - arcDistance, 0.0);
        Division division = DivideOutlines(chosen, rest * (1.0 - kRoundingPart));
        mParts.resize(mDrawing.outlines.size());
        for (std::size_t i = 0; i < mPlaces.size(); ++i) {
            mParts[mPlaces[i]] = std::move(division.parts[i]);
        }
        mBelow = std::move(division.below);
        return arcDistance + division.distance;
    }

    /// Returns the document with the parts in the places of the outlines.
    std::string Document(std::optional<int> digits) const {
        SvgEdit edit(mDrawing.document, digits);
        TellChanges(edit);
        std::set<std::size_t> const taken = TakenOut();
        for (std::size_t const place : taken) {
            edit.Remove(place);
        }
        for (std::size_t i = 0; i < mDrawing.outlines.size(); ++i) {
            Outline const& outline = mDrawing.outlines[i];
            if (taken.count(outline.source.placed) != 0) {
                Insert(edit, i);
            } else if (IsDivided(i)) {
                Replace(edit, i);
            }
        }
        return edit.Text();
    }

    /// Returns the parts and the outlines that stay, as outlines.
    std::vector<Outline> Shown() const {
        std::vector<Outline> shown;
        for (std::size_t i = 0; i < mDrawing.outlines.size(); ++i) {
            std::size_t number = 0;
            for (CPath const& part : PartsOf(i)) {
                shown.push_back(mDrawing.outlines[i]);
                shown.back().path = part;
                if (++number > 1) {
                    shown.back().id += "-" + std::to_string(number);
                }
            }
        }
        return shown;
    }

private:
    /// What an outline was in its element's coordinates before it was clipped and divided.
    struct Whole {
        TRect<double> bounds;
        double dashScale = 1.0; ///< from the lengths of its dashes to those of its coordinates
    };
    /// Returns that; only for what depends on it.
    static Whole WholeOf(Outline const& outline) {
        Whole whole;
        bool const isDashed = outline.pathLength > 0.0 && outline.pen && outline.stroke != "none" &&
                              !outline.pen->style.dashes.empty();
        bool const hasServer =
            !UrlFragment(outline.fill).empty() || !UrlFragment(outline.stroke).empty();
        CMatrix3x3 own;
        if ((!isDashed && !hasServer) || outline.source.toDrawing.IsSingular() ||
            !outline.source.toDrawing.Inverse(own)) {
            return whole;
        }
        CPath const path = Moved(outline.path, own);
        whole.bounds = DrawnBounds(path);
        if (isDashed) {
            whole.dashScale = trammel::ArcLength(path, 0.0) / outline.pathLength;
        }
        return whole;
    }

    bool IsDivided(std::size_t i) const {
        return std::binary_search(mPlaces.begin(), mPlaces.end(), i);
    }
    std::vector<CPath> PartsOf(std::size_t i) const {
        return IsDivided(i) ? mParts[i] : std::vector<CPath>{mDrawing.outlines[i].path};
    }

    /// Returns the `use` elements that cannot stay, because they show an element that is divided.
    std::set<std::size_t> TakenOut() const {
        std::set<std::size_t> changed; // elements that the drawing shows in their own places
        for (std::size_t const i : mPlaces) {
            OutlineSource const& source = mDrawing.outlines[i].source;
            if (source.placed == source.element) {
                changed.insert(source.element);
            }
        }
        std::set<std::size_t> taken;
        for (std::size_t i = 0; i < mDrawing.outlines.size(); ++i) {
            Outline const& outline = mDrawing.outlines[i];
            OutlineSource const& source = outline.source;
            bool const divided = IsDivided(i) || changed.count(source.element) != 0;
            if (divided && mCopies.at(source.element) < source.copies &&
                changed.count(source.element) != 0) {
                throw Error(mDrawing.file, outline.id,
                            "is drawn " + std::to_string(source.copies) +
                                " times; it is divided only with all copies");
            }
            if (!divided || source.placed == source.element) {
                continue;
            }
            if (source.beside.IsSingular() || mShown.at(source.placed) < source.siblings) {
                throw Error(mDrawing.file, outline.id, "cannot be taken out of its <use> element");
            }
            taken.insert(source.placed);
        }
        return taken;
    }

    /// Warns of what makes the picture look otherwise.
    void TellChanges(SvgEdit& edit) const {
        std::map<pugi::xml_node, bool> groups;
        std::vector<Outline const*> translucent;
        std::vector<Outline const*> lined;
        std::set<std::size_t> covered;
        for (std::set<std::size_t> const& below : mBelow) {
            covered.insert(below.begin(), below.end());
        }
        for (std::size_t i = 0; i < mPlaces.size(); ++i) {
            Outline const& outline = mDrawing.outlines[mPlaces[i]];
            if (!mBelow[i].empty() && ShowsBelow(edit, i, groups)) {
                translucent.push_back(&outline);
            }
            bool const cut = !mBelow[i].empty() || covered.count(i) != 0;
            if (cut && !mParts[mPlaces[i]].empty() && outline.stroke != "none" && outline.pen &&
                outline.pen->style.width > 0.0) {
                lined.push_back(&outline);
            }
        }
        Tell(translucent, "is translucent, and what shows through it goes",
             "; so does what shows through ");
        Tell(lined, "has a line, which the new borders of its parts get, too", "; so do those of ");
    }

    /// Warns of the first of some outlines, and tells how many others there are.
    void Tell(std::vector<Outline const*> const& outlines, std::string const& what,
              char const* others) const {
        if (!outlines.empty()) {
            std::size_t const more = outlines.size() - 1;
            Warn(mDrawing.file, outlines.front()->id,
                 what + (more > 0 ? others + std::to_string(more) + " more" : ""));
        }
    }

    /// True for the outline at mPlaces[i] if it, or a group around it, is translucent. A group that
    /// has all that lies below does not count.
    /// \param groups  whether elements are, as far as known
    bool ShowsBelow(SvgEdit& edit, std::size_t i, std::map<pugi::xml_node, bool>& groups) const {
        Outline const& outline = mDrawing.outlines[mPlaces[i]];
        if (outline.opacity < 1.0 || (outline.pen && OpacityOf(outline.pen->fillOpacity) < 1.0) ||
            IsTranslucent(*mDrawing.document, outline.fill)) {
            return true;
        }
        auto const placed = [this](std::size_t k) {
            return mDrawing.document->ElementAt(mDrawing.outlines[mPlaces[k]].source.placed);
        };
        auto const lies = [](pugi::xml_node element, pugi::xml_node group) {
            while (element && element != group) {
                element = element.parent();
            }
            return static_cast<bool>(element);
        };
        for (pugi::xml_node group = placed(i).parent(); group; group = group.parent()) {
            auto const known = groups.emplace(group, false);
            if (known.second && group.type() == pugi::node_element) {
                std::size_t const at = mDrawing.document->Offset(group);
                known.first->second = OpacityOf(edit.DeclaredValue(at, Property::kOpacity)) < 1.0;
            }
            if (known.first->second &&
                std::any_of(mBelow[i].begin(), mBelow[i].end(),
                            [&](std::size_t k) { return !lies(placed(k), group); })) {
                return true;
            }
        }
        return false;
    }

    /// The first part takes the place of the element, and copies of it get the others.
    void Replace(SvgEdit& edit, std::size_t i) const {
        Outline const& outline = mDrawing.outlines[i];
        std::size_t const element = outline.source.element;
        if (mParts[i].empty()) {
            edit.Remove(element);
            return;
        }
        if (mClipped.count(element) != 0) {
            edit.SetProperty(element, Property::kClipPath, "none"); // the parts are what it shows
        }
        KeepLook(edit, i);
        for (std::size_t k = 1; k < mParts[i].size(); ++k) {
            edit.InsertCopy(element, SvgEdit::Side::kAfter, outline.id,
                            MovedBack(mParts[i][k], outline.source.toDrawing, mDrawing, outline));
        }
        SetPath(edit, mDrawing, outline, mParts[i].front());
    }

    /// Parts have other bounds and lengths than the whole, on which paints and dashes may depend.
    void KeepLook(SvgEdit& edit, std::size_t i) const {
        Outline const& outline = mDrawing.outlines[i];
        std::size_t const element = outline.source.element;
        for (auto const& [property, paint] : {std::pair(Property::kFill, outline.fill),
                                              std::pair(Property::kStroke, outline.stroke)}) {
            std::string const kept = edit.KeptPaint(element, paint, mWhole[i].bounds, CMatrix3x3());
            if (kept != paint) {
                edit.SetProperty(element, property, kept);
            }
        }
        if (outline.pathLength > 0.0 && outline.pen && !outline.pen->style.dashes.empty()) {
            double const scale = mWhole[i].dashScale;
            edit.RemoveAttribute(element, "pathLength");
            edit.SetProperty(element, Property::kStrokeDasharray,
                             DashesOf(outline.pen->style, scale));
            edit.SetProperty(element, Property::kStrokeDashoffset,
                             Exact(outline.pen->style.dashOffset * scale));
        }
    }

    static std::string DashesOf(trammel::StrokeStyle const& style, double scale) {
        std::string text;
        for (double const dash : style.dashes) {
            text += (text.empty() ? "" : ",") + Exact(dash * scale);
        }
        return text;
    }

    /// Returns the declarations of the outline's line, in coordinates that the element's become by
    /// a matrix. Warns of one that deforms the line.
    std::string PenStyle(std::size_t i, CMatrix3x3 const& toNew) const {
        Outline const& outline = mDrawing.outlines[i];
        Pen const& pen = *outline.pen;
        bool const isFixed = pen.pixel > 0.0; // its width depends on no transform
        double const scale = isFixed ? 1.0 : Stretch(toNew);
        double const uneven =
            std::max(std::abs(toNew.a * toNew.c + toNew.b * toNew.d) / scale,
                     std::abs(std::hypot(toNew.a, toNew.b) - std::hypot(toNew.c, toNew.d)));
        if (!isFixed && uneven > scale * kUneven) {
            Warn(mDrawing.file,
                 mDrawing.document->Place(mDrawing.document->ElementAt(outline.source.placed)),
                 "its line is drawn with an even pen, which a transform stretched");
        }
        std::string text = ";stroke-width:" + Exact(pen.style.width * scale);
        text += std::string(";stroke-linejoin:") + NameOf(pen.style.join);
        text += ";stroke-miterlimit:" + Exact(pen.style.miterLimit);
        text += std::string(";stroke-linecap:") + NameOf(pen.style.startCap);
        if (isFixed) {
            text += ";vector-effect:non-scaling-stroke";
        }
        if (pen.paintsFirst) {
            text += ";paint-order:stroke";
        }
        if (pen.opacity != "1") {
            text += ";stroke-opacity:" + pen.opacity;
        }
        if (!pen.style.dashes.empty()) {
            double const dashScale = scale * mWhole[i].dashScale;
            text += ";stroke-dasharray:" + DashesOf(pen.style, dashScale);
            text += ";stroke-dashoffset:" + Exact(pen.style.dashOffset * dashScale);
        }
        return text;
    }
    /// Returns the class of the `use` that showed the outline. Warns of what the `use` has that
    /// paths beside it do not get.
    std::string ClassOfUse(SvgEdit& edit, Outline const& outline) const {
        pugi::xml_node const use = mDrawing.document->ElementAt(outline.source.placed);
        for (Property const property : {Property::kFilter, Property::kMask}) {
            std::string const value = edit.DeclaredValue(outline.source.placed, property);
            if (!value.empty() && value != "none" && !IsWide(value)) {
                Warn(mDrawing.file, mDrawing.document->Place(use),
                     std::string("its ") + NameOf(property) + " is left out, as it is divided");
            }
        }
        return use.attribute("class").value();
    }

    /// The parts become paths beside the `use` that showed the outline.
    void Insert(SvgEdit& edit, std::size_t i) const {
        Outline const& outline = mDrawing.outlines[i];
        CMatrix3x3 const beside = Undone(outline.source.beside, mDrawing, outline);
        bool const evenOdd = outline.rule == trammel::FillRule::kEvenOdd;
        CMatrix3x3 const toNew = outline.source.toDrawing * beside;
        auto const kept = [&](std::string const& paint) {
            return edit.KeptPaint(outline.source.placed, paint, mWhole[i].bounds, toNew);
        };
        std::string style = "fill:" + kept(outline.fill) + ";stroke:" + kept(outline.stroke) +
                            (evenOdd ? ";fill-rule:evenodd" : "");
        if (outline.opacity != 1.0) {
            style += ";opacity:" + Exact(outline.opacity);
        }
        if (outline.pen && outline.pen->fillOpacity != "1") {
            style += ";fill-opacity:" + outline.pen->fillOpacity;
        }
        if (outline.stroke != "none" && outline.pen) {
            style += PenStyle(i, toNew);
        }
        std::string const name = ClassOfUse(edit, outline);
        std::string id = outline.id;
        std::replace(id.begin(), id.end(), '/', '-');
        std::replace(id.begin(), id.end(), '#', '-');
        for (CPath const& part : PartsOf(i)) {
            edit.InsertPath(outline.source.placed, {id, name, style},
                            MovedBack(part, outline.source.beside, mDrawing, outline));
        }
    }

    Drawing& mDrawing;
    std::map<std::size_t, std::size_t> mShown;  ///< the outlines of each place
    std::map<std::size_t, std::size_t> mCopies; ///< the outlines of each element
    std::set<std::size_t> mClipped;             ///< elements of which a clip hides something
    std::vector<std::size_t> mPlaces;           ///< the outlines to divide, by index
    std::vector<std::vector<CPath>> mParts;     ///< by index
    std::vector<std::set<std::size_t>> mBelow;  ///< as Division has it, by place in mPlaces
    std::vector<Whole> mWhole;                  ///< by index
};

void RunDivide(ChangeOptions const& options) {
    ChangeInput input = LoadForChange(options, kFineShare);
    Drawing& drawing = input.drawing;
    std::string const& output = options.write.output;
    Page const page = LinePicture(drawing.page, drawing.outlines).page;
    DivideWork work(drawing, !options.source.ids.empty());
    TellDistance(drawing.file, "", work.Divide(input.tolerance), input.tolerance);
    if (KeepsDocument(drawing, output)) {
        WriteFile(output, SvgBytes(work.Document(DigitsOf(options.write)), output));
    } else {
        WriteFile(output, NewFile(LinePicture(page, work.Shown()), output, options.write));
    }
}

} // namespace

void AddDivide(Command const& app) {
    AddChangeCommand(
        app, "divide", "Divides overlapping outlines into parts that do not overlap", kFineShare,
        "Each outline covers what its fill rule fills, every subpath taken as closed. Where "
        "outlines overlap, each\npart belongs to the one on top, and what lies below goes. The "
        "parts meet along the outlines, within the\ntolerance, and curves stay curves.\n"
        "An SVG drawing is kept: the largest part of an element takes its place, and the others "
        "follow as copies\nwith ids ID-2, ID-3 and so on. Elements with a fill divide each other, "
        "or those that --id names.\nA warning tells of a translucent shape, as what shows through "
        "it goes.\n"
        "Example: trammel divide drawing.svg -o parts.svg",
        RunDivide);
}

} // namespace tool
