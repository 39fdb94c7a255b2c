// SPDX-License-Identifier: MIT

// A judge of strokes: which points the sweep, the joins and the caps cover, by solving for the
// normals through a point in long double. It knows nothing of contours, and of the library only
// the values.

#ifndef TRAMMEL_STROKEJUDGE_H
#define TRAMMEL_STROKEJUDGE_H

#include "CPath.h"
#include "Finite.h"
#include "PathSegments.h"
#include "StrokeStyle.h"
#include "TPoint.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace trammel_test {

/// The sides of a line on which the pen paints; left is where a turn by a positive angle leads.
enum class PenSides { kBoth, kLeft, kRight };

/// The shape that a pen covers along a path, which is drawn solid.
class StrokeJudge {
public:
    typedef long double Wide;
    typedef TPoint<double> Pt;

    StrokeJudge(CPath const& path, trammel::StrokeStyle const& style,
                PenSides sides = PenSides::kBoth)
        : mStyle(style), mSides(sides), mRadius(0.5L * style.width), mLimit(1) {
        if (style.miterLimit >= 1.0) {
            mLimit = style.miterLimit;
        }
        for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
            Add(subpath);
        }
    }

    bool Covers(Pt const& p) const { return Covers(Vec{p.h, p.v}); }
    /// Tells whether the border runs within a distance of the point, as far as points around it
    /// tell.
    bool IsAtBorder(Pt const& p, double distance) const {
        bool const here = Covers(p);
        constexpr int kAngles = 48;
        for (int ring = 1; ring <= 6; ++ring) {
            for (int i = 0; i < kAngles; ++i) {
                Wide const angle = 6.283185307179586L * i / kAngles;
                Wide const off = 1.02L * distance * ring / 6;
                if (Covers(Vec{p.h + std::cos(angle) * off, p.v + std::sin(angle) * off}) != here) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    struct Vec {
        Wide h;
        Wide v;

        Vec operator+(Vec const& o) const { return {h + o.h, v + o.v}; }
        Vec operator-(Vec const& o) const { return {h - o.h, v - o.v}; }
        Vec operator*(Wide x) const { return {h * x, v * x}; }
        Wide Dot(Vec const& o) const { return h * o.h + v * o.v; }
        Wide Cross(Vec const& o) const { return h * o.v - v * o.h; }
        Wide Length() const { return std::hypot(h, v); }
        Vec Unit() const { return *this * (1 / Length()); }
        Vec Turned() const { return {-v, h}; }
    };
    typedef std::array<Vec, 4> Curve;
    struct Piece {
        Curve p;
        bool curve;
        Vec from; ///< the direction at the start
        Vec to;   ///< the direction at the end
    };
    /// All points of a disc on one side of a line, or on that of two.
    struct Sector {
        Vec centre;
        Vec a; ///< inside has no negative product with either
        Vec b;
    };

    static Vec Wider(Pt const& p) { return {p.h, p.v}; }

    void Add(trammel::Subpath const& subpath) {
        std::vector<Piece> pieces;
        Pt end = subpath.Start();
        bool any = false;
        for (trammel::PathSegment const& s : subpath) {
            for (Pt const& p : {s.start, s.control1, s.control2, s.end}) {
                if (!IsFinite(p)) {
                    return; // the subpath is absent
                }
            }
            any = true;
            end = s.end;
            Piece piece{{Wider(s.start), Wider(s.control1), Wider(s.control2), Wider(s.end)},
                        s.IsCurve(),
                        {0, 0},
                        {0, 0}};
            // A control point that lies on its end, to within rounding, has no direction.
            Wide extent = 0;
            for (Vec const& x : piece.p) {
                extent = std::fmax(extent, (x - piece.p[0]).Length());
            }
            piece.p[1] =
                (piece.p[1] - piece.p[0]).Length() > extent * 0x1p-50L ? piece.p[1] : piece.p[0];
            piece.p[2] =
                (piece.p[2] - piece.p[3]).Length() > extent * 0x1p-50L ? piece.p[2] : piece.p[3];
            for (std::size_t i = 3; i > 0; --i) {
                Vec const leaves = piece.p[i] - piece.p[0];
                Vec const arrives = piece.p[3] - piece.p[3 - i];
                piece.from = leaves.Length() > 0 ? leaves.Unit() : piece.from;
                piece.to = arrives.Length() > 0 ? arrives.Unit() : piece.to;
            }
            if (piece.from.Length() > 0) {
                pieces.push_back(piece);
            }
        }
        if (pieces.empty()) {
            if (any) {
                AddCap(Wider(subpath.Start()), {1, 0}, mStyle.endCap);
                AddCap(Wider(subpath.Start()), {-1, 0}, mStyle.startCap);
            }
            return;
        }
        mPieces.insert(mPieces.end(), pieces.begin(), pieces.end());
        for (std::size_t i = 1; i < pieces.size(); ++i) {
            AddJoin(pieces[i].p[0], pieces[i - 1].to, pieces[i].from);
        }
        if (subpath.Closed() && end == subpath.Start()) {
            AddJoin(pieces[0].p[0], pieces.back().to, pieces[0].from);
        } else {
            AddCap(pieces.back().p[3], pieces.back().to, mStyle.endCap);
            AddCap(pieces[0].p[0], pieces[0].from * -1, mStyle.startCap);
        }
    }
    void AddCap(Vec const& p, Vec const& ahead, trammel::StrokeCap cap) {
        Vec const side = ahead.Turned() * mRadius;
        if (cap == trammel::StrokeCap::kSquare) {
            Vec const far = ahead * mRadius;
            mPolygons.push_back({p + side, p + side + far, p - side + far, p - side});
        } else if (cap == trammel::StrokeCap::kRound) {
            mSectors.push_back({p, ahead, ahead});
        }
    }
    void AddJoin(Vec const& p, Vec const& before, Vec const& behind) {
        Wide const turn = before.Cross(behind);
        Wide const cosine = std::sqrt(std::fmax(0, 0.5L + 0.5L * before.Dot(behind)));
        Wide const sine = std::sqrt(std::fmax(0, 0.5L - 0.5L * before.Dot(behind)));
        Wide const outer = turn > 0 ? -1 : 1; // the side of the normals on which the corner opens
        bool const isReversal = turn == 0 && before.Dot(behind) < 0; // whichever side it is
        if (!isReversal && !Paints(outer)) {
            return;
        }
        Vec const a = before.Turned() * outer;
        Vec const b = isReversal ? a * -1 : behind.Turned() * outer;
        Vec const pa = p + a * mRadius;
        Vec const pb = p + b * mRadius;
        if (mStyle.join == trammel::StrokeJoin::kRound) {
            // Between the normals is what lies ahead of the one edge, and not yet on the other.
            mSectors.push_back({p, before, behind * -1});
            return;
        }
        bool const meets = mLimit * cosine >= 1;
        bool const miters = mStyle.join == trammel::StrokeJoin::kMiter;
        bool const clips = mStyle.join == trammel::StrokeJoin::kMiterClip;
        if (meets && (miters || clips)) {
            mPolygons.push_back({p, pa, pa + before * (mRadius * sine / cosine), pb});
        } else if (clips && sine > 0) {
            Wide const ahead = mRadius * (mLimit - cosine) / sine;
            mPolygons.push_back({p, pa, pa + before * ahead, pb - behind * ahead, pb});
        } else {
            mPolygons.push_back({p, pa, pb});
        }
    }

    bool Covers(Vec const& q) const {
        for (Sector const& s : mSectors) {
            Vec const d = q - s.centre;
            if (d.Length() <= mRadius && d.Dot(s.a) >= 0 && d.Dot(s.b) >= 0) {
                return true;
            }
        }
        for (std::vector<Vec> const& polygon : mPolygons) { // they are convex
            bool left = true;
            bool right = true;
            for (std::size_t i = 0; i < polygon.size(); ++i) {
                Vec const& a = polygon[i];
                Wide const side = (polygon[(i + 1) % polygon.size()] - a).Cross(q - a);
                left = left && side >= 0;
                right = right && side <= 0;
            }
            if (left != right) {
                return true;
            }
        }
        for (Piece const& piece : mPieces) {
            if (piece.curve ? CurveCovers(piece.p, q) : LineCovers(piece, q)) {
                return true;
            }
        }
        return false;
    }
    /// Tells whether the pen paints on the side that the sign tells.
    bool Paints(Wide left) const {
        return mSides == PenSides::kBoth || (mSides == PenSides::kLeft ? left >= 0 : left <= 0);
    }
    bool LineCovers(Piece const& piece, Vec const& q) const {
        Wide const along = (q - piece.p[0]).Dot(piece.from);
        Wide const left = piece.from.Cross(q - piece.p[0]);
        return along >= 0 && along <= (piece.p[3] - piece.p[0]).Length() &&
               std::fabs(left) <= mRadius && Paints(left);
    }
    /// Tells whether a normal of the curve reaches the point. The product of the derivative with
    /// the way to the point is 0 there: a polynomial of degree 5, here in Bernstein form.
    bool CurveCovers(Curve const& p, Vec const& q) const {
        Vec low = p[0];
        Vec high = p[0];
        for (Vec const& x : p) {
            low = {std::fmin(low.h, x.h), std::fmin(low.v, x.v)};
            high = {std::fmax(high.h, x.h), std::fmax(high.v, x.v)};
        }
        if (q.h < low.h - mRadius || q.h > high.h + mRadius || q.v < low.v - mRadius ||
            q.v > high.v + mRadius) {
            return false;
        }
        constexpr int kBinomial2[] = {1, 2, 1};
        constexpr int kBinomial3[] = {1, 3, 3, 1};
        constexpr int kBinomial5[] = {1, 5, 10, 10, 5, 1};
        std::array<Wide, 6> f = {};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 4; ++j) {
                f[i + j] += (p[i + 1] - p[i]).Dot(p[j] - q) * kBinomial2[i] * kBinomial3[j] /
                            kBinomial5[i + j];
            }
        }
        struct Part {
            std::array<Wide, 6> f;
            Wide from;
            Wide to;
        };
        std::vector<Part> open = {{f, 0, 1}};
        while (!open.empty()) {
            Part part = open.back();
            open.pop_back();
            int changes = 0;
            Wide last = 0;
            for (Wide const x : part.f) {
                changes += (x < 0 && last > 0) || (x > 0 && last < 0) ? 1 : 0;
                last = x != 0 ? x : last;
            }
            if (changes == 0) {
                continue;
            }
            Wide const middle = (part.from + part.to) / 2;
            if (part.to - part.from < 0x1p-50L) {
                Wide const u = 1 - middle;
                Vec const place = p[0] * (u * u * u) + p[1] * (3 * u * u * middle) +
                                  p[2] * (3 * u * middle * middle) +
                                  p[3] * (middle * middle * middle);
                Vec const along = (p[1] - p[0]) * (u * u) + (p[2] - p[1]) * (2 * u * middle) +
                                  (p[3] - p[2]) * (middle * middle);
                if ((place - q).Length() <= mRadius && Paints(along.Cross(q - place))) {
                    return true;
                }
                continue;
            }
            std::array<Wide, 6> left;
            for (std::size_t i = 0; i < 6; ++i) {
                left[i] = part.f[0];
                for (std::size_t j = 0; j + 1 < 6 - i; ++j) {
                    part.f[j] = (part.f[j] + part.f[j + 1]) / 2;
                }
            }
            open.push_back({left, part.from, middle});
            open.push_back({part.f, middle, part.to});
        }
        return false;
    }

    trammel::StrokeStyle mStyle;
    PenSides mSides;
    Wide mRadius;
    Wide mLimit;
    std::vector<Piece> mPieces;
    std::vector<std::vector<Vec>> mPolygons;
    std::vector<Sector> mSectors;
};

} // namespace trammel_test

#endif
