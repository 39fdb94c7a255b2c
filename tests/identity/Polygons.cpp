// SPDX-License-Identifier: MIT

// The parts about polygons of both kinds, and about lines.

#include "Identity.h"

#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "TLine.h"
#include "TPoly.h"
#include "UFPoly.h"
#include "URotation.h"
#include "plain/PlainBezier.h"
#include "plain/PlainPolygon.h"

#include <cmath>
#include <cstddef>

namespace identity {

namespace {

typedef std::vector<Pt> Points;

/// Few vertices mostly, so that every count up to some dozens comes often; now and then thousands.
int RandomCount(Random& random) {
    switch (random.Int(0, 15)) {
    case 0:
        return random.Int(0, 3);
    case 1:
    case 2:
        return random.Int(3, 300);
    case 3:
        return random.OneIn(20) ? random.Int(300, 5000) : 64;
    default:
        return random.Int(1, 40);
    }
}

/// Vertices at random, on a coarse grid (with upright, level and empty edges), around a centre, of
/// any size, or with special coordinates. At times the last repeats the first.
Points RandomPoints(Random& random, bool wild) {
    Points points(static_cast<std::size_t>(RandomCount(random)));
    int const kind = random.Int(0, wild ? 5 : 3);
    int const exponent = random.Int(-900, 900);
    Pt walk = random.Point(40, 60);
    for (Pt& p : points) {
        switch (kind) {
        case 0:
            p = random.Point(1, 100);
            break;
        case 1:
            p.h = random.Int(1, 6) * 16.0;
            p.v = random.Int(1, 6) * 16.0;
            break;
        case 2:
        case 3:
            walk += random.Point(-5, 5);
            p = walk;
            break;
        case 4:
            p.h = random.Binary(exponent - 4, exponent);
            p.v = random.Binary(exponent - 4, exponent);
            break;
        default:
            p = random.Point(-50, 50);
            if (random.OneIn(4)) {
                p.h = random.Special();
            }
            if (random.OneIn(4)) {
                p.v = random.Special();
            }
        }
    }
    if (!points.empty() && random.OneIn(4)) {
        points.back() = points.front();
    }
    return points;
}

TPolygon<double> PolygonOf(Points const& points, bool closed) {
    TPolygon<double> polygon;
    for (Pt const& p : points) {
        polygon.Append(p, true);
    }
    if (closed) {
        polygon.Close();
    }
    return polygon;
}

/// A point to ask about: anywhere, at the height of a vertex, at a vertex, or on an edge to within
/// a few steps.
Pt Asked(Random& random, Points const& points, Box const& bounds) {
    Pt p = PointAbout(random, bounds);
    if (points.empty()) {
        return p;
    }
    std::size_t const i = random.Index(points.size());
    Pt const a = points[i];
    Pt const b = points[i + 1 < points.size() ? i + 1 : 0];
    switch (random.Int(0, 5)) {
    case 0:
        p.v = a.v;
        break;
    case 1:
        p = a;
        break;
    case 2:
        p = a + (b - a) * random.Unit();
        p.h = StepUlps(p.h, random.Int(-3, 3));
        break;
    default:
        break;
    }
    return p;
}

void Contains(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(20000); i > 0; --i) {
        Points const points = RandomPoints(random, true);
        TPolygon<double> const polygon = PolygonOf(points, random.OneIn(2));
        CFPolygonRef handle;
        handle.CFPolygonCreate(points);
        Box const bounds = polygon.Bounds();
        int const queries = points.size() > 300 ? 4 : 16;
        for (int k = 0; k < queries; ++k) {
            Pt const p = Asked(random, points, bounds);
            Digest digest;
            digest.Add(polygon.Contains(p));
            digest.Add(handle.Contains(p));
            part.Take(digest, [&] {
                Digest expected;
                expected.Add(plain::PointList{points, false}.Contains(p));
                expected.Add(plain::HandlePoints{points}.Contains(p));
                return expected;
            });
        }
        handle.Dispose();
    }
}

void Bounds(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(40000); i > 0; --i) {
        Points const points = RandomPoints(random, true);
        TPolygon<double> polygon = PolygonOf(points, false);
        CFPolygonRef handle;
        handle.CFPolygonCreate(points);
        Digest digest;
        digest.Add(polygon.Bounds());
        digest.Add(polygon.BoundsValid());
        digest.Add(handle.Bounds());
        digest.Add(handle.BoundsValid());
        part.Take(digest, [&] {
            Digest expected;
            expected.Add(plain::PointList{points, false}.Bounds());
            expected.Add(true);
            expected.Add(plain::HandlePoints{points}.Bounds());
            expected.Add(true);
            return expected;
        });
        handle.Dispose();
    }
}

