// SPDX-License-Identifier: MIT

#include "ApartPieces_p.h"

#include "PointAlgebra.h"
#include "PointMath_p.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Directions from a common point count as apart if the scalar product exceeds this share.
constexpr double kApart = 0x1p-20;
/// A proof takes no more steps.
constexpr int kMostSteps = 400;
/// Pairs and parts that wait. Each step takes one and adds two.
constexpr std::size_t kMostOpen = 64;
/// The search for loops cuts a curve into this number of parts.
constexpr std::size_t kLoopParts = 8;

/// A part of a curve, which knows whether its ends are the curve's own.
struct Part {
    Cubic c;
    bool atStart;
    bool atEnd;

    Part Head() const { return {HeadOf(c, 0.5), atStart, false}; }
    Part Tail() const { return {TailOf(c, 0.5), false, atEnd}; }
    Part Turned() const { return {Reversed(c), atEnd, atStart}; }
};

struct PartPair {
    Part a;
    Part b;
};

bool ArePartsApart(Part const& a, Part const& b, double margin) {
    if (!HullBox(a.c).Widened(margin, margin).Meets(HullBox(b.c))) {
        return true;
    }
    int joints = 0;
    PartPair pair = {a, b}; // so that the end of one is the start of the other
    for (bool const turnsA : {false, true}) {
        for (bool const turnsB : {false, true}) {
            Part const x = turnsA ? a.Turned() : a;
            Part const y = turnsB ? b.Turned() : b;
            if (x.atEnd && y.atStart && x.c[3] == y.c[0]) {
                ++joints;
                pair = {x, y};
            }
        }
    }
    return joints == 0   ? ChordSeparates(a.c, b.c, margin) || ChordSeparates(b.c, a.c, margin)
           : joints == 1 ? MeetAtJointOnly(pair.a.c, pair.b.c)
                         : false;
}

double SquareOfDistance(Box<double> const& box, Pt const& p) {
    double const h = std::max({box.lowX - p.h, p.h - box.highX, 0.0});
    double const v = std::max({box.lowY - p.v, p.v - box.highY, 0.0});
    return h * h + v * v;
}

} // namespace

Box<double> HullBox(Cubic const& c) {
    Box<double> box;
    for (Pt const& p : c) {
        box.Include(p.h, p.v);
    }
    return box;
}

bool GoesForward(Cubic const& c) {
    Pt const chord = c[3] - c[0];
    return Square(chord) > 0.0 && Dot(c[1] - c[0], chord) >= 0.0 &&
           Dot(c[2] - c[1], chord) >= 0.0 && Dot(c[3] - c[2], chord) >= 0.0;
}

bool MeetAtJointOnly(Cubic const& before, Cubic const& behind) {
    Pt const joint = before[3];
    Pt const back = trammel::Normalize(before[0] - joint);
    Pt const ahead = trammel::Normalize(behind[3] - joint);
    Pt const axis = ahead - back;
    for (std::size_t i = 0; i < 3; ++i) {
        Pt const a = before[i] - joint;
        Pt const b = behind[i + 1] - joint;
        if ((!a.Null() && !(Dot(a, axis) < -kApart * Taxicab(a))) ||
            (!b.Null() && !(Dot(b, axis) > kApart * Taxicab(b)))) {
            return false;
        }
    }
    return true;
}

bool AreApart(Cubic const& a, Cubic const& b, double margin) {
    std::array<PartPair, kMostOpen> open;
    std::size_t count = 0;
    open[count++] = {{a, true, true}, {b, true, true}};
    for (int steps = 0; count > 0; ++steps) {
        PartPair const pair = open[--count];
        if (ArePartsApart(pair.a, pair.b, margin)) {
            continue;
        }
        if (steps >= kMostSteps || count + 2 > kMostOpen) {
            return false;
        }
        if (PolygonLength(pair.a.c) >= PolygonLength(pair.b.c)) {
            open[count++] = {pair.a.Head(), pair.b};
            open[count++] = {pair.a.Tail(), pair.b};
        } else {
            open[count++] = {pair.a, pair.b.Head()};
            open[count++] = {pair.a, pair.b.Tail()};
        }
    }
    return true;
}

bool IsFreeOfLoops(Cubic const& c, double margin) {
    if (GoesForward(c)) {
        return true;
    }
    std::array<Cubic, kLoopParts> parts;
    Cubic rest = c;
    for (std::size_t i = 0; i < kLoopParts; ++i) {
        bool const isLast = i + 1 == kLoopParts;
        double const t = 1.0 / static_cast<double>(kLoopParts - i);
        parts[i] = isLast ? rest : HeadOf(rest, t);
        rest = isLast ? rest : TailOf(rest, t);
        rest[0] = parts[i][3];
        if (!GoesForward(parts[i])) {
            return false;
        }
        for (std::size_t k = 0; k < i; ++k) {
            if (!AreApart(parts[k], parts[i], margin)) {
                return false;
            }
        }
    }
    return true;
}

bool KeepsAway(Cubic const& c, Pt const& p, double distance) {
    std::array<Cubic, kMostOpen> open;
    std::size_t count = 0;
    open[count++] = c;
    double const square = distance * distance;
    for (int steps = 0; count > 0; ++steps) {
        Cubic const part = open[--count];
        if (SquareOfDistance(HullBox(part), p) > square) {
            continue;
        }
        if (steps >= kMostSteps || count + 2 > kMostOpen || !(Square(part[3] - p) > square)) {
            return false;
        }
        open[count++] = HeadOf(part, 0.5);
        open[count++] = TailOf(part, 0.5);
    }
    return true;
}

} // namespace trammel_detail
