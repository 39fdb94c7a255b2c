// SPDX-License-Identifier: MIT

#include "SvgPath.h"

#include "ArcCurves_p.h"
#include "CurveForms_p.h"
#include "PointMath_p.h"
#include "SvgPathError_p.h"
#include "SvgPathGrammar_p.h"
#include "Text_p.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::ArcCurves;
using trammel_detail::Described;
using trammel_detail::IsDigit;
using trammel_detail::IsFinite;
using trammel_detail::IsLetter;
using trammel_detail::IsSpace;
using trammel_detail::Quoted;
using trammel_detail::RecordedCurves;
using trammel_detail::Reflected;
using trammel_detail::TwoThirds;

typedef TPoint<double> Pt;

/// The curves of a full turn in eighths.
constexpr double kMostEighths = 8.0;

/// Returns the least number of curves of at most an eighth turn. Rounding must not make three
/// curves of a quarter turn.
std::size_t Eighths(double sweep) {
    return static_cast<std::size_t>(
        std::clamp(std::ceil(sweep / (pi / 4.0) - 1e-9), 1.0, kMostEighths));
}

/// Returns the number of arguments of a command in capitals, -1 for any other letter.
int ArgumentCount(char command) {
    switch (command) {
    case 'Z':
        return 0;
    case 'H':
    case 'V':
        return 1;
    case 'M':
    case 'L':
    case 'T':
        return 2;
    case 'S':
    case 'Q':
        return 4;
    case 'C':
        return 6;
    case 'A':
        return 7;
    default:
        return -1;
    }
}

/// Reads one text into a path, from left to right.
class Reader {
public:
    Reader(std::string_view text, SvgPathOptions const& options) : mText(text), mOptions(options) {}

    SvgPathResult Read() {
        SkipSpace();
        if (!AtEnd() && mText[mPos] != 'M' && mText[mPos] != 'm') {
            Fail("a move (M or m)");
            return std::move(mResult);
        }
        while (!AtEnd() && ReadCommand()) {
        }
        AddDot();
        return std::move(mResult);
    }

private:
    // Text

    bool AtEnd() const { return mPos >= mText.size(); }
    bool At(char c) const { return !AtEnd() && mText[mPos] == c; }
    bool AtDigit() const { return !AtEnd() && IsDigit(mText[mPos]); }

    void SkipSpace() {
        while (!AtEnd() && IsSpace(mText[mPos])) {
            ++mPos;
        }
    }

    /// Skips white space with at most one comma in it; true when there was a comma.
    bool SkipSeparator() {
        SkipSpace();
        if (!At(',')) {
            return false;
        }
        ++mPos;
        SkipSpace();
        return true;
    }

    bool SkipDigits() {
        std::size_t const begin = mPos;
        while (AtDigit()) {
            ++mPos;
        }
        return mPos > begin;
    }

    bool Fail(std::size_t position, std::string found, char const* expected) {
        mResult.error = SvgPathError{position, std::move(found), expected};
        return false;
    }
    bool Fail(char const* expected) { return Fail(mPos, Described(mText.substr(mPos)), expected); }
    /// Fails at the piece from `begin` up to the place of reading.
    bool FailRange(std::size_t begin, char const* expected) {
        return Fail(begin, Quoted(mText.substr(begin, mPos - begin)), expected);
    }

    bool ReadNumber(double& number) {
        std::size_t const begin = mPos;
        bool const sign = At('-') || At('+');
        if (sign) {
            ++mPos;
        }
        std::size_t const unsignedBegin = mPos;
        bool digits = SkipDigits();
        if (At('.')) {
            ++mPos;
            digits = SkipDigits() || digits;
        }
        if (!digits) {
            return Fail(mPos > begin ? "a digit" : "a number");
        }
        if (At('e') || At('E')) {
            std::size_t const mantissaEnd = mPos;
            ++mPos;
            if (At('-') || At('+')) {
                ++mPos;
            }
            if (!SkipDigits()) {
                mPos = mantissaEnd; // no exponent; the letter is then out of place
            }
        }
        std::string_view const token = mText.substr(unsignedBegin, mPos - unsignedBegin);
        number = trammel_detail::ReadNumeral(token);
        if (!std::isfinite(number)) {
            return FailRange(begin, "a number in the range of double");
        }
        if (mText[begin] == '-') {
            number = -number;
        }
        return true;
    }

