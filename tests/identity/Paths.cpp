// SPDX-License-Identifier: MIT

// The parts about paths.

#include "Identity.h"

#include "CMatrix3x3.h"
#include "CPath.h"
#include "CPathActions.h"
#include "plain/PlainPath.h"

#include <cmath>
#include <type_traits>

namespace identity {

namespace {

/// A path and its plain form, built by the same calls.
struct Both {
    CPath path;
    plain::Path plain;

    void MoveTo(Pt const& p) {
        path.MoveTo(p);
        plain.MoveTo(p);
    }
    void LineTo(Pt const& p) {
        path.LineTo(p);
        plain.LineTo(p);
    }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& end) {
        path.CurveTo(c1, c2, end);
        plain.CurveTo(c1, c2, end);
    }
    void ClosePath() {
        path.ClosePath();
        plain.ClosePath();
    }
};

/// The next point of a path: near the current one, or it, or its upright or level neighbour, or
/// wild.
Pt NextPoint(Random& random, Pt const& current, bool wild) {
    Pt p = current + random.Point(-20, 20);
    switch (random.Int(0, 11)) {
    case 0:
        return current;
    case 1:
        p.h = current.h;
        return p;
    case 2:
        p.v = current.v;
        return p;
    case 3:
        if (wild) {
            p.h = random.OneIn(2) ? random.Special() : random.Binary(-900, 900);
        }
        return p;
    default:
        return p;
    }
}

/// A path of a few elements, mostly as drawings have them. Some have no move at the start, elements
/// after a close, or no length.
void Build(Random& random, bool wild, Both& both) {
    int const count = random.Int(0, random.OneIn(4) ? 16 : 6);
    if (!random.OneIn(8)) {
        both.MoveTo(random.Point(0, 100));
    }
    for (int i = 0; i < count; ++i) {
        Pt const current = both.path.CurrentPoint();
        switch (random.Int(0, 9)) {
        case 0:
            both.MoveTo(NextPoint(random, current, wild));
            break;
        case 1:
            both.ClosePath();
            break;
        case 2:
        case 3:
        case 4:
            both.LineTo(NextPoint(random, current, wild));
            break;
        default: {
            Pt const c1 = NextPoint(random, current, wild);
            Pt const c2 = NextPoint(random, c1, wild);
            both.CurveTo(c1, c2, NextPoint(random, c2, wild));
        }
        }
    }
    if (random.OneIn(2)) {
        both.ClosePath();
    }
}

void Add(Digest& digest, CPath const& path) {
    digest.Add(static_cast<std::int64_t>(path.mCtls.size()));
    for (char const code : path.mCtls) {
        digest.Add(std::int32_t{code});
    }
    digest.Add(path.mPts);
}

void Add(Digest& digest, plain::Path const& path) {
    digest.Add(static_cast<std::int64_t>(path.codes.size()));
    for (char const code : path.codes) {
        digest.Add(std::int32_t{code});
    }
    digest.Add(path.pts);
}

/// Wild coordinates are subdivided to the end everywhere, so their depth is small.
void SetUpFor(Random& random, bool wild) {
    int const depth = wild ? random.Int(1, 5) : 15;
    SetUp(random, random.Uniform(0.1, 2.0), depth);
}

void Built(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(100000); i > 0; --i) {
        Both both;
        Build(random, random.OneIn(4), both);
        Pt const centre = random.Point(0, 100);
        double const hRadius = random.Uniform(0, 50);
        double const vRadius = random.OneIn(2) ? hRadius : random.Uniform(0, 50);
        double const from =
            random.OneIn(4) ? random.Int(-4, 4) * (pi / 2.0) : random.Uniform(-7, 7);
        double const sweep =
            random.OneIn(4) ? random.Int(-4, 4) * (pi / 2.0) : random.Uniform(-10, 10);
        both.path.Arc(centre, hRadius, vRadius, from, sweep);
        both.plain.Arc(centre, hRadius, vRadius, from, sweep);
        Both more;
        Build(random, false, more);
        bool const appends = random.OneIn(2);
        if (appends) {
            both.path.Append(more.path);
        }
        Digest digest;
        Add(digest, both.path);
        digest.Add(both.path.CurrentPoint());
        part.Take(digest, [&] {
            if (appends) {
                both.plain.Append(more.plain);
            }
            Digest expected;
            Add(expected, both.plain);
            expected.Add(both.plain.current);
            return expected;
        });
    }
}

