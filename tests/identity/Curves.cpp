// SPDX-License-Identifier: MIT

// The parts about cubics and quadratics.

#include "Identity.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CMatrix3x3.h"
#include "plain/PlainBezier.h"
#include "plain/PlainSpline.h"

#include <cmath>
#include <limits>

namespace identity {

namespace {

plain::Bezier PlainOf(CBezier const& c) { return {c.P0, c.P1, c.P2, c.P3}; }

void Add(Digest& digest, CBezier const& c) {
    digest.Add(c.P0);
    digest.Add(c.P1);
    digest.Add(c.P2);
    digest.Add(c.P3);
}

void Add(Digest& digest, plain::Bezier const& c) {
    digest.Add(c.p0);
    digest.Add(c.p1);
    digest.Add(c.p2);
    digest.Add(c.p3);
}

/// Remembers the settings and counters of the plain form, which are the library's at that moment,
/// so that the plain form can start from the same.
class FromHere {
public:
    FromHere() : mState(plain::state) {}
    void Return() const { plain::state = mState; }

private:
    plain::State mState;
};

/// Asks the cubic and its plain form, both from the present settings and counters. Takes the digest
/// of ask(curve, digest) and of the settings and counters that it leaves.
template <class Ask> void TakeFromBoth(Part& part, CBezier const& curve, Ask const& ask) {
    FromHere const start;
    Digest digest;
    ask(curve, digest);
    AddState(digest);
    part.Take(digest, [&] {
        start.Return();
        Digest expected;
        ask(PlainOf(curve), expected);
        AddPlainState(expected);
        return expected;
    });
}

/// Adds the flattened curve, behind the point `before` if there is one.
void AddFlattened(CBezier const& c, double tolerance, Pt const* before, Digest& digest) {
    TPolygon<double> polygon;
    if (before != nullptr) {
        polygon.Append(*before, true);
    }
    c.Flatten(polygon, tolerance);
    digest.Add(polygon);
}

void AddFlattened(plain::Bezier const& c, double tolerance, Pt const* before, Digest& digest) {
    plain::Points chain;
    if (before != nullptr) {
        chain.push_back(*before);
    }
    c.Flatten(chain, tolerance);
    digest.Add(chain);
}

void Flatten(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(400000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        SetUp(random, random.Uniform(0.1, 2.0), in.depth);
        bool const appends = random.OneIn(8);
        Pt const before = random.OneIn(2) ? in.curve.P0 : random.Point(0, 100);
        TakeFromBoth(part, in.curve, [&](auto const& c, Digest& digest) {
            AddFlattened(c, in.tolerance, appends ? &before : nullptr, digest);
        });
    }
}

/// The full depth of 15, for curves that never become flat and curves that just do.
void FlattenDeep(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(600); i > 0; --i) {
        CurveInput in = RandomCurve(random);
        if (random.OneIn(2)) {
            in = DrawnCurve(random);
            in.tolerance = random.OneIn(3) ? 0.0 : std::abs(random.Binary(-40, -16));
        }
        SetUp(random, 1.0, 15);
        TakeFromBoth(part, in.curve, [&](auto const& c, Digest& digest) {
            AddFlattened(c, in.tolerance, nullptr, digest);
        });
    }
}

thread_local Digest* tSink = nullptr; // the callback without data knows no other place

void AddGenerated(CBezier const& c, bool force, int depth, bool withData, Digest& digest) {
    auto const levels = static_cast<short>(depth);
    if (withData) {
        c.GenerateSegment([](Pt const& p, void* data) { static_cast<Digest*>(data)->Add(p); },
                          &digest, force, levels);
    } else {
        tSink = &digest;
        c.GenerateSegment([](Pt const& p) { tSink->Add(p); }, force, levels);
    }
}

void AddGenerated(plain::Bezier const& c, bool force, int depth, bool /*withData*/,
                  Digest& digest) {
    c.GenerateSegment([&](Pt const& p) { digest.Add(p); }, force, depth);
}

void Generate(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(300000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        SetUp(random, in.tolerance, 15);
        bool const force = random.OneIn(2);
        bool const withData = random.OneIn(2);
        TakeFromBoth(part, in.curve, [&](auto const& c, Digest& digest) {
            AddGenerated(c, force, in.depth, withData, digest);
        });
    }
}

/// A callback that, at its `when`th point, changes the flatness setting, flattens another curve, or
/// throws.
struct Meddler {
    enum What { kChange, kMeasure, kThrow };
    What what = kChange;
    int when = 0;
    double error = 1.0;
    CBezier other;
    int count = 0;
    Digest digest;
};

struct Stop {};

void Callbacks(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(60000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        Meddler meddler;
        meddler.what = static_cast<Meddler::What>(random.Int(0, 2));
        meddler.when = random.Int(1, random.OneIn(2) ? 4 : 40);
        meddler.error = random.OneIn(8) ? random.Special() : in.tolerance * random.Uniform(0, 4);
        meddler.other = DrawnCurve(random).curve;
        int const depth = in.depth > 9 ? 9 : in.depth;
        SetUp(random, in.tolerance, depth);
        bool const force = random.OneIn(2);
        FromHere const start;
        Meddler live = meddler;
        bool thrown = false;
        try {
            in.curve.GenerateSegment(
                [](Pt const& p, void* data) {
                    Meddler& m = *static_cast<Meddler*>(data);
                    m.digest.Add(p);
                    if (++m.count == m.when) {
                        if (m.what == Meddler::kThrow) {
                            throw Stop();
                        }
                        if (m.what == Meddler::kChange && !gShared) {
                            CBezier::mMaxError = m.error;
                        } else {
                            m.digest.Add(m.other.Length());
                        }
                    }
                },
                &live, force, static_cast<short>(depth));
        } catch (Stop const&) {
            thrown = true;
        }
        live.digest.Add(thrown);
        AddState(live.digest);
        part.Take(live.digest, [&] {
            start.Return();
            Meddler m = meddler;
            bool threw = false;
            try {
                PlainOf(in.curve).GenerateSegment(
                    [&](Pt const& p) {
                        m.digest.Add(p);
                        if (++m.count == m.when) {
                            if (m.what == Meddler::kThrow) {
                                throw Stop();
                            }
                            if (m.what == Meddler::kChange) {
                                plain::state.maxError = m.error;
                            } else {
                                m.digest.Add(PlainOf(m.other).Length());
                            }
                        }
                    },
                    force, depth);
            } catch (Stop const&) {
                threw = true;
            }
            m.digest.Add(threw);
            AddPlainState(m.digest);
            return m.digest;
        });
    }
}

void Length(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(400000); i > 0; --i) {
        CurveInput in = RandomCurve(random);
        if (random.OneIn(4)) {
            in.curve *= random.OneIn(2) ? 0.01 : 1e-3; // the tolerance is absolute
        }
        SetUp(random, in.tolerance, in.depth);
        TakeFromBoth(part, in.curve, [](auto const& c, Digest& digest) { digest.Add(c.Length()); });
    }
}

