// SPDX-License-Identifier: MIT

#include "Identity.h"

#include "plain/PlainBezier.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace identity {

namespace {

std::uint64_t Seed(char const* name) {
    Digest digest;
    for (; *name != 0; ++name) {
        digest.Add(std::int32_t{*name});
    }
    return digest.Value();
}

/// The curve from `a` to `b` whose control points are `first` and `second` off the chord's thirds.
CBezier Bowed(Pt const& a, Pt const& b, double first, double second) {
    Pt const d = b - a;
    double const length = std::sqrt(d.h * d.h + d.v * d.v);
    Pt const normal(-d.v / length, d.h / length);
    return {a, a + d / 3.0 + normal * first, b - d / 3.0 + normal * second, b};
}

/// A tolerance out of those in use.
double Tolerance(Random& random) {
    switch (random.Int(0, 5)) {
    case 0:
        return 0.001;
    case 1:
        return 0.1;
    case 2:
        return 1.0;
    case 3:
        return random.Uniform(0.01, 4.0);
    case 4:
        return std::abs(random.Binary(-8, 4));
    default:
        return 0.25;
    }
}

/// A curve as flat as the tolerance to within a few steps, or one with such a piece after some
/// halvings. Now and then it lies where a quick decision about flatness may end.
CurveInput NearlyFlat(Random& random) {
    double const tolerance = Tolerance(random);
    Pt const a = random.Point(-500, 500);
    double const reach = std::abs(random.Binary(-3, 9));
    Pt const b = a + random.Point(-reach, reach);
    double offset = tolerance * (4.0 / 3.0) * std::ldexp(1.0, 2 * random.Int(0, 4));
    int const edge = random.Int(0, 7);
    if (edge <= 1) {
        offset *= edge == 0 ? 1.0 - 0x1p-12 : 1.0 + 0x1p-12;
    } else if (edge == 2) {
        offset *= random.Uniform(1.0 - 0x1p-11, 1.0 + 0x1p-11);
    }
    CBezier curve = Bowed(a, b, offset, offset);
    curve.P1.h = StepUlps(curve.P1.h, random.Int(-6, 6));
    curve.P1.v = StepUlps(curve.P1.v, random.Int(-6, 6));
    curve.P2.v = StepUlps(curve.P2.v, random.Int(-6, 6));
    return {curve, tolerance, random.OneIn(4) ? random.Int(1, 12) : 12};
}

/// Points of any size, alike or not; a depth that their subdivision does not exhaust for long.
CurveInput OfAnySize(Random& random) {
    std::array<Pt, 4> p;
    int const common = random.Int(-990, 990);
    int const spread = random.OneIn(2) ? 2 : 40;
    bool const mixed = random.OneIn(4);
    for (Pt& q : p) {
        int const lo = mixed ? random.Int(-990, 990) : common;
        q.h = random.Binary(lo - spread / 2, lo + spread / 2 > 996 ? 996 : lo + spread / 2);
        q.v = random.Binary(lo - spread / 2, lo + spread / 2 > 996 ? 996 : lo + spread / 2);
    }
    double const tolerance =
        random.OneIn(3) ? Tolerance(random) : std::abs(random.Binary(common - 30, common + 3));
    return {CBezier(p[0], p[1], p[2], p[3]), tolerance, random.Int(1, 7)};
}

/// Points with edge cases among them.
CurveInput WithSpecials(Random& random) {
    std::array<Pt, 4> p;
    int const every = random.Int(1, 6);
    for (Pt& q : p) {
        q = random.Point(-100, 100);
        if (random.OneIn(every)) {
            q.h = random.OneIn(8) ? random.Anything() : random.Special();
        }
        if (random.OneIn(every)) {
            q.v = random.OneIn(8) ? random.Anything() : random.Special();
        }
    }
    double const tolerance = random.OneIn(2) ? Tolerance(random) : random.Special();
    return {CBezier(p[0], p[1], p[2], p[3]), tolerance, random.Int(-1, 7)};
}

} // namespace