void Measured(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(40000); i > 0; --i) {
        Points const points = RandomPoints(random, true);
        bool const closed = random.OneIn(2);
        TPolygon<double> const polygon = PolygonOf(points, closed);
        double const t = Fraction(random);
        double const distance = random.Uniform(-10, 400);
        bool const fromStart = random.OneIn(2);
        plain::PointList const plainly{points, closed};
        Digest length;
        length.Add(polygon.Length());
        part.Take(length, [&] {
            Digest expected;
            expected.Add(plainly.Length());
            return expected;
        });
        if (points.empty()) {
            continue; // has no points to tell
        }
        std::vector<double> table;
        BuildLTable(polygon, table);
        Digest digest;
        digest.Add(polygon.TPt(t));
        digest.Add(polygon.TPt(t, nullptr));
        digest.Add(polygon.TPt(t, &table));
        digest.Add(polygon.CalcPtFromEnd(distance, fromStart));
        for (double const entry : table) {
            digest.Add(entry);
        }
        part.Take(digest, [&] {
            std::vector<double> const lengths = plainly.Table();
            // One vertex is every point.
            auto const at = [&](double fraction) {
                return points.size() > 1 ? plainly.TPt(fraction, lengths) : points[0];
            };
            double const whole = plainly.Length();
            double const fraction = whole != 0.0 ? distance / whole : 0.0;
            Digest expected;
            expected.Add(plainly.TPt(t));
            expected.Add(at(t));
            expected.Add(at(t));
            expected.Add(at(fromStart ? fraction : 1.0 - fraction));
            for (double const entry : lengths) {
                expected.Add(entry);
            }
            return expected;
        });
    }
}

void AddLines(Digest& digest, std::vector<TLine<double>> const& lines) {
    digest.Add(static_cast<std::int64_t>(lines.size()));
    for (TLine<double> const& line : lines) {
        digest.Add(line.mStart);
        digest.Add(line.mEnd);
    }
}

void Clipped(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(20000); i > 0; --i) {
        // Zeros of both signs may come in either order, so there are none.
        Points const points = RandomPoints(random, false);
        TPolygon<double> const polygon = PolygonOf(points, random.OneIn(2));
        Box const bounds = polygon.Bounds();
        for (int k = points.size() > 300 ? 1 : 4; k > 0; --k) {
            Pt const a = Asked(random, points, bounds);
            Pt const b = Asked(random, points, bounds);
            TLine<double> const line(a, b);
            Digest digest;
            AddLines(digest, polygon.Clip(line));
            if (std::isnan(a.h) || std::isnan(a.v) || std::isnan(b.h) || std::isnan(b.v)) {
                part.Take(digest); // no pieces, by definition
                continue;
            }
            part.Take(digest, [&] {
                Digest expected;
                AddLines(expected, plain::PointList{points, false}.Clip(line));
                return expected;
            });
        }
    }
}

CMatrix3x3 RandomMatrix(Random& random) {
    CMatrix3x3 m;
    if (random.OneIn(8)) {
        m.Scale(random.Special());
        return m;
    }
    m.a = random.Uniform(-2, 2);
    m.b = random.OneIn(2) ? 0.0 : random.Uniform(-2, 2);
    m.c = random.OneIn(2) ? 0.0 : random.Uniform(-2, 2);
    m.d = random.Uniform(-2, 2);
    m.tx = random.Uniform(-100, 100);
    m.ty = random.Uniform(-100, 100);
    return m;
}

void Changed(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(60000); i > 0; --i) {
        Points const points = RandomPoints(random, true);
        TPolygon<double> polygon = PolygonOf(points, random.OneIn(2));
        CMatrix3x3 const m = RandomMatrix(random);
        polygon.Transform(m);
        Digest digest;
        digest.Add(polygon);
        digest.Add(polygon.Bounds());
        Pt const added = random.Point(-200, 200);
        polygon.Append(added, false);
        digest.Add(polygon.BoundsValid());
        digest.Add(polygon.Bounds());
        polygon.InvalBounds();
        digest.Add(polygon.Bounds());
        part.Take(digest, [&] {
            plain::PointList plainly{points, false};
            plainly.Transform(m);
            Digest expected;
            expected.Add(plainly.points);
            Box const bounds = plainly.Bounds();
            expected.Add(bounds);
            if (plainly.points.empty() || added != plainly.points.back()) {
                plainly.points.push_back(added);
            }
            expected.Add(true);
            expected.Add(bounds); // as it was, until it is dropped
            expected.Add(plainly.Bounds());
            return expected;
        });
    }
}

