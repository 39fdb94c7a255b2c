// SPDX-License-Identifier: MIT

// What the search for a place takes for granted: that the pieces' formulas suffice, also for parts
// of a piece, and that few nodes suffice for short stretches.
#include "PlaceKernelForms_p.h"

#include "../queries/CurveTruth.h"
#include "Speed_p.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace {

using namespace trammel_test;
using trammel_detail::Double4;
using trammel_detail::kGaussTable;
using trammel_detail::kMostPieces;
using trammel_detail::LengthPiece;
using trammel_detail::Scale;

/// One curve with its pieces.
struct Subject {
    CBezier curve;
    trammel_detail::SpeedCurve speed;
    LengthPiece pieces[kMostPieces];
    int count;

    explicit Subject(CBezier const& c)
        : curve(c),
          speed(trammel_detail::SpeedCurveOf(c.P1.h - c.P0.h, c.P1.v - c.P0.v, c.P2.h - c.P1.h,
                                             c.P2.v - c.P1.v, c.P3.h - c.P2.h, c.P3.v - c.P2.v)),
          count(trammel_detail::CurvePiecesForm<Double4>(&curve.P0.v, Scale::kAny, pieces,
                                                         kGaussTable.entries)) {}
    Wide Bound(double part) const {
        return Widened(speed.size) * Widened(part + trammel_detail::kLengthRounding);
    }
};

/// Calls check(random, subject, piece) for the pieces with a formula of random curves.
template <class Check> void ForEachPiece(std::uint64_t seed, Check check) {
    Random random(seed);
    for (int i = 0; i < 1500; ++i) {
        Subject const s(AnyCurve(random));
        for (int k = 0; k < s.count; ++k) {
            if (s.pieces[k].formula >= 0) {
                check(random, s, s.pieces[k]);
            }
        }
    }
}

TEST(CurvePieces, CoverTheCurveInOrderAndAddUpToItsLength) {
    Random random(31);
    for (int i = 0; i < 2000; ++i) {
        Subject const s(AnyCurve(random));
        if (s.speed.size == 0.0) {
            EXPECT_EQ(s.count, 0);
            continue;
        }
        ASSERT_GE(s.count, 1);
        Wide sum = 0;
        double from = 0.0;
        for (int k = 0; k < s.count; ++k) {
            EXPECT_EQ(s.pieces[k].from, from);
            EXPECT_LT(from, s.pieces[k].to);
            from = s.pieces[k].to;
            sum += Widened(s.pieces[k].length);
        }
        EXPECT_EQ(from, 1.0);
        EXPECT_LE(std::abs(sum - TrueLength(s.curve)),
                  s.Bound(trammel_detail::kPieceLengthPart) * 2)
            << Text(s.curve);
    }
}

TEST(CurvePieces, FormulaSufficesForEveryPartOfThePiece) {
    ForEachPiece(32, [](Random& random, Subject const& s, LengthPiece const& piece) {
        double const to =
            piece.from + (piece.to - piece.from) * std::pow(random.Uniform(0, 1), 3.0);
        double const length = trammel_detail::PieceIntegral<Double4>(
            s.speed, piece.from, to, piece.formula, kGaussTable.entries);
        EXPECT_LE(Off(length, TrueLength(s.curve, Widened(piece.from), Widened(to))),
                  s.Bound(trammel_detail::kPieceLengthPart))
            << Text(s.curve);
    });
}

TEST(CurvePieces, FewNodesSufficeForShortStretches) {
    ForEachPiece(33, [](Random& random, Subject const& s, LengthPiece const& piece) {
        auto const formula = static_cast<std::size_t>(piece.formula);
        for (long const steps : {1L, 2L}) {
            double const width = piece.to - piece.from;
            double const longest = (steps == 1 ? trammel_detail::kStretchParts.four[formula]
                                               : trammel_detail::kStretchParts.eight[formula]) *
                                   width;
            double const stretch = std::min(longest, width);
            // Stretches at the ends of the piece are nearest to the zeros.
            double const place =
                random.Integer(0, 2) == 0 ? random.Uniform(0, 1) : random.Integer(0, 1);
            double const from = piece.from + (width - stretch) * place;
            double const to = from + stretch;
            double const length =
                trammel_detail::PieceSpeed<Double4>(s.speed, from, to)
                    .Integral(kGaussTable.entries + trammel_detail::GaussStart(steps), steps);
            EXPECT_LE(Off(length, TrueLength(s.curve, Widened(from), Widened(to))),
                      s.Bound(trammel_detail::kStretchPart))
                << Text(s.curve);
        }
    });
}

TEST(PieceParameter, LengthUpToThePlaceIsRight) {
    ForEachPiece(34, [](Random& random, Subject const& s, LengthPiece const& piece) {
        double const part = std::pow(random.Uniform(0, 1), random.Integer(1, 6));
        double const length = trammel_detail::Quantized(
            (random.Integer(0, 1) == 0 ? part : 1 - part) * piece.length, s.speed.size);
        double const t = trammel_detail::PieceParameterForm<Double4>(
            &s.curve.P0.v, Scale::kAny, piece, length, kGaussTable.entries);
        // A length may be rounded beyond the piece, whose end it is then.
        EXPECT_LE(Off(std::min(length, piece.length),
                      TrueLength(s.curve, Widened(piece.from), Widened(t))),
                  Widened(s.speed.size * trammel_detail::kPlacePart))
            << Text(s.curve);
    });
}

TEST(Quantized, RoundsToMultiplesOfThePowerOfTwo) {
    EXPECT_EQ(trammel_detail::Quantized(0x1.8p-43, 1.0), 0x1p-42);
    EXPECT_EQ(trammel_detail::Quantized(0x1p-44, 1.9), 0.0);
    EXPECT_EQ(trammel_detail::Quantized(0.75, 1.0), 0.75);
    EXPECT_EQ(trammel_detail::Quantized(3.0 + 0x1p-50, 4.0), 3.0);
    EXPECT_EQ(trammel_detail::Quantized(3.0 + 0x1p-40, 4.0), 3.0 + 0x1p-40);
}

} // namespace