    bool ReadFlag(double& flag) {
        if (!At('0') && !At('1')) {
            return Fail("an arc flag (0 or 1)");
        }
        flag = mText[mPos] - '0';
        ++mPos;
        return true;
    }

    /// Reads a command letter with all its groups of arguments.
    bool ReadCommand() {
        char const letter = mText[mPos];
        bool const relative = letter >= 'a';
        char command = static_cast<char>(relative ? letter - 'a' + 'A' : letter);
        int const count = IsLetter(letter) ? ArgumentCount(command) : -1;
        if (count < 0) {
            return Fail(mMayRepeat ? "a command or a number" : "a command");
        }
        ++mPos;
        SkipSpace();
        mMayRepeat = count > 0;
        if (count == 0) {
            Close();
            return true;
        }
        bool more;
        do {
            if (!ReadGroup(command, static_cast<std::size_t>(count), relative)) {
                return false;
            }
            if (command == 'M') {
                command = 'L';
            }
            more = SkipSeparator() || At('-') || At('+') || At('.') || AtDigit();
        } while (more);
        return true;
    }

    /// Reads one group of arguments, and draws the segment that it makes.
    bool ReadGroup(char command, std::size_t count, bool relative) {
        std::size_t const begin = mPos;
        std::array<double, 7> a{};
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0) {
                SkipSeparator();
            }
            bool const flag = command == 'A' && (i == 3 || i == 4);
            if (!(flag ? ReadFlag(a[i]) : ReadNumber(a[i]))) {
                return false;
            }
        }
        // Nothing is added to absolute coordinates: -0 + 0 is not -0.
        auto const h = [&](std::size_t i) { return relative ? mCurrent.h + a[i] : a[i]; };
        auto const v = [&](std::size_t i) { return relative ? mCurrent.v + a[i] : a[i]; };
        auto const point = [&](std::size_t i) { return Pt(h(i), v(i + 1)); };
        bool drawn = false;
        switch (command) {
        case 'M':
            drawn = Move(point(0));
            break;
        case 'L':
            drawn = Line(point(0));
            break;
        case 'H':
            drawn = Line(Pt(h(0), mCurrent.v));
            break;
        case 'V':
            drawn = Line(Pt(mCurrent.h, v(0)));
            break;
        case 'C':
            drawn = Cubic(point(0), point(2), point(4));
            break;
        case 'S':
            drawn = Cubic(Smooth(kCubic), point(0), point(2));
            break;
        case 'Q':
            drawn = Quadratic(point(0), point(2));
            break;
        case 'T':
            drawn = Quadratic(Smooth(kQuadratic), point(0));
            break;
        default:
            drawn = Arc(a, point(5));
            break;
        }
        return drawn || FailRange(begin, "coordinates in the range of double");
    }

    // Segments: each function is false, and draws nothing, when a point is out of range

    bool Move(Pt const& p) {
        if (!IsFinite(p)) {
            return false;
        }
        AddDot();
        mResult.path.MoveTo(p);
        mStart = p;
        Arrive(p);
        return true;
    }

    bool Line(Pt const& p) {
        if (!IsFinite(p)) {
            return false;
        }
        if (p != mCurrent) {
            Open();
            mResult.path.LineTo(p);
        } else {
            DrawNothing();
        }
        Arrive(p);
        return true;
    }

    bool Cubic(Pt const& c1, Pt const& c2, Pt const& e) {
        if (!IsFinite(c1) || !IsFinite(c2) || !IsFinite(e)) {
            return false;
        }
        AddCurve(c1, c2, e);
        Arrive(e, kCubic, c2);
        return true;
    }

    bool Quadratic(Pt const& q, Pt const& e) {
        if (!IsFinite(q) || !IsFinite(e)) {
            return false;
        }
        AddCurve(TwoThirds(mCurrent, q), TwoThirds(e, q), e);
        Arrive(e, kQuadratic, q);
        return true;
    }

    bool Arc(std::array<double, 7> const& a, Pt const& e) {
        double const rx = std::abs(a[0]);
        double const ry = std::abs(a[1]);
        if (rx == 0.0 || ry == 0.0 || e == mCurrent) {
            return Line(e);
        }
        if (!IsFinite(e)) {
            return false;
        }
        // Between -180 and 180 exactly, so that quarter turns are exact; -180 is the same as 180.
        double const rest = std::remainder(a[2], 360.0);
        double const turn = std::abs(rest) == 180.0 ? 180.0 : rest;
        ArcCurves arc =
            ArcCurves::BetweenPoints(mCurrent, e, rx, ry, DegToRad(turn), a[3] != 0.0, a[4] != 0.0);
        std::size_t const count =
            mOptions.arcTolerance ? trammel_detail::ArcCurveCount(arc.Sweep(), arc.GreaterRadius(),
                                                                  *mOptions.arcTolerance)
                                  : Eighths(arc.Sweep());
        std::array<Pt, 3> curve;
        for (arc.Cut(count); arc.Next(curve);) {
            if (!std::all_of(curve.begin(), curve.end(), IsFinite)) {
                return false;
            }
        }
        for (arc.Cut(count); arc.Next(curve);) {
            AddCurve(curve[0], curve[1], curve[2]);
            Arrive(curve[2]);
        }
        ++mResult.arcs;
        return true;
    }

    void Close() {
        AddDot();
        mResult.path.ClosePath();
        Arrive(mStart);
    }

    /// Adds a curve from the current point. It cuts a curve in two that the path would drop as one.
    void AddCurve(Pt const& c1, Pt const& c2, Pt const& e) {
        RecordedCurves const curves(mCurrent, c1, c2, e);
        if (curves.count == 0) {
            DrawNothing();
        }
        for (std::size_t i = 0; i < curves.count; ++i) {
            Open();
            mResult.path.CurveTo(curves.points[i][0], curves.points[i][1], curves.points[i][2]);
        }
    }

    /// Begins a subpath at the start of the last one where that is closed.
    void Open() {
        mDot = false;
        if (!mResult.path.mOpen) {
            mResult.path.MoveTo(mStart);
        }
    }

    /// Notes a segment without length. It makes a dot where nothing else of the subpath is drawn.
    void DrawNothing() {
        CPath const& path = mResult.path;
        mDot = mOptions.keepDots && (!path.mOpen || path.mCtls.back() == kPathMove);
    }
    /// Adds the dot of a subpath that ends. The path's own operations would drop it.
    void AddDot() {
        if (mDot) {
            Open();
            mResult.path.AddCtl(kPathLine).AddPt(mStart);
        }
    }

    // The start of the next command: the grammar's, which may differ from the path's

    enum Kind : std::uint8_t { kOther, kCubic, kQuadratic };

    void Arrive(Pt const& p, Kind kind = kOther, Pt const& control = Pt()) {
        mCurrent = p;
        mKind = kind;
        mControl = control;
    }

    /// Returns the first control point of a smooth curve.
    Pt Smooth(Kind kind) const { return mKind == kind ? Reflected(mControl, mCurrent) : mCurrent; }

    std::string_view mText;
    SvgPathOptions mOptions;
    std::size_t mPos = 0;
    bool mMayRepeat = false; ///< the command read last takes arguments
    bool mDot = false;       ///< the subpath has segments, but none of any length, and keeps that
    Pt mStart;               ///< the start of the subpath
    Pt mCurrent;
    Kind mKind = kOther; ///< the kind of the last segment
    Pt mControl;         ///< the last control point of that segment, where it is a curve
    SvgPathResult mResult;
};

} // namespace

std::string SvgPathError::Message() const {
    return "at byte " + std::to_string(position) + ": expected " + expected + ", found " + found;
}

SvgPathResult ReadSvgPath(std::string_view text) { return ReadSvgPath(text, SvgPathOptions()); }

SvgPathResult ReadSvgPath(std::string_view text, double arcTolerance) {
    SvgPathOptions options;
    options.arcTolerance = arcTolerance;
    return ReadSvgPath(text, options);
}

SvgPathResult ReadSvgPath(std::string_view text, SvgPathOptions const& options) {
    return Reader(text, options).Read();
}

} // namespace trammel
