// SPDX-License-Identifier: MIT

#include "Outlines.h"

#include <trammel/AccurateCurve.h>
#include <trammel/CBezier.h>
#include <trammel/CMatrix3x3.h>
#include <trammel/CPathActions.h>
#include <trammel/PathSegments.h>
#include <trammel/TLine.h>
#include <trammel/UScalar.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// The deviation of a fine flattening, as a share of the figure's size.
constexpr double kFineShare = 1e-6;

/// The rounding of the accurate figures of one outline, as a share of its length and of its
/// greatest coordinate: twice the greatest bound that a query states, which is 2^-42.
constexpr double kFigureShare = 0x1p-41;

/// From this share of its terms on, the rounding of a sum counts: 2^-52 for each of them.
constexpr double kSumShare = 0x1p-9;

/// Two crossings of a clipped line are the same within this share of its length. Subpaths that meet
/// give the same crossing with different rounding.
constexpr double kSameShare = 1e-12;

/// Coordinates between this power of two and its inverse have figures within the range of double.
constexpr int kUsualPower = 256;

/// Returns the power of two of a magnitude that is not usual; otherwise 0.
int ExtremePower(double magnitude) {
    int const power = magnitude > 0.0 && std::isfinite(magnitude) ? std::ilogb(magnitude) : 0;
    return std::abs(power) > kUsualPower ? power : 0;
}

/// Returns the greatest magnitude of the entries that turn and scale.
double GreatestEntry(CMatrix3x3 const& m) {
    return std::max({std::abs(m.a), std::abs(m.b), std::abs(m.c), std::abs(m.d)});
}

/// The bounds of points, the origin included. A rectangle cannot hold the origin alone: it is null
/// then, and a null rectangle takes the next point for its first.
TRect<double> BoundsOf(std::vector<Pt> const& points) {
    if (points.empty()) {
        return TRect<double>();
    }
    TRect<double> bounds;
    for (Pt const& p : points) {
        bounds |= p;
    }
    return bounds |= points.front();
}

class Flattener : public CPathActions {
public:
    explicit Flattener(double error) : mError(error) {}
    std::vector<TPolygon<double>> polygons;

    void MoveTo(Pt const& p) override { polygons.emplace_back().Append(p, true); }
    void LineTo(Pt const& p) override { Current().AppendUnique(p); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        trammel::FlattenWithin(CBezier(GetCurrentPt(), c1, c2, e), mError, Current());
    }
    void ClosePath() override { Current().Close(); }

private:
    TPolygon<double>& Current() {
        if (polygons.empty()) {
            MoveTo(GetCurrentPt());
        }
        return polygons.back();
    }
    double mError;
};

/// Returns the polygon, beginning with another vertex than the origin if it has one. Containment
/// depends on bounds, and these forget a leading vertex at the origin.
TPolygon<double> NotFromOrigin(TPolygon<double> const& polygon) {
    long const last = polygon.LastIndex();
    long first = 0;
    while (first < last && polygon.GetPt(first).Null()) {
        ++first;
    }
    if (first == 0) {
        return polygon;
    }
    TPolygon<double> turned;
    for (long i = 0; i <= last; ++i) {
        turned.Append(polygon.GetPt((first + i) % (last + 1)), true);
    }
    return turned;
}

} // namespace

CPath WithoutDots(CPath const& path) {
    CPath out;
    for (CPath const& subpath : SplitSubpaths(path)) {
        if (trammel::ArcLength(subpath, 0.0) != 0.0) {
            AppendSubpaths(out, subpath);
        }
    }
    return out;
}

TRect<double> Around(TRect<double> const& a, TRect<double> const& b) { return a | b; }

double FigureAccuracy(Outline const& outline) {
    return FigureAccuracy(outline.path) + outline.arcDistance + outline.arcLength;
}

double FigureAccuracy(Outline const& outline, Pt const& p) {
    return FigureAccuracy(outline) + std::max(std::abs(p.h), std::abs(p.v)) * kFigureShare;
}

int ExtremePower(CPath const& path) {
    TRect<double> const bounds = ControlBounds(path);
    return ExtremePower(std::max({std::abs(bounds.left), std::abs(bounds.top),
                                  std::abs(bounds.right), std::abs(bounds.bottom)}));
}

int ExtremePower(CMatrix3x3 const& m) { return ExtremePower(GreatestEntry(m)); }

CPath TimesPowerOfTwo(CPath path, int power) {
    for (Pt& p : path.mPts) {
        p = Pt(std::ldexp(p.h, power), std::ldexp(p.v, power));
    }
    path.InvalBounds();
    return path;
}

bool IsIdentity(CMatrix3x3 const& m) {
    return m.a == 1.0 && m.b == 0.0 && m.c == 0.0 && m.d == 1.0 && m.tx == 0.0 && m.ty == 0.0;
}