void Percent(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(120000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        double const fraction = Fraction(random);
        bool const inverse = random.OneIn(2);
        SetUp(random, in.tolerance, in.depth);
        TakeFromBoth(part, in.curve, [&](auto const& c, Digest& digest) {
            digest.Add(inverse ? c.TPercent(fraction) : c.PercentT(fraction));
        });
    }
}

double StepOf(Random& random) {
    switch (random.Int(0, 5)) {
    case 0:
        return 0.0;
    case 1:
        return std::abs(random.Binary(-60, 1));
    case 2:
        return random.OneIn(4) ? random.Special() : 0.01;
    default:
        return 0.001;
    }
}

void Nearest(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(150000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        Pt const pt = PointAbout(random, in.curve.Extents());
        double const step = StepOf(random);
        bool const whole = random.OneIn(2);
        double const t0 = whole ? 0.0 : Fraction(random);
        double const t1 = whole ? 1.0 : Fraction(random);
        int const what = random.Int(0, 7);
        auto const ask = [&](auto curve) {
            Digest digest;
            if (what == 0) {
                decltype(curve) left;
                decltype(curve) right;
                digest.Add(curve.Divide(left, right, pt));
                Add(digest, left);
                Add(digest, right);
            } else if (what <= 2) {
                digest.Add(curve.FindDividedTValue(pt, step, t0, t1));
                Add(digest, curve);
            } else {
                digest.Add(curve.FindTValue(pt, step, t0, t1));
            }
            return digest;
        };
        part.Take(ask(in.curve), [&] { return ask(PlainOf(in.curve)); });
    }
}

void Hits(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(400000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        SetUp(random, in.tolerance, in.depth);
        // Half of them near the curve, where it takes the flattening to tell.
        Pt pt = PointAbout(random, in.curve.Extents());
        double const reach = random.OneIn(16) ? random.Special() : std::abs(random.Binary(-6, 3));
        if (random.OneIn(2)) {
            pt = in.curve.TPt(random.Unit());
            pt += random.Point(-reach, reach);
        }
        bool const hits = random.OneIn(2);
        Box rect(pt, pt);
        rect.Outset(reach, reach * 0.5);
        TakeFromBoth(part, in.curve, [&](auto const& c, Digest& digest) {
            digest.Add(hits ? c.HitTest(pt, reach) : c.Intersects(rect));
        });
    }
}

void Divide(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(300000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        double const t = Fraction(random);
        double const t1 = Fraction(random);
        CBezier left;
        CBezier right;
        CBezier piece;
        Digest digest;
        digest.Add(in.curve.TPt(t));
        digest.Add(in.curve.Flat(in.tolerance));
        digest.Add(in.curve.Extents());
        digest.Add(in.curve.Divide(left, right));
        Add(digest, left);
        Add(digest, right);
        digest.Add(in.curve.Divide(left, right, t));
        Add(digest, left);
        Add(digest, right);
        in.curve.GetTRange(t, t1, piece);
        Add(digest, piece);
        part.Take(digest, [&] {
            plain::Bezier const c = PlainOf(in.curve);
            plain::Bezier a;
            plain::Bezier b;
            Digest expected;
            expected.Add(c.TPt(t));
            expected.Add(c.Flat(in.tolerance));
            expected.Add(c.Extents());
            expected.Add(c.Divide(a, b));
            Add(expected, a);
            Add(expected, b);
            expected.Add(c.Divide(a, b, t));
            Add(expected, a);
            Add(expected, b);
            Add(expected, c.GetTRange(t, t1));
            return expected;
        });
    }
}

