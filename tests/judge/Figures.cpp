// SPDX-License-Identifier: MIT

// trammel_figures: the library's figures of outlines, for script/judge to compare with a browser's.
//
// It reads a path text from each line of standard input and writes a JSON object for each:
//
// - "box": the bounds of the outline as given;
// - "d": the outline enlarged by a power of two, with a size of 8192 to 16384, as path text;
// - "contours": the control points of the same, of each subpath's segments, closing lines included;
// - "length", "bounds" and "points" (at fractions 0, 1/10 to 1 of the length) of the enlarged one;
// - "asked": 20 points in and around the bounds of the enlarged outline, exact in single precision;
// - "near": their distances from the outline;
// - "nonzero" and "evenodd": whether the region contains them by each rule.
//
// A browser measures with a step of fixed size, so the enlargement makes its figures finer. A line
// that cannot be measured gives {"skip": REASON}.

#include <trammel/AccurateCurve.h>
#include <trammel/CMatrix3x3.h>
#include <trammel/OutlineMeasure.h>
#include <trammel/PathSegments.h>
#include <trammel/SvgPath.h>
#include <trammel/Winding.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <utility>

namespace {

typedef nlohmann::ordered_json Json;

constexpr double kLeastSize = 8192.0;
constexpr int kFractions = 11;
constexpr int kPoints = 20;

Json ToJson(TRect<double> const& r) { return {r.left, r.top, r.right, r.bottom}; }

Json ToJson(TPoint<double> const& p) { return {p.h, p.v}; }

double Size(TRect<double> const& r) { return std::fmax(r.Width(), r.Height()); }

/// Returns the control points of each subpath's segments: two of a line, four of a curve.
Json Contours(CPath const& path) {
    Json contours = Json::array();
    for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
        Json segments = Json::array();
        for (trammel::PathSegment const& segment : subpath) {
            Json points = {ToJson(segment.start), ToJson(segment.end)};
            if (segment.IsCurve()) {
                points = {ToJson(segment.start), ToJson(segment.control1), ToJson(segment.control2),
                          ToJson(segment.end)};
            }
            segments.push_back(std::move(points));
        }
        if (!segments.empty()) {
            contours.push_back(std::move(segments));
        }
    }
    return contours;
}

/// Adds the answers about points that are drawn at random around the bounds.
void AskPoints(CPath const& path, TRect<double> const& bounds, std::size_t seed, Json& out) {
    trammel::OutlineMeasure const measure(path);
    double const margin = Size(bounds) / 16.0;
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
    // Not a standard distribution: these differ from one standard library to another.
    auto const draw = [&random](double low, double high) {
        double const share = static_cast<double>(random() >> 8U) * 0x1p-24;
        return static_cast<double>(static_cast<float>(low + share * (high - low)));
    };
    for (int i = 0; i < kPoints; ++i) {
        double const h = draw(bounds.left - margin, bounds.right + margin);
        TPoint<double> const p(h, draw(bounds.top - margin, bounds.bottom + margin));
        out["asked"].push_back(ToJson(p));
        out["near"].push_back(measure.Distance(p));
        out["nonzero"].push_back(trammel::Contains(path, p, trammel::FillRule::kNonZero));
        out["evenodd"].push_back(trammel::Contains(path, p, trammel::FillRule::kEvenOdd));
    }
    out["length"] = measure.Length();
    for (int i = 0; i < kFractions; ++i) {
        out["points"].push_back(ToJson(measure.TPt(i / (kFractions - 1.0))));
    }
}

Json Figures(std::string const& text, std::size_t line) {
    trammel::SvgPathResult read = trammel::ReadSvgPath(text);
    if (read.error) {
        return {{"skip", read.error->Message()}};
    }
    TRect<double> const box = trammel::TightBounds(read.path);
    double const size = Size(box);
    if (!(size > 0.0)) {
        return {{"skip", "nothing is drawn"}};
    }
    Json out;
    out["box"] = ToJson(box);
    double const scale = std::exp2(std::ceil(std::log2(kLeastSize / size)));
    read.path.Transform(CMatrix3x3().Scale(scale, scale));
    TRect<double> const bounds = trammel::TightBounds(read.path);
    out["d"] = trammel::WriteSvgPath(read.path);
    out["contours"] = Contours(read.path);
    out["bounds"] = ToJson(bounds);
    AskPoints(read.path, bounds, line, out);
    return out;
}

} // namespace

int main() {
    std::string text;
    for (std::size_t line = 0; std::getline(std::cin, text); ++line) {
        std::cout << Figures(text, line).dump() << '\n';
    }
    return 0;
}