std::optional<CMatrix3x3> InverseOf(CMatrix3x3 const& m) {
    CMatrix3x3 inverse;
    if (int const power = ExtremePower(m); power != 0) { // its determinant may be beyond double
        auto const scaled = [power](CMatrix3x3 const& by) {
            return CMatrix3x3(std::ldexp(by.a, -power), std::ldexp(by.b, -power),
                              std::ldexp(by.c, -power), std::ldexp(by.d, -power), 0.0, 0.0, 0);
        };
        CMatrix3x3 const usual = scaled(m);
        if (usual.IsSingular() || !usual.Inverse(inverse)) {
            return std::nullopt;
        }
        return CMatrix3x3().Translate(-m.tx, -m.ty) * scaled(inverse);
    }
    if (IsIdentity(m) || (!m.IsSingular() && m.Inverse(inverse))) {
        return inverse;
    }
    return std::nullopt;
}

CPath Moved(CPath path, CMatrix3x3 const& m) {
    if (!IsIdentity(m)) {
        path.Transform(m);
    }
    return path;
}

double Stretch(CMatrix3x3 const& m) {
    return (std::hypot(m.a + m.d, m.b - m.c) + std::hypot(m.a - m.d, m.b + m.c)) / 2.0;
}

double MeanStretch(CMatrix3x3 const& m) {
    double const greatest = GreatestEntry(m);
    if (!(greatest > 0.0) || !std::isfinite(greatest)) {
        return greatest;
    }
    // Scaled first, as a product of two of them may be beyond double. Powers of two are exact.
    int const power = std::ilogb(greatest);
    auto const scaled = [power](double entry) { return std::ldexp(entry, -power); };
    double const area = scaled(m.a) * scaled(m.d) - scaled(m.b) * scaled(m.c);
    return std::ldexp(std::sqrt(std::abs(area)), power);
}

double FineError(TRect<double> const& bounds) {
    return std::max(bounds.Width(), bounds.Height()) * kFineShare;
}

TRect<double> ControlBounds(CPath const& path) { return BoundsOf(path.mPts); }

TRect<double> DrawnBounds(CPath const& path) {
    bool const drawn = trammel::Segments(path).begin() != trammel::Segments(path).end();
    // A dot has bounds, too: those of its point.
    return drawn ? trammel::TightBounds(path) : ControlBounds(path);
}

double FigureAccuracy(CPath const& path) {
    // Scaled before it is summed up, so that the sum is finite wherever the figures are.
    double sum = 0.0;
    double farthest = 0.0;
    std::size_t count = 0;
    auto const take = [&](Pt const& from, Pt const& to) {
        sum += ((to - from) * kFigureShare).Hypotenuse();
        farthest = std::max({farthest, std::abs(to.h), std::abs(to.v)});
        ++count;
    };
    for (trammel::PathSegment const& segment : trammel::Segments(path)) {
        take(segment.start, segment.start);
        take(segment.start, segment.control1);
        take(segment.control1, segment.control2);
        take(segment.control2, segment.end);
    }
    double const growth = std::max(1.0, static_cast<double>(count) * kSumShare);
    return (sum + farthest * kFigureShare) * growth;
}

std::vector<TPolygon<double>> Flatten(CPath const& path, double error) {
    Flattener flattener(error);
    path.ForAll(flattener);
    return std::move(flattener.polygons);
}

Area::Area(CPath const& path, double error) {
    for (TPolygon<double> const& polygon : Flatten(path, error)) {
        mPolygons.push_back(NotFromOrigin(polygon));
    }
}

bool Area::Contains(Pt const& p) const {
    bool odd = false;
    for (TPolygon<double> const& polygon : mPolygons) {
        odd ^= polygon.Contains(p);
    }
    return odd;
}

std::vector<TLine<double>> Area::Clip(TLine<double> const& line) const {
    // The parity changes at the beginning and the end of each subpath's pieces.
    struct Change {
        double distance;
        Pt point;
    };
    std::vector<Change> changes;
    for (TPolygon<double> const& polygon : mPolygons) {
        for (TLine<double> const& piece : polygon.Clip(line)) {
            for (Pt const& p : {piece.mStart, piece.mEnd}) {
                changes.push_back({TLine<double>(line.mStart, p).Length(), p});
            }
        }
    }
    std::sort(changes.begin(), changes.end(),
              [](Change const& a, Change const& b) { return a.distance < b.distance; });
    double const same = line.Length() * kSameShare;
    std::vector<TLine<double>> pieces;
    for (std::size_t i = 0; i + 1 < changes.size(); i += 2) {
        if (EqualTPt(changes[i].point, changes[i + 1].point, same)) {
            continue;
        }
        if (!pieces.empty() && EqualTPt(pieces.back().mEnd, changes[i].point, same)) {
            pieces.back().mEnd = changes[i + 1].point;
        } else {
            pieces.emplace_back(changes[i].point, changes[i + 1].point);
        }
    }
    return pieces;
}

Area& Area::Transform(CMatrix3x3 const& m) {
    for (TPolygon<double>& polygon : mPolygons) {
        polygon.Transform(m);
        polygon = NotFromOrigin(polygon);
    }
    return *this;
}

TRect<double> Area::Bounds() const {
    TRect<double> bounds;
    for (TPolygon<double> const& polygon : mPolygons) {
        bounds |= polygon.Bounds();
    }
    return bounds;
}

} // namespace tool