void Arithmetic(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(100000); i > 0; --i) {
        CurveInput const in = RandomCurve(random);
        Pt const p = random.OneIn(16) ? Pt(random.Special(), 2.0) : random.Point(-3, 3);
        double const s = random.OneIn(16) ? random.Special() : random.Uniform(-3, 3);
        CMatrix3x3 m;
        m.Scale(s).Translate(p.h, p.v);
        m.b = random.Uniform(-1, 1);
        Digest digest;
        Add(digest, in.curve + p);
        Add(digest, in.curve - p);
        Add(digest, in.curve * p);
        Add(digest, in.curve / p);
        Add(digest, in.curve * s);
        Add(digest, in.curve / s);
        CBezier curve = in.curve;
        Add(digest, curve.Transform(m));
        Add(digest, curve.Scale(p).Scale(s, p.v));
        part.Take(digest);
    }
}

/// A quadratic, at times with special coordinates; one in eight of any size.
CBSpline RandomSpline(Random& random, int& depth) {
    CurveInput const in = RandomCurve(random);
    depth = in.depth;
    int const which = random.Int(0, 3);
    if (which == 0) { // as flat as the tolerance of 1, about
        Pt const a = random.Point(0, 100);
        Pt const b = random.Point(0, 100);
        double const scale = static_cast<double>(1 << (2 * random.Int(0, 4)));
        Pt middle(a.h + (b.h - a.h) * 0.5, a.v + (b.v - a.v) * 0.5);
        middle.v = StepUlps(middle.v + scale, random.Int(-4, 4));
        return {a, middle, b};
    }
    return {in.curve.P0, in.curve.P1, in.curve.P2};
}

void Splines(Part& part) {
    Random& random = part.random;
    for (int i = part.Count(300000); i > 0; --i) {
        int depth = 0;
        CBSpline const curve = RandomSpline(random, depth);
        double const error =
            random.OneIn(2) ? 1.0
                            : (random.OneIn(8) ? random.Special() : std::abs(random.Binary(-8, 3)));
        bool const flattens = random.OneIn(2);
        if (!gShared) {
            CBSpline::mMaxError = plain::splineState.maxError = error;
            CBSpline::mRecursionLimit = plain::splineState.recursionLimit =
                static_cast<std::int16_t>(depth);
            CBSpline::mCount = plain::splineState.mCount = random.Int(0, 100);
        }
        plain::SplineState const start = plain::splineState;
        CBSpline left;
        CBSpline right;
        Digest digest;
        digest.Add(curve.Divide(left, right));
        digest.Add(left.P1);
        digest.Add(right.P1);
        digest.Add(curve.Flat(error));
        digest.Add(curve.Extents());
        if (flattens) {
            if (!gShared) {
                CBSpline::mMaxError = plain::splineState.maxError = 2.0;
            }
            TPolygon<double> polygon;
            curve.AddSegmentToPoly(polygon, error);
            digest.Add(polygon);
        } else {
            curve.GenerateSegment(
                [](Pt const& p, void* data) { static_cast<Digest*>(data)->Add(p); }, &digest,
                static_cast<short>(depth));
        }
        if (!gShared) {
            digest.Add(CBSpline::mCount);
            digest.Add(CBSpline::mMaxError);
        }
        part.Take(digest, [&] {
            plain::splineState = start;
            plain::Spline const c{curve.P0, curve.P1, curve.P2};
            plain::Spline a;
            plain::Spline b;
            Digest expected;
            expected.Add(c.Divide(a, b));
            expected.Add(a.p1);
            expected.Add(b.p1);
            expected.Add(c.Flat(error));
            expected.Add(curve.Extents());
            if (flattens) {
                plain::splineState.maxError = 2.0;
                plain::Spline::Points chain;
                c.AddSegment(chain, error);
                expected.Add(chain);
            } else {
                c.GenerateSegment([&](Pt const& p) { expected.Add(p); }, depth);
            }
            expected.Add(plain::splineState.mCount);
            expected.Add(plain::splineState.maxError);
            return expected;
        });
    }
}

} // namespace

std::vector<Entry> CurveParts() {
    return {
        {"curve.flatten", Flatten},   {"curve.flatten-deep", FlattenDeep},
        {"curve.generate", Generate}, {"curve.callbacks", Callbacks},
        {"curve.length", Length},     {"curve.percent", Percent},
        {"curve.nearest", Nearest},   {"curve.hit", Hits},
        {"curve.divide", Divide},     {"curve.arithmetic", Arithmetic},
        {"spline", Splines},
    };
}

} // namespace identity