void Add(Digest& digest, CFPolygonRef const& handle) {
    digest.Add(std::int64_t{handle.DataSize()});
    digest.Add(handle.Closed());
    digest.Add(handle.BoundsValid());
    for (long i = 0; i <= handle.LastIndex(); ++i) {
        digest.Add(handle.PolyPoints(i));
    }
}

/// A run of changes, the bounds asked for between them.
void HandleChanged(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(60000); i > 0; --i) {
        CFPolygonRef handle;
        handle.CFPolygonCreate(RandomPoints(random, random.OneIn(4)));
        Digest digest;
        for (int k = random.Int(1, 6); k > 0; --k) {
            long const at = random.Int(-1, static_cast<int>(handle.LastIndex()) + 2);
            Pt const p = random.OneIn(8) ? handle.PolyPoints(0) : random.Point(-100, 100);
            switch (random.Int(0, 11)) {
            case 0:
                handle.Append(p);
                break;
            case 1:
                handle.Insert(at, p);
                break;
            case 2:
                handle.Delete(at, random.Int(-1, 5));
                break;
            case 3:
                handle.SetPolyPoints(at, p);
                break;
            case 4:
                handle.Offset(p);
                break;
            case 5:
                handle.Scale(random.OneIn(4) ? 1.0 : random.Uniform(-2, 2));
                break;
            case 6:
                handle.Scale(p.h / 50.0, p.v / 50.0);
                break;
            case 7:
                handle.Map(Box(0, 0, 100, 50), Box(p.h, p.v, 70, 170));
                break;
            case 8:
                handle.SetClosed(random.OneIn(2));
                break;
            case 9:
                handle.Rotate(random.Uniform(-4, 4), p);
                break;
            case 10:
                handle.SetSize(random.Int(0, 50));
                break;
            default:
                DeletePolyPt(handle);
            }
            if (random.OneIn(2)) {
                digest.Add(handle.Bounds());
            }
        }
        Add(digest, handle);
        digest.Add(handle.Bounds());
        part.Take(digest);
        handle.Dispose();
    }
}

/// The procedures that compare two polygons, and the conversions.
void HandlePairs(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(30000); i > 0; --i) {
        CFPolygonRef a;
        a.CFPolygonCreate(RandomPoints(random, random.OneIn(8)));
        Points const inside = RandomPoints(random, random.OneIn(8));
        CFPolygonRef b;
        b.CFPolygonCreate(inside.size() > 50 ? Points(inside.begin(), inside.begin() + 50)
                                             : inside);
        Pt const corner = random.Point(0, 100);
        Box const rect(corner, corner + random.Point(0, 30));
        Digest digest;
        digest.Add(FPolyInFPoly(a, b, true));
        digest.Add(FPolyInFPoly(a, b, false));
        digest.Add(FRectInFPoly(a, rect, true));
        digest.Add(FRectInFPoly(a, rect, false));
        long const count = random.OneIn(2) ? a.LastIndex() : random.Int(0, 30);
        InsertPolyPts(b, a, count, static_cast<short>(random.Int(0, 3)));
        Add(digest, b);
        TPolygon<double> const polygon(b);
        digest.Add(polygon);
        CFPolygonRef back = polygon;
        Add(digest, back);
        part.Take(digest);
        back.Dispose();
        b.Dispose();
        a.Dispose();
    }
}

