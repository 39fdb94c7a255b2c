// SPDX-License-Identifier: MIT

// Every operation of the small vectors on plain arrays, so that a file for AVX2 can run them
// without sharing a function with the tests.

#ifndef TRAMMEL_TESTS_VECTOROPERATIONS_H
#define TRAMMEL_TESTS_VECTOROPERATIONS_H

#include "Vector_p.h"

namespace trammel_test {

/// Operations that work on each lane by itself. `a`, `b` and `c` stand for their operands.
enum class LaneOperation {
    kAdd,
    kSubtract,
    kMultiply,
    kDivide,
    kNegate,
    kAbs,
    kSqrt,
    kMin,
    kMax,
    kFillWithFirst, ///< the vector made of a[0]
    kSelectEqual,   ///< c where a == b, else a
    kSelectLess,    ///< c where a < b, else a
    kSelectNotMore, ///< c where a <= b, else a
    kSelectMore,    ///< c where a > b, else a
    kSelectNotLess, ///< c where a >= b, else a
    kSelectBoth,    ///< c where a < b and b < c, else a
    kSelectEither,  ///< c where a < b or b < c, else a
    kCount
};

/// Operations that take lanes to other places. `a` and `b` have four lanes each.
enum class LaneMove { kFirstsTwice, kLowHalves, kPreceding, kFollowing, kRunningSums, kLanes };

/// The operations of one vector, called by pointer.
struct VectorUnderTest {
    int lanes;
    void (*apply)(LaneOperation, double const* a, double const* b, double const* c, double* out);
    unsigned (*lessBits)(double const* a, double const* b);
    double (*lane)(double const* a, int lane);
};

/// The further operations of a vector of four lanes.
struct FourLanesUnderTest {
    VectorUnderTest each;
    void (*of)(double const* a, double* out);
    void (*move)(LaneMove, double const* a, double const* b, double* out);
    double (*sum)(double const* a);
    /// Reads four pairs. Stores their first members, then their second ones.
    void (*loadPairs)(double const* from, double* out);
    void (*storePairs)(double const* a, double const* b, double* const (&to)[4]);
    /// Makes the four rows at `square` its columns.
    void (*transpose)(double* square);
};

FourLanesUnderTest WideDouble4UnderTest();
/// Stores the pair at `from` by Repeat, then EvenTwice, OddTwice, LowHalf and HighHalf of the four
/// lanes there.
void MovePairsOfWideDouble4(double const* from, double* out);

/// Functions to point at. The vector is part of their names, so that files for different processors
/// share none.
template <class Vector> struct OperationsOf {
    static void Apply(LaneOperation operation, double const* from, double const* second,
                      double const* third, double* out) {
        Vector const a = Vector::Load(from);
        Vector const b = Vector::Load(second);
        Vector const c = Vector::Load(third);
        Vector result = a;
        switch (operation) {
        case LaneOperation::kAdd:
            result = a + b;
            break;
        case LaneOperation::kSubtract:
            result = a - b;
            break;
        case LaneOperation::kMultiply:
            result = a * b;
            break;
        case LaneOperation::kDivide:
            result = a / b;
            break;
        case LaneOperation::kNegate:
            result = -a;
            break;
        case LaneOperation::kAbs:
            result = Abs(a);
            break;
        case LaneOperation::kSqrt:
            result = Sqrt(a);
            break;
        case LaneOperation::kMin:
            result = Min(a, b);
            break;
        case LaneOperation::kMax:
            result = Max(a, b);
            break;
        case LaneOperation::kFillWithFirst:
            result = a[0];
            break;
        case LaneOperation::kSelectEqual:
            result = Select(a == b, c, a);
            break;
        case LaneOperation::kSelectLess:
            result = Select(a < b, c, a);
            break;
        case LaneOperation::kSelectNotMore:
            result = Select(a <= b, c, a);
            break;
        case LaneOperation::kSelectMore:
            result = Select(a > b, c, a);
            break;
        case LaneOperation::kSelectNotLess:
            result = Select(a >= b, c, a);
            break;
        case LaneOperation::kSelectBoth:
            result = Select((a < b) & (b < c), c, a);
            break;
        case LaneOperation::kSelectEither:
            result = Select((a < b) | (b < c), c, a);
            break;
        case LaneOperation::kCount:
            break;
        }
        result.Store(out);
    }
    static unsigned LessBits(double const* a, double const* b) {
        return (Vector::Load(a) < Vector::Load(b)).Bits();
    }
    static double Lane(double const* a, int lane) { return Vector::Load(a)[lane]; }
    static VectorUnderTest Each(int lanes) { return {lanes, Apply, LessBits, Lane}; }

    static void Of(double const* a, double* out) { Vector::Of(a[0], a[1], a[2], a[3]).Store(out); }
    static void Move(LaneMove move, double const* first, double const* second, double* out) {
        Vector const a = Vector::Load(first);
        Vector const b = Vector::Load(second);
        switch (move) {
        case LaneMove::kFirstsTwice:
            FirstsTwice(a, b).Store(out);
            break;
        case LaneMove::kLowHalves:
            LowHalves(a, b).Store(out);
            break;
        case LaneMove::kPreceding:
            Preceding(a, b).Store(out);
            break;
        case LaneMove::kFollowing:
            Following(a, b).Store(out);
            break;
        case LaneMove::kRunningSums:
            RunningSums(a).Store(out);
            break;
        case LaneMove::kLanes:
            out[0] = trammel_detail::Lane<0>(a);
            out[1] = trammel_detail::Lane<1>(a);
            out[2] = trammel_detail::Lane<2>(a);
            out[3] = trammel_detail::Lane<3>(a);
            break;
        }
    }
    static double SumOf(double const* a) { return Sum(Vector::Load(a)); }
    static void LoadPairsOf(double const* from, double* out) {
        Vector a;
        Vector b;
        LoadPairs(from, a, b);
        a.Store(out);
        b.Store(out + 4);
    }
    static void StorePairsOf(double const* a, double const* b, double* const (&to)[4]) {
        StorePairs(Vector::Load(a), Vector::Load(b), to);
    }
    static void TransposeOf(double* square) {
        Vector a = Vector::Load(square);
        Vector b = Vector::Load(square + 4);
        Vector c = Vector::Load(square + 8);
        Vector d = Vector::Load(square + 12);
        Transpose(a, b, c, d);
        a.Store(square);
        b.Store(square + 4);
        c.Store(square + 8);
        d.Store(square + 12);
    }
    static FourLanesUnderTest Four() {
        return {Each(4), Of, Move, SumOf, LoadPairsOf, StorePairsOf, TransposeOf};
    }
};

} // namespace trammel_test

#endif
