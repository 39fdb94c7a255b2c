// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AccurateCurve.h"
#include "CPath.h"
#include "PathMeasure.h"
#include "SvgPath.h"
#include "identity/Identity.h"
#include "plain/PlainPath.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace fuzz {

namespace {

using identity::Digest;

/// Builds both alike. False when it added elements that no building operation makes: the plain form
/// need not understand them.
bool Build(Input& in, CPath& path, plain::Path& same) {
    bool proper = true;
    for (int i = in.Int(0, 12); i > 0; --i) {
        switch (in.Int(0, 6)) {
        case 0: {
            Pt const p = in.Point();
            path.MoveTo(p);
            same.MoveTo(p);
            break;
        }
        case 1:
            path.ClosePath();
            same.ClosePath();
            break;
        case 2:
        case 3: {
            Pt const p = in.Point();
            path.LineTo(p);
            same.LineTo(p);
            break;
        }
        case 4:
            proper = false;
            path.AddCtl(static_cast<char>(in.Int(0, 5)));
            for (Pt const& p : in.Points(3)) {
                path.AddPt(p);
            }
            break;
        default: {
            Pt const c1 = in.Point();
            Pt const c2 = in.Point();
            Pt const end = in.Point();
            path.CurveTo(c1, c2, end);
            same.CurveTo(c1, c2, end);
        }
        }
    }
    return proper;
}

template <class Codes> Digest DigestOf(std::vector<Pt> const& points, Codes const& codes) {
    Digest digest;
    digest.Add(points);
    for (char const code : codes) {
        digest.Add(std::int32_t{code});
    }
    return digest;
}
Digest DigestOf(CPath const& path) { return DigestOf(path.mPts, path.mCtls); }
Digest DigestOf(plain::Path const& path) { return DigestOf(path.pts, path.codes); }

/// The questions that the path, its plain form and its measure answer by the same names.
template <class Outline, class Piece>
Digest Answers(Outline const& outline, Pt const& pt, double t0, double t1) {
    Digest digest;
    digest.Add(outline.Length());
    digest.Add(outline.TPt(t0));
    digest.Add(outline.FindTValue(pt));
    Piece piece;
    outline.GetTRange(t0, t1, piece);
    digest.Add(DigestOf(piece).Value());
    return digest;
}

} // namespace

void Paths(Input& in) {
    // Wild coordinates are halved to the end everywhere, so this does not go deep.
    CBezier::mRecursionLimit = plain::state.recursionLimit =
        static_cast<std::int16_t>(in.Int(0, 6));
    CBezier::mMaxError = plain::state.maxError = 1.0;
    CPath path;
    plain::Path same;
    bool const proper = Build(in, path, same);
    Require(!proper || DigestOf(path) == DigestOf(same), "a path is built as its plain form");
    Pt const pt = in.Point();
    double const t0 = in.Number();
    double const t1 = in.Number();
    Digest const answers = Answers<CPath, CPath>(path, pt, t0, t1);
    Require(!proper || answers == Answers<plain::Path, plain::Path>(same, pt, t0, t1),
            "answers are the plain form's");
    trammel::PathMeasure const measure(path);
    Require(answers == Answers<trammel::PathMeasure, CPath>(measure, pt, t0, t1),
            "a measure's answers are the path's");

    Box const bounds = path.Bounds();
    double const accuracy = in.Tolerance(bounds.Width() + bounds.Height());
    CPath lines;
    trammel::FlattenWithin(path, accuracy, lines);
    trammel::ArcLength(path, accuracy);
    trammel::TightBounds(path);
    measure.FindNearest(pt);
    double const lengths[] = {t0, t1, measure.Length() * 0.5};
    Pt points[3];
    trammel::PathMeasure::Place places[3];
    trammel::PathMeasure::Place placesAtLengths[3];
    measure.PtsAtLengths(lengths, 3, points);
    measure.Places(lengths, 3, places);
    measure.PlacesAtLengths(lengths, 3, placesAtLengths);
    Digest one;
    Digest many;
    for (std::size_t i = 0; i < 3; ++i) {
        one.Add(measure.PtAtLength(lengths[i]));
        one.Add(measure.At(lengths[i]).point);
        one.Add(measure.AtLength(lengths[i]).point);
        many.Add(points[i]);
        many.Add(places[i].point);
        many.Add(placesAtLengths[i].point);
    }
    Require(one == many, "many places are those of each one");
    CPath piece;
    measure.GetLengthRange(t0, t1, piece);
    CPath rest;
    path.RemoveTRange(t0, t1, piece, rest);
    trammel::FlatContours flat;
    double const kept = trammel::FlattenInto(path, accuracy, flat);
    Require(std::isnan(kept) || kept >= 0.0, "the distance kept is not negative");
    try {
        std::string const text = trammel::WriteSvgPath(path);
        Require(!trammel::ReadSvgPath(text).error, "what is written can be read");
    } catch (std::invalid_argument const&) {
        // There is no text for NaN and infinite coordinates.
    }
}

} // namespace fuzz