/// Two lines and a point, alike or not.
void Lines(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(200000); i > 0; --i) {
        Points points = {random.Point(0, 100), random.Point(0, 100), random.Point(0, 100),
                         random.Point(0, 100), random.Point(0, 100)};
        if (random.OneIn(4)) {
            points[random.Index(5)].h = random.OneIn(2) ? random.Special() : points[0].h;
        }
        if (random.OneIn(4)) {
            points[random.Index(5)].v = random.OneIn(2) ? random.Special() : points[0].v;
        }
        TLine<double> const a(points[0], points[1]);
        TLine<double> const b(points[2], points[3]);
        Pt const p = random.OneIn(4) ? a.TPt(random.Unit()) : points[4];
        double const tolerance = random.OneIn(8) ? random.Special() : random.Uniform(0, 5);
        Digest digest;
        Pt where;
        digest.Add(a.Intersects(b, where));
        digest.Add(where);
        digest.Add(a.SegmentsIntersect(b, where));
        digest.Add(where);
        digest.Add(a.CosTheta(b));
        part.Take(digest, [&] {
            Pt place;
            Digest expected;
            expected.Add(plain::LinesIntersect(a, b, place));
            expected.Add(place);
            expected.Add(plain::SegmentsIntersect(a, b, place));
            expected.Add(place);
            expected.Add(plain::CosTheta(a, b));
            return expected;
        });
        Digest searched;
        searched.Add(a.Length());
        searched.Add(a.PerpendicularPt(p));
        searched.Add(a.Distance(p));
        searched.Add(a.HitTest(p, tolerance));
        searched.Add(a.TPt(tolerance));
        part.Take(searched, [&] {
            Digest expected;
            expected.Add(plain::LineLength(points[0], points[1]));
            expected.Add(plain::Foot(points[0], points[1], p));
            expected.Add(plain::DistanceToLine(points[0], points[1], p));
            expected.Add(plain::LineHit(points[0], points[1], p, tolerance));
            expected.Add(plain::LinePt(points[0], points[1], tolerance));
            return expected;
        });
    }
}

/// The functions that turn points, by the C library's sine and cosine, and by SinCos.
void Turned(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(100000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        Pt const centre = random.OneIn(4) ? Pt() : random.Point(-100, 100);
        double const angle =
            random.OneIn(4) ? random.Int(-8, 8) * (pi / 4.0) : Fraction(random) * 7;
        CBezier curve = in.curve;
        curve.Rotate(angle);
        Digest digest;
        digest.Add(curve.P0);
        digest.Add(curve.P3);
        curve = in.curve;
        curve.Rotate(angle, centre);
        digest.Add(curve.P1);
        digest.Add(curve.P2);
        TLine<double> line(in.curve.P0, in.curve.P3);
        line.Rotate(angle, centre);
        digest.Add(line.mStart);
        digest.Add(line.mEnd);
        part.Take(digest, [&] {
            // Volatile, so that no two operations become one.
            double volatile const s = std::sin(angle);
            double volatile const c = std::cos(angle);
            auto const turn = [&](Pt const& p, Pt const& about) {
                Pt const d = p - about;
                double volatile const hc = d.h * c;
                double volatile const vs = d.v * s;
                double volatile const hs = d.h * s;
                double volatile const vc = d.v * c;
                return Pt(hc - vs, hs + vc) + about;
            };
            auto const turnAboutOrigin = [&](Pt const& p) {
                double volatile const hc = p.h * c;
                double volatile const vs = p.v * s;
                double volatile const hs = p.h * s;
                double volatile const vc = p.v * c;
                return Pt(hc - vs, hs + vc);
            };
            Digest expected;
            expected.Add(turnAboutOrigin(in.curve.P0));
            expected.Add(turnAboutOrigin(in.curve.P3));
            expected.Add(turn(in.curve.P1, centre));
            expected.Add(turn(in.curve.P2, centre));
            expected.Add(turn(in.curve.P0, centre));
            expected.Add(turn(in.curve.P3, centre));
            return expected;
        });
        CFPolygonRef handle;
        handle.CFPolygonCreate(Box(in.curve.P0, in.curve.P2), angle);
        CFPolygonRef turned = RotRectToPoly(Box(in.curve.P0, in.curve.P1), angle);
        RotateFPoly(turned, angle, centre);
        CMatrix3x3 m;
        m.Rotate(angle).Rotate(angle, centre);
        if (!gShared) {
            SetRotate(angle);
        }
        Pt p = in.curve.P1;
        ::Transform(p);
        Pt q = in.curve.P3;
        m.Transform(q);
        Digest polygons;
        for (long k = 0; k <= 4; ++k) {
            polygons.Add(handle.PolyPoints(k));
            polygons.Add(turned.PolyPoints(k));
        }
        polygons.Add(p);
        polygons.Add(q);
        part.Take(polygons);
        turned.Dispose();
        handle.Dispose();
    }
}

} // namespace

std::vector<Entry> PolygonParts() {
    return {
        {"line", Lines},
        {"rotation", Turned, Group::kFunctions},
        {"polygon.contains", Contains},
        {"polygon.bounds", Bounds},
        {"polygon.measure", Measured},
        {"polygon.clip", Clipped},
        {"polygon.change", Changed},
        {"handle.change", HandleChanged, Group::kFunctions},
        {"handle.pairs", HandlePairs},
    };
}

} // namespace identity
