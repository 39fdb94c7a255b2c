// SPDX-License-Identifier: MIT

#include "SvgPath.h"

#include "CurveForms_p.h"
#include "PathWalk_p.h"
#include "PointMath_p.h"
#include "SvgPathGrammar_p.h"
#include "SvgShortestText_p.h"

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

namespace trammel {

namespace {

using trammel_detail::AbsoluteNumeral;
using trammel_detail::ElementCursor;
using trammel_detail::FindRelativeNumeral;
using trammel_detail::IsFinite;
using trammel_detail::PointCount;
using trammel_detail::Reflected;
using trammel_detail::Same;
using trammel_detail::SvgNumeral;
using trammel_detail::SvgNumerals;
using trammel_detail::SvgShortestText;

typedef TPoint<double> Pt;

bool Same(Pt const& a, Pt const& b) { return Same(a.h, b.h) && Same(a.v, b.v); }

/// Writes one path. It keeps the state of a reader of the text beside the state of the path as
/// measured. The two differ where elements have no move before them.
class Writer {
public:
    std::string Write(CPath const& path) {
        for (ElementCursor element(path); element.Next();) {
            char const code = element.Code();
            std::array<Pt, 3> points;
            for (std::size_t i = 0; i < PointCount(code); ++i) {
                points[i] = element.Pt(i);
                if (!IsFinite(points[i])) {
                    throw std::invalid_argument("element " + std::to_string(element.Index()) +
                                                " of the path has a coordinate that is not finite");
                }
            }
            if (code == kPathMove) {
                mMove = points[0];
                mMeasuredStart = mMeasured = points[0];
            } else if (code == kPathLine) {
                WriteLine(points[0]);
                mMeasured = points[0];
            } else if (code == kPathCurve) {
                WriteCurve(points[0], points[1], points[2]);
                mMeasured = points[2];
            } else if (code == kPathClose) {
                WriteClose();
            }
        }
        if (mMove) {
            WriteMove(false);
        }
        return mText.Take();
    }

private:
    template <class... Points> SvgNumerals AbsoluteNumerals(Points const&... points) {
        SvgNumerals out;
        for (Pt const& p : {points...}) {
            out.items[out.count++] = AbsoluteNumeral(p.h, mDecimals);
            out.items[out.count++] = AbsoluteNumeral(p.v, mDecimals);
        }
        return out;
    }
    bool FindRelative(double from, double to, SvgNumeral& numeral) {
        return FindRelativeNumeral(from, to, mRelativeDecimals, numeral);
    }
    template <class... Points> SvgNumerals RelativeNumerals(Points const&... points) {
        SvgNumerals out;
        for (Pt const& p : {points...}) {
            out.valid = out.valid && FindRelative(mCurrent.h, p.h, out.items[out.count++]) &&
                        FindRelative(mCurrent.v, p.v, out.items[out.count++]);
        }
        return out;
    }
    static SvgNumerals OneNumeral(SvgNumerals const& both, std::size_t i) {
        SvgNumerals out;
        out.items[0] = both.items[i];
        out.count = 1;
        return out;
    }

    /// Writes the move that waits.
    /// \param drawn a line or curve of some extent follows. A move to the start of the subpath just
    ///     closed then goes without saying.
    void WriteMove(bool drawn) {
        Pt const p = *mMove;
        mMove.reset();
        mText.BeginElement();
        if (drawn && mAfterClose && Same(p, mStart)) {
            mText.AddSpelling(0, 0, SvgNumerals());
        } else {
            mText.AddSpelling('M', 'L', AbsoluteNumerals(p));
            mText.AddSpelling('m', 'l', RelativeNumerals(p));
        }
        mText.EndElement();
        mStart = p;
        mOpen = true;
        Arrive(p);
    }

    /// Writes the move that waits before a segment to `p`. Where no subpath is open and no move
    /// waits, the move leads to the point that the segment is measured from.
    void Open(Pt const& p) {
        if (!mMove && !mOpen) {
            mMove = mMeasured;
        }
        if (mMove) {
            WriteMove(p != *mMove);
        }
    }

    void WriteLine(Pt const& p) {
        Open(p);
        SvgNumerals const absolute = AbsoluteNumerals(p);
        mText.BeginElement();
        if (Same(p.v, mCurrent.v)) {
            AddSingle('H', 'h', absolute, 0, mCurrent.h, p.h);
        } else if (Same(p.h, mCurrent.h)) {
            AddSingle('V', 'v', absolute, 1, mCurrent.v, p.v);
        }
        mText.AddSpelling('L', 'L', absolute);
        mText.AddSpelling('l', 'l', RelativeNumerals(p));
        mText.EndElement();
        Arrive(p);
    }

    /// Adds the spellings of a line with one coordinate only.
    void AddSingle(char letter, char relativeLetter, SvgNumerals const& absolute, std::size_t i,
                   double from, double to) {
        mText.AddSpelling(letter, letter, OneNumeral(absolute, i));
        SvgNumerals relative;
        relative.valid = FindRelative(from, to, relative.items[0]);
        relative.count = 1;
        mText.AddSpelling(relativeLetter, relativeLetter, relative);
    }

    void WriteCurve(Pt const& c1, Pt const& c2, Pt const& e) {
        Open(e);
        SvgNumerals const absolute = AbsoluteNumerals(c1, c2, e);
        SvgNumerals const relative = RelativeNumerals(c1, c2, e);
        mText.BeginElement();
        if (Same(c1, mAfterCurve ? Reflected(mControl, mCurrent) : mCurrent)) {
            // The first two numbers are left out.
            mText.AddSpelling('S', 'S', absolute, 2);
            if (relative.valid) {
                mText.AddSpelling('s', 's', relative, 2);
            } else {
                mText.AddSpelling('s', 's', RelativeNumerals(c2, e));
            }
        }
        mText.AddSpelling('C', 'C', absolute);
        mText.AddSpelling('c', 'c', relative);
        mText.EndElement();
        Arrive(e);
        mAfterCurve = true;
        mControl = c2;
    }

    void WriteClose() {
        if (mMove) {
            WriteMove(false);
        }
        if (!mOpen) {
            return;
        }
        if (mStart == mMeasuredStart) {
            mText.BeginElement();
            mText.AddSpelling('Z', 0, SvgNumerals());
            mText.EndElement();
            Arrive(mStart);
            mAfterClose = true;
        } else if (mMeasuredStart != mCurrent) {
            WriteLine(mMeasuredStart);
        }
        mOpen = false;
    }

    void Arrive(Pt const& p) {
        mCurrent = p;
        mAfterCurve = false;
        mAfterClose = false;
    }

    SvgShortestText mText;
    int mDecimals = 0; ///< of the numbers written last, where the search for the next ones begins
    int mRelativeDecimals = 0;

    // As the path is measured.
    Pt mMeasured;            ///< the last point drawn
    Pt mMeasuredStart;       ///< the last move
    std::optional<Pt> mMove; ///< a move that is not written yet

    // As the text is read.
    Pt mCurrent;
    Pt mStart;
    bool mOpen = false;
    bool mAfterClose = false; ///< the last thing written is a close
    bool mAfterCurve = false; ///< the last thing written is a curve
    Pt mControl;              ///< the last control point of that curve
};

} // namespace

std::string WriteSvgPath(CPath const& path) { return Writer().Write(path); }

} // namespace trammel
