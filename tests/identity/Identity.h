// SPDX-License-Identifier: MIT

// Random input, the digest of the library's results, and the record of one part: all parts of the
// identity suite share these. main.cpp says what the suite is.
//
// Everything here gives the same numbers with every compiler and standard library:
// - the generator is written out;
// - exact operations make the numbers from its bits;
// - no expression calls the generator twice, as the compiler would choose the order.

#ifndef TRAMMEL_IDENTITY_H
#define TRAMMEL_IDENTITY_H

#include "CBezier.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace identity {

typedef TPoint<double> Pt;
typedef TRect<double> Box;

/// Random numbers, by SplitMix64 (Steele, Lea and Flood, 2014).
class Random {
public:
    explicit Random(std::uint64_t seed) : mState(seed) {}

    /// Any 64 bits.
    std::uint64_t Bits() {
        mState += 0x9E3779B97F4A7C15U;
        std::uint64_t z = mState;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }
    /// In [0, 1).
    double Unit() { return static_cast<double>(Bits() >> 11U) * 0x1p-53; }
    /// In [lo, hi).
    double Uniform(double lo, double hi) { return lo + (hi - lo) * Unit(); }
    /// In [lo, hi].
    int Int(int lo, int hi) {
        return lo + static_cast<int>(Bits() % static_cast<std::uint64_t>(hi - lo + 1));
    }
    /// Below `count`.
    std::size_t Index(std::size_t count) { return static_cast<std::size_t>(Bits() % count); }
    /// True once in `n`.
    bool OneIn(int n) { return Int(1, n) == 1; }
    /// Of either sign, its magnitude between 2^lo and 2^(hi + 1).
    double Binary(int lo, int hi);
    /// One of the numbers at the edges: NaN, infinities, zeros, denormals, the largest.
    double Special();
    /// A double of any bits.
    double Anything();
    /// Both coordinates in [lo, hi).
    Pt Point(double lo, double hi) {
        double const h = Uniform(lo, hi);
        double const v = Uniform(lo, hi);
        return {h, v};
    }

private:
    std::uint64_t mState;
};

/// The double `steps` representable numbers above (below, when negative) `x`.
double StepUlps(double x, int steps);

/// A hash of the bits that were added, in order. All NaNs are one: their sign and payload depend on
/// the order in which a compiler hands operands to an instruction, and mean nothing.
class Digest {
public:
    void Add(std::uint64_t bits) {
        mValue = (mValue ^ bits) * 0x9E3779B97F4A7C15U;
        mValue ^= mValue >> 32U;
    }
    void Add(std::int64_t n) { Add(static_cast<std::uint64_t>(n)); }
    void Add(std::int32_t n) { Add(std::int64_t{n}); }
    void Add(bool yes) { Add(std::int64_t{yes}); }
    void Add(double x);
    void Add(Pt const& p) {
        Add(p.h);
        Add(p.v);
    }
    void Add(Box const& r) {
        Add(r[kTopLeft]);
        Add(r[kBottomRight]);
    }
    void Add(std::vector<Pt> const& points);
    /// The vertices, as a list of points.
    void Add(TPolygon<double> const& polygon);

    std::uint64_t Value() const { return mValue; }
    bool operator==(Digest const& other) const { return mValue == other.mValue; }

private:
    std::uint64_t mValue = 0x243F6A8885A308D3U;
};

/// One part of the suite while it runs.
class Part {
public:
    /// \param thinning only one of so many inputs is made
    /// \param compares whether inputs go through the plain forms
    Part(char const* name, int thinning, bool compares);

    Random random;

    /// How many inputs to make, of `full` in the full suite.
    int Count(int full) const { return full / mThinning; }

    /// Takes the digest of the library's results for one input.
    void Take(Digest const& library) {
        mDigest.Add(library.Value());
        ++mInputs;
    }
    /// The same, and now and then compares it with the plain form, whose digest `plain` returns.
    template <class Plain> void Take(Digest const& library, Plain const& plain, int every = 4) {
        if (mCompares && mInputs % every == 0) {
            ++mCompared;
            if (!(library == plain())) {
                Differs();
            }
        }
        Take(library);
    }

    std::uint64_t Value() const { return mDigest.Value(); }
    long Inputs() const { return mInputs; }
    long Compared() const { return mCompared; }
    long Differences() const { return mDifferences; }

private:
    void Differs();

    char const* mName;
    int mThinning;
    bool mCompares;
    Digest mDigest;
    long mInputs = 0;
    long mCompared = 0;
    long mDifferences = 0;
};

/// A curve, with a tolerance and a depth that suit its kind.
struct CurveInput {
    CBezier curve;
    double tolerance; ///< a flatness that suits it, or does not
    int depth;        ///< a depth at which it does not take long
};

/// Returns a curve of any size and of a random kind:
///   - as drawn, or nearly as flat as the tolerance
///   - S-shaped, or with loops or cusps
///   - with an upright or level chord, or with coinciding points
///   - of any bits
CurveInput RandomCurve(Random& random);
/// A curve as drawings have it, flattened soon.
CurveInput DrawnCurve(Random& random);
/// A coordinate of a point to be searched or tested: mostly about the bounds, now and then wild.
Pt PointAbout(Random& random, Box const& bounds);
/// A fraction: mostly in [0, 1], now and then outside, at the edges or wild.
double Fraction(Random& random);

/// True when several threads run parts at the same time. The parts then leave the settings of
/// the process alone, and do not look at the counters.
extern bool gShared;

/// Sets the settings and counters of the cubic to the same in the library and the plain form.
void SetUp(Random& random, double maxError, int depth);
/// Adds the library's counters and its flatness setting.
void AddState(Digest& digest);
/// The same of the plain form.
void AddPlainState(Digest& digest);

/// What a part's results come from.
enum class Group {
    kArithmetic, ///< the four operations and the square root: the same bits on every machine
    kFunctions,  ///< sines and the like, too: the same bits with the same C library
};

/// A part's name, the function that runs it, and its group.
struct Entry {
    char const* name;
    void (*run)(Part&);
    Group group = Group::kArithmetic;
};

std::vector<Entry> CurveParts();
std::vector<Entry> PathParts();
std::vector<Entry> PolygonParts();

} // namespace identity

#endif