double Random::Binary(int lo, int hi) {
    double const mantissa = 1.0 + Unit();
    double const x = std::ldexp(mantissa, Int(lo, hi));
    return OneIn(2) ? -x : x;
}

double Random::Special() {
    typedef std::numeric_limits<double> Limits;
    static constexpr std::array<double, 18> kSpecials = {
        0.0,
        -0.0,
        1.0,
        -1.0,
        Limits::quiet_NaN(),
        Limits::infinity(),
        -Limits::infinity(),
        Limits::denorm_min(),
        -Limits::denorm_min(),
        Limits::min(),
        -Limits::min(),
        0x1.8p-1040,
        Limits::max(),
        -Limits::max(),
        Limits::epsilon(),
        1e300,
        -1e-300,
        0x1p53,
    };
    return kSpecials[Index(kSpecials.size())];
}

double Random::Anything() {
    std::uint64_t const bits = Bits();
    double x = 0.0;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

double StepUlps(double x, int steps) {
    double const limit = std::numeric_limits<double>::infinity();
    for (; steps > 0; --steps) {
        x = std::nextafter(x, limit);
    }
    for (; steps < 0; ++steps) {
        x = std::nextafter(x, -limit);
    }
    return x;
}

void Digest::Add(double x) {
    std::uint64_t bits = 0x7FF8000000000000U;
    if (!std::isnan(x)) {
        std::memcpy(&bits, &x, sizeof bits);
    }
    Add(bits);
}

void Digest::Add(std::vector<Pt> const& points) {
    Add(static_cast<std::int64_t>(points.size()));
    for (Pt const& p : points) {
        Add(p);
    }
}

void Digest::Add(TPolygon<double> const& polygon) {
    long const count = polygon.LastIndex() + 1;
    Add(std::int64_t{count});
    for (long i = 0; i < count; ++i) {
        Add(polygon.GetPt(i));
    }
}

Part::Part(char const* name, int thinning, bool compares)
    : random(Seed(name)), mName(name), mThinning(thinning), mCompares(compares) {}

void Part::Differs() {
    if (++mDifferences <= 3) {
        std::fprintf(stderr, "%s: input %ld differs from the plain form\n", mName, mInputs);
    }
}

CurveInput DrawnCurve(Random& random) {
    switch (random.Int(0, 5)) {
    case 0: { // S-shaped
        Pt const a = random.Point(0, 100);
        Pt const b = random.Point(0, 100);
        double const off = random.Uniform(1, 60);
        return {Bowed(a, b, off, -off * (random.OneIn(2) ? 1.0 : random.Uniform(0.5, 1.5))),
                Tolerance(random), 9};
    }
    case 1: { // on a grid, as fonts and icons have it
        std::array<Pt, 4> p;
        for (Pt& q : p) {
            q.h = random.Int(0, 64) / 4.0;
            q.v = random.Int(0, 64) / 4.0;
        }
        return {CBezier(p[0], p[1], p[2], p[3]), Tolerance(random), 9};
    }
    case 2: { // a chord upright or level, exactly or nearly
        Pt const a = random.Point(0, 100);
        Pt b = random.Point(0, 100);
        if (random.OneIn(2)) {
            b.h = StepUlps(a.h, random.OneIn(2) ? 0 : random.Int(-3, 3));
        } else {
            b.v = StepUlps(a.v, random.OneIn(2) ? 0 : random.Int(-3, 3));
        }
        Pt const p1 = random.Point(0, 100);
        Pt const p2 = random.Point(0, 100);
        return {CBezier(a, p1, p2, b), Tolerance(random), 9};
    }
    case 3: { // a bow
        Pt const a = random.Point(0, 50);
        Pt const b = random.Point(0, 50);
        double const first = random.Uniform(-20, 20);
        double const second = random.Uniform(-20, 20);
        return {Bowed(a, b, first, second), Tolerance(random), 12};
    }
    case 4: { // a cusp or a loop: the arms cross
        Pt const at = random.Point(0, 100);
        double const size = random.Uniform(1, 60);
        double const reach = random.OneIn(2) ? 1.0 : random.Uniform(0.5, 2.0);
        return {CBezier(at, at + Pt(size * reach, size), at + Pt(size - size * reach, size),
                        at + Pt(size, 0)),
                Tolerance(random), 10};
    }
    default: {
        Pt const p0 = random.Point(0, 200);
        Pt const p1 = random.Point(0, 200);
        Pt const p2 = random.Point(0, 200);
        Pt const p3 = random.Point(0, 200);
        return {CBezier(p0, p1, p2, p3), Tolerance(random), random.OneIn(20) ? 15 : 9};
    }
    }
}

CurveInput RandomCurve(Random& random) {
    switch (random.Int(0, 9)) {
    case 0:
    case 1:
        return NearlyFlat(random);
    case 2:
        return OfAnySize(random);
    case 3:
        return WithSpecials(random);
    case 4: { // points that coincide
        Pt const pool[2] = {random.Point(0, 100), random.Point(0, 100)};
        int const which = random.Int(0, 15);
        auto const pick = [&](int bit) { return pool[(which >> bit) & 1]; };
        return {CBezier(pick(0), pick(1), pick(2), pick(3)), Tolerance(random), random.Int(1, 9)};
    }
    case 5: { // small, far from the origin
        double const away = random.Binary(10, 40);
        Pt const at(away, random.OneIn(2) ? away : 0.0);
        Pt const p0 = at + random.Point(0, 10);
        Pt const p1 = at + random.Point(0, 10);
        Pt const p2 = at + random.Point(0, 10);
        Pt const p3 = at + random.Point(0, 10);
        return {CBezier(p0, p1, p2, p3), Tolerance(random), random.Int(1, 8)};
    }
    default: {
        CurveInput input = DrawnCurve(random);
        if (random.OneIn(4)) {
            input.depth = random.Int(1, input.depth);
        }
        return input;
    }
    }
}

Pt PointAbout(Random& random, Box const& bounds) {
    if (random.OneIn(32)) {
        double const h = random.OneIn(2) ? random.Special() : random.Uniform(0, 100);
        return {h, random.Special()};
    }
    double const width = bounds.right - bounds.left;
    double const height = bounds.bottom - bounds.top;
    double const h = bounds.left + width * random.Uniform(-0.25, 1.25);
    return {h, bounds.top + height * random.Uniform(-0.25, 1.25)};
}

double Fraction(Random& random) {
    switch (random.Int(0, 15)) {
    case 0:
        return random.Special();
    case 1:
        return random.Uniform(-1, 2);
    case 2:
        return random.Int(0, 8) / 8.0;
    default:
        return random.Unit();
    }
}

bool gShared = false;

void SetUp(Random& random, double maxError, int depth) {
    if (gShared) {
        return;
    }
    CBezier::mMaxError = plain::state.maxError = maxError;
    CBezier::mRecursionLimit = plain::state.recursionLimit = static_cast<std::int16_t>(depth);
    CBezier::mCount = plain::state.mCount = random.Int(0, 1000);
    gCount = plain::state.gCount = random.Int(0, 1000);
    maxCount = plain::state.maxCount = random.Int(0, 500);
}

void AddState(Digest& digest) {
    if (gShared) {
        return;
    }
    digest.Add(CBezier::mCount);
    digest.Add(gCount);
    digest.Add(maxCount);
    digest.Add(CBezier::mMaxError);
}

void AddPlainState(Digest& digest) {
    digest.Add(plain::state.mCount);
    digest.Add(plain::state.gCount);
    digest.Add(plain::state.maxCount);
    digest.Add(plain::state.maxError);
}

} // namespace identity