/// The operations without a plain form: rounded rectangles, transforms, bounds, visits.
void Shaped(Part& part) {
    class Visitor : public CPathActions {
    public:
        Digest digest;
        void MoveTo(Pt const& p) override { digest.Add(p); }
        void LineTo(Pt const& p) override { digest.Add(p); }
        void CurveTo(Pt const& c1, Pt const& c2, Pt const& end) override {
            digest.Add(c1);
            digest.Add(c2);
            digest.Add(end);
        }
        void ClosePath() override { digest.Add(true); }
    };
    Random& random = part.random;
    for (int i = part.Count(60000); i > 0; --i) {
        Both both;
        Build(random, random.OneIn(4), both);
        Pt const a = random.Point(0, 100);
        Pt const b = random.Point(0, 100);
        both.path.RRect(Box(a, b), random.Uniform(0, 40));
        CMatrix3x3 m;
        m.Scale(random.Uniform(-2, 2));
        m.Translate(random.Uniform(-9, 9), 3.0);
        m.c = random.Uniform(-1, 1);
        Visitor visitor;
        visitor.digest.Add(both.path.Bounds());
        both.path.Transform(m);
        visitor.digest.Add(both.path.Bounds());
        both.path.ForAll(visitor);
        visitor.digest.Add(both.path.TestContents(CPath::kContainsCurves));
        visitor.digest.Add(both.path.Closed());
        visitor.digest.Add(static_cast<std::uint64_t>(both.path.size()));
        part.Take(visitor.digest);
    }
}

void Measured(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(30000); i > 0; --i) {
        bool const wild = random.OneIn(4);
        Both both;
        Build(random, wild, both);
        SetUpFor(random, wild);
        double const t = Fraction(random);
        Pt const pt = PointAbout(random, both.path.Bounds());
        auto const ask = [&](auto const& path, double const& maxError) {
            Digest digest;
            digest.Add(path.Length());
            digest.Add(path.TPt(t));
            digest.Add(path.FindTValue(pt));
            digest.Add(maxError); // as they leave it
            return digest;
        };
        part.Take(
            ask(both.path, CBezier::mMaxError),
            [&] { return ask(both.plain, plain::state.maxError); }, 16);
    }
}

void Cut(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(30000); i > 0; --i) {
        bool const wild = random.OneIn(4);
        Both both;
        Build(random, wild, both);
        SetUpFor(random, wild);
        double t0 = Fraction(random);
        double t1 = Fraction(random);
        if (t1 < t0 && !random.OneIn(8)) {
            double const t = t0;
            t0 = t1;
            t1 = t;
        }
        bool const removes = random.OneIn(4);
        auto const cut = [&](auto const& path) {
            std::decay_t<decltype(path)> a;
            std::decay_t<decltype(path)> b;
            if (removes) {
                path.RemoveTRange(t0, t1, a, b);
            } else {
                path.GetTRange(t0, t1, a);
            }
            Digest digest;
            Add(digest, a);
            Add(digest, b);
            return digest;
        };
        part.Take(
            cut(both.path), [&] { return cut(both.plain); }, 16);
    }
}

/// Outlines of hundreds of elements.
void Long(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(150); i > 0; --i) {
        Both both;
        int const pieces = random.Int(20, 60);
        for (int k = 0; k < pieces; ++k) {
            Build(random, false, both);
        }
        SetUpFor(random, false);
        double const t0 = random.Uniform(0, 0.9);
        double const t1 = random.Uniform(t0, 1);
        Pt const pt = PointAbout(random, both.path.Bounds());
        auto const ask = [&](auto const& path) {
            std::decay_t<decltype(path)> piece;
            path.GetTRange(t0, t1, piece);
            Digest digest;
            Add(digest, piece);
            digest.Add(path.TPt(t0));
            digest.Add(path.FindTValue(pt));
            return digest;
        };
        part.Take(
            ask(both.path), [&] { return ask(both.plain); }, 40);
    }
}

} // namespace

std::vector<Entry> PathParts() {
    return {
        {"path.build", Built, Group::kFunctions},
        {"path.shape", Shaped},
        {"path.measure", Measured},
        {"path.cut", Cut},
        {"path.long", Long},
    };
}

} // namespace identity
