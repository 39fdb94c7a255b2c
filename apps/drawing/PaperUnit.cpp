// SPDX-License-Identifier: MIT

#include "PaperUnit.h"

#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "SvgAttributes.h"
#include "SvgDocument.h"

#include <trammel/CMatrix3x3.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace tool {

namespace {

/// Returns the number of pixels in one of a unit; empty for a name that is no unit on paper.
std::optional<double> Pixels(std::string_view unit) {
    if (!IsPaperUnit(unit)) {
        return std::nullopt;
    }
    return UserUnits(Length{1.0, std::string(unit)}, std::nullopt);
}

} // namespace

bool IsPaperUnit(std::string_view unit) {
    static constexpr std::array<std::string_view, 8> units{"",   "mm", "cm", "in",
                                                           "pt", "pc", "Q",  "px"};
    return std::find(units.begin(), units.end(), unit) != units.end();
}

CMatrix3x3 PaperFit(Drawing const& drawing, std::string const& unit) {
    std::optional<double> const one = Pixels(unit);
    if (!one || unit.empty()) {
        throw Error("--unit", "'" + unit + "'", "must be mm, cm, in, pt, pc, Q or px");
    }
    Page const& page = drawing.page;
    std::optional<double> const pageUnit = Pixels(page.unit);
    if (page.frame.Empty() || !(page.width > 0.0 && page.height > 0.0) || !pageUnit) {
        throw Error(drawing.file, "", "does not tell its size on paper, which --unit needs");
    }
    TPoint<double> const size(page.width * *pageUnit / *one, page.height * *pageUnit / *one);
    return FitViewBox(page.frame, size, page.ratio);
}

void ToPaperUnit(Drawing& drawing, std::string const& unit) {
    CMatrix3x3 const fit = PaperFit(drawing, unit);
    double const stretch = Stretch(fit);
    for (Outline& outline : drawing.outlines) {
        outline.path.Transform(fit);
        outline.arcDistance *= stretch;
        outline.arcLength *= stretch;
    }
    Page& page = drawing.page;
    double const one = *Pixels(unit);
    double const pageUnit = *Pixels(page.unit);
    page.frame = TRect<double>(0.0, 0.0, page.width * pageUnit / one, page.height * pageUnit / one);
}

} // namespace tool
