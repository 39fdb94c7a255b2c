// SPDX-License-Identifier: MIT

#include "RegionArea.h"

#include "Box_p.h"
#include "ContourWalk_p.h"
#include "Moments.h"
#include "PointAlgebra.h"
#include "PolygonOperations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>
#include <vector>

namespace trammel {

namespace {

typedef TPoint<double> Pt;
typedef trammel_detail::Box<double> Box;

/// Halving a piece ends at so many pieces.
constexpr std::size_t kMostPieces = std::size_t{1} << 17;
constexpr std::size_t kMostPiecesOfCurve = 8;
/// Each round halves some pieces. Hulls lose at least half of their area each time, as a rule seven
/// eighths, so this is beyond all digits.
constexpr int kMostRounds = 64;
/// Hulls that overlap by less count as apart: it is beyond the rounding of the test. The extent of
/// the outline is 1 to 2.
constexpr double kTouch = 0x1p-48;
/// Halving ends when the bound is so small beside L D.
constexpr double kFinest = 0x1p-44;
/// The bound on all rounding, beside L D.
constexpr double kRounding = 0x1p-42;

/// A line, or a part of a curve.
struct Piece {
    std::array<Pt, 4> p; ///< control points; those of a line are on it
    bool isLine = false;
    bool isConvex = false; ///< the control points make a convex polygon in their order
    bool isApart = false;  ///< no other piece reaches into the hull
    bool isMet = false;    ///< another piece may reach into the hull
    double area = 0.0;     ///< of the hull, or more

    static Piece Line(Pt const& a, Pt const& b) {
        Piece piece;
        piece.p = {{a, a, b, b}};
        piece.isLine = true;
        return piece;
    }
    static Piece Curve(Pt const& p0, Pt const& p1, Pt const& p2, Pt const& p3) {
        Piece piece;
        piece.p = {{p0, p1, p2, p3}};
        Pt const a = p1 - p0;
        Pt const b = p2 - p0;
        Pt const c = p3 - p0;
        double const ab = Cross(a, b);
        double const ac = Cross(a, c);
        double const bc = Cross(b, c);
        double const last = Cross(b - a, c - a);
        bool const left = ab >= 0 && ac >= 0 && bc >= 0 && last >= 0;
        bool const right = ab <= 0 && ac <= 0 && bc <= 0 && last <= 0;
        piece.isConvex = left || right;
        // The hull is a part of the four triangles together. A convex one is two of them.
        double const two = std::abs(ab) + std::abs(bc);
        piece.area = (piece.isConvex ? two : two + std::abs(ac) + std::abs(last)) / 2.0;
        return piece;
    }
    Box Bounds() const {
        Box box;
        for (Pt const& q : p) {
            box.Include(q.h, q.v);
        }
        return box;
    }
    double Length() const {
        double length = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            Pt const d = p[i + 1] - p[i];
            length += std::sqrt(d.h * d.h + d.v * d.v);
        }
        return length;
    }
    /// Appends both halves. Those of the reversed piece are the same reversed, bit for bit.
    void AppendHalves(std::vector<Piece>& pieces) const {
        auto const middle = [](Pt const& a, Pt const& b) { return (a + b) * 0.5; };
        Pt const a = middle(p[0], p[1]);
        Pt const b = middle(p[1], p[2]);
        Pt const c = middle(p[2], p[3]);
        Pt const d = middle(a, b);
        Pt const e = middle(b, c);
        Pt const m = middle(d, e);
        pieces.push_back(Curve(p[0], a, d, m));
        pieces.push_back(Curve(m, e, c, p[3]));
    }
    /// Appends the vertices of chords that take the piece's place, without the last one.
    void AppendChords(std::vector<Pt>& ring) const;
};

void Piece::AppendChords(std::vector<Pt>& ring) const {
    ring.push_back(p[0]);
    if (isLine || !isConvex) {
        return;
    }
    // The chords lead along the control polygon's first and last side, by the same part s of each.
    // They bound half of s outer + s² inner, and the curve bounds half of twice.
    Pt const a = p[1] - p[0];
    Pt const b = p[2] - p[0];
    Pt const c = p[3] - p[0];
    double const outer = std::abs(Cross(a, c) + Cross(b, c));
    double const inner = std::abs(Cross(a, b)) - std::abs(Cross(a, c));
    double const twice =
        (3.0 * std::abs(Cross(a, b)) + 3.0 * std::abs(Cross(a, c)) + 6.0 * std::abs(Cross(b, c))) /
        10.0;
    double const root = std::sqrt(std::max(outer * outer + 4.0 * inner * twice, 0.0));
    if (!(outer + root > 0.0)) {
        return; // the piece is straight
    }
    double const s = std::min(2.0 * twice / (outer + root), 1.0);
    ring.push_back(p[0] + a * s);
    ring.push_back(p[3] + (p[2] - p[3]) * s);
}

/// True when one side of a piece's control polygon has the piece on one side of it, and another
/// piece on the other.
bool SeparatesFrom(Piece const& piece, Piece const& other) {
    std::size_t const sides = piece.isLine ? 1 : 4;
    for (std::size_t i = 0; i < sides; ++i) {
        Pt const from = piece.isLine ? piece.p[0] : piece.p[i];
        Pt const side = (piece.isLine ? piece.p[3] : piece.p[(i + 1) % 4]) - from;
        double low = 0.0;
        double high = 0.0;
        double otherLow = std::numeric_limits<double>::infinity();
        double otherHigh = -otherLow;
        for (std::size_t k = 0; k < 4; ++k) {
            double const at = Cross(side, piece.p[k] - from);
            low = std::min(low, at);
            high = std::max(high, at);
            double const otherAt = Cross(side, other.p[k] - from);
            otherLow = std::min(otherLow, otherAt);
            otherHigh = std::max(otherHigh, otherAt);
        }
        double const touch = kTouch * (std::abs(side.h) + std::abs(side.v));
        if (touch > 0.0 && (otherLow >= high - touch || otherHigh <= low + touch)) {
            return true;
        }
    }
    return false;
}

bool AreEqual(Piece const& a, Piece const& b) {
    bool const same = std::equal(a.p.begin(), a.p.end(), b.p.begin());
    return same || std::equal(a.p.begin(), a.p.end(), b.p.rbegin());
}

/// Finds the pieces into whose hulls others reach, by a binary tree of boxes over the pieces in
/// their order.
class Meetings {
public:
    explicit Meetings(std::vector<Piece>& pieces) : mPieces(pieces) {
        while (mFirstLeaf < pieces.size()) {
            mFirstLeaf *= 2;
        }
        mNodes.resize(2 * mFirstLeaf);
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            Piece& piece = pieces[i];
            piece.isMet = false;
            mNodes[mFirstLeaf + i] = {piece.Bounds(), piece.isApart || piece.isLine, piece.isLine};
        }
        for (std::size_t i = mFirstLeaf; i-- > 1;) {
            mNodes[i].box.Include(mNodes[2 * i].box);
            mNodes[i].box.Include(mNodes[2 * i + 1].box);
            mNodes[i].isSettled = mNodes[2 * i].isSettled && mNodes[2 * i + 1].isSettled;
            mNodes[i].isMet = mNodes[2 * i].isMet && mNodes[2 * i + 1].isMet;
        }
    }

    /// Sets isMet of all pieces that are met, and isApart of all others.
    void Find() {
        mOpen.emplace_back(1, 1);
        while (!mOpen.empty()) {
            auto const [i, j] = mOpen.back();
            mOpen.pop_back();
            if (!Matters(i, j)) {
                continue;
            }
            if (i >= mFirstLeaf) {
                if (i != j) {
                    Compare(i, j);
                }
                continue;
            }
            mOpen.emplace_back(2 * i, 2 * j);
            mOpen.emplace_back(2 * i + 1, 2 * j + 1);
            mOpen.emplace_back(2 * i, 2 * j + 1);
            if (i != j) {
                mOpen.emplace_back(2 * i + 1, 2 * j);
            }
        }
        for (Piece& piece : mPieces) {
            piece.isMet = !piece.isLine && (piece.isMet || !piece.isConvex);
            piece.isApart = !piece.isMet;
        }
    }

private:
    struct Node {
        Box box;
        bool isSettled = true; ///< all pieces are lines, or known to be apart
        bool isMet = true;     ///< all pieces are known to be met, or lines
    };

    /// True when two nodes may have pieces that meet, and that tells something new. Lines are never
    /// met, and a piece that is apart stays so, because other hulls only shrink.
    bool Matters(std::size_t i, std::size_t j) const {
        Node const& a = mNodes[i];
        Node const& b = mNodes[j];
        return !(a.isSettled && b.isSettled) && !(a.isMet && b.isMet) &&
               !(a.isSettled && b.isMet) && !(a.isMet && b.isSettled) && a.box.Meets(b.box);
    }
    void Compare(std::size_t i, std::size_t j) {
        Piece const& a = mPieces[i - mFirstLeaf];
        Piece const& b = mPieces[j - mFirstLeaf];
        // Where equal pieces lie on each other, so do their chords.
        if (!SeparatesFrom(a, b) && !SeparatesFrom(b, a) && !AreEqual(a, b)) {
            SetMet(i);
            SetMet(j);
        }
    }
    void SetMet(std::size_t leaf) {
        mPieces[leaf - mFirstLeaf].isMet = true;
        mNodes[leaf].isMet = true;
        for (std::size_t i = leaf / 2; i > 0; i /= 2) {
            if (!mNodes[2 * i].isMet || !mNodes[2 * i + 1].isMet) {
                break;
            }
            mNodes[i].isMet = true;
        }
    }

    std::vector<Piece>& mPieces;
    std::size_t mFirstLeaf = 1;
    std::vector<Node> mNodes; // the children of node i are 2 i and 2 i + 1
    std::vector<std::pair<std::size_t, std::size_t>> mOpen;
};

/// The contours of an outline as pieces.
class Outline {
public:
    // What WalkContours() calls. Points are as in the path, and curves are whole.

    void Begin(void const* p) {
        Close();
        mStart = mCurrent = trammel_detail::PointAt(p);
    }
    void LineTo(void const* p) {
        Pt const to = trammel_detail::PointAt(p);
        mPieces.push_back(Piece::Line(mCurrent, to));
        mCurrent = to;
    }
    void CurveTo(void const* c1, void const* c2, void const* e) {
        Piece piece;
        piece.p = {{mCurrent, trammel_detail::PointAt(c1), trammel_detail::PointAt(c2),
                    trammel_detail::PointAt(e)}};
        mPieces.push_back(piece);
        mCurrent = piece.p[3];
    }
    void Close() {
        std::size_t const begin = mEnds.empty() ? 0 : mEnds.back();
        if (mPieces.size() > begin) {
            mPieces.push_back(Piece::Line(mCurrent, mStart));
            bool const finite =
                std::all_of(mPieces.begin() + static_cast<std::ptrdiff_t>(begin), mPieces.end(),
                            [](Piece const& piece) {
                                return std::all_of(piece.p.begin(), piece.p.end(), [](Pt const& q) {
                                    return std::isfinite(q.h) && std::isfinite(q.v);
                                });
                            });
            if (finite) {
                mEnds.push_back(mPieces.size());
            } else {
                mPieces.resize(begin);
            }
        }
        mStart = mCurrent;
    }

    bool IsEmpty() const { return mPieces.empty(); }
    /// Moves and scales the outline so that its extent is 1 to 2, and divides curves until most
    /// pieces are convex. Returns the exponent of the power of two that undoes the scaling.
    int Normalize();
    /// Returns the length of all control polygons, and the greatest extent.
    double Length() const { return mLength; }
    double Extent() const { return mExtent; }
    /// Halves pieces until the hulls that others reach into have no more area than `limit`, or
    /// there are too many pieces. Returns that area.
    double Divide(double limit);
    /// Returns the outline with chords in place of the pieces. Throws std::bad_alloc.
    std::vector<TPolygon<double>> Chords() const;

private:
    template <class Append> void Replace(Append&& append);

    std::vector<Piece> mPieces;
    std::vector<std::size_t> mEnds; // by contour
    Pt mStart;
    Pt mCurrent;
    std::size_t mMostPieces = kMostPieces;
    double mLength = 0.0;
    double mExtent = 0.0;
};

/// Calls append(piece, pieces) for each piece, which appends what takes its place.
template <class Append> void Outline::Replace(Append&& append) {
    std::vector<Piece> pieces;
    pieces.reserve(mPieces.size() * 2);
    std::size_t begin = 0;
    for (std::size_t& end : mEnds) {
        for (std::size_t i = begin; i < end; ++i) {
            append(mPieces[i], pieces);
        }
        begin = std::exchange(end, pieces.size());
    }
    mPieces = std::move(pieces);
}

int Outline::Normalize() {
    Box box;
    std::size_t curves = 0;
    for (Piece const& piece : mPieces) {
        box.Include(piece.Bounds());
        curves += piece.isLine ? 0 : 1;
    }
    mMostPieces = std::max(mMostPieces, curves * kMostPiecesOfCurve);
    // Halves do not overflow. The power of two and its inverse are normal numbers.
    double const half = std::max(box.highX / 2 - box.lowX / 2, box.highY / 2 - box.lowY / 2);
    constexpr int kMostExponent = 1000;
    int const exponent =
        half > 0.0 ? std::clamp(std::ilogb(half) + 1, -kMostExponent, kMostExponent) : 0;
    double const before = std::scalbn(1.0, exponent > 0 ? -exponent : 0);
    double const after = std::scalbn(1.0, exponent > 0 ? 0 : -exponent);
    Pt const reference(box.lowX * before, box.lowY * before);
    mExtent = 2 * half * before * after;
    int const kMostHalvings = 4;
    std::vector<Piece> halves;
    std::vector<Piece> next;
    Replace([&](Piece const& raw, std::vector<Piece>& pieces) {
        std::array<Pt, 4> p;
        for (std::size_t i = 0; i < 4; ++i) {
            p[i] = Pt((raw.p[i].h * before - reference.h) * after,
                      (raw.p[i].v * before - reference.v) * after);
        }
        if (raw.isLine) {
            pieces.push_back(Piece::Line(p[0], p[3]));
            mLength += pieces.back().Length();
            return;
        }
        halves.assign(1, Piece::Curve(p[0], p[1], p[2], p[3]));
        mLength += halves[0].Length();
        for (int i = 0; i < kMostHalvings; ++i) {
            next.clear();
            for (Piece const& piece : halves) {
                if (piece.isConvex) {
                    next.push_back(piece);
                } else {
                    piece.AppendHalves(next);
                }
            }
            halves.swap(next);
        }
        pieces.insert(pieces.end(), halves.begin(), halves.end());
    });
    return exponent;
}

double Outline::Divide(double limit) {
    for (int round = 0;; ++round) {
        Meetings(mPieces).Find();
        double sum = 0.0;
        std::size_t count = 0;
        for (Piece const& piece : mPieces) {
            sum += piece.isMet ? piece.area : 0.0;
            count += piece.isMet ? 1 : 0;
        }
        if (sum <= limit || round == kMostRounds) {
            return sum;
        }
        // The pieces that stay have half of the limit together.
        double const most = limit / (2.0 * static_cast<double>(count));
        auto const isLarge = [most](Piece const& piece) {
            return piece.isMet && piece.area > most;
        };
        if (static_cast<std::size_t>(std::count_if(mPieces.begin(), mPieces.end(), isLarge)) +
                mPieces.size() >
            mMostPieces) {
            return sum;
        }
        Replace([&](Piece const& piece, std::vector<Piece>& pieces) {
            if (isLarge(piece)) {
                piece.AppendHalves(pieces);
            } else {
                pieces.push_back(piece);
            }
        });
    }
}

std::vector<TPolygon<double>> Outline::Chords() const {
    std::vector<TPolygon<double>> rings;
    rings.reserve(mEnds.size());
    std::vector<Pt> ring;
    std::size_t i = 0;
    for (std::size_t const end : mEnds) {
        ring.clear();
        for (; i < end; ++i) {
            mPieces[i].AppendChords(ring);
        }
        rings.emplace_back(ring);
        if (rings.back().LastIndex() + 1 != static_cast<long>(ring.size())) {
            throw std::bad_alloc(); // a polygon does not say that its memory is short
        }
    }
    return rings;
}

} // namespace

AreaWithin RegionArea(CPath const& path, FillRule rule, double accuracy) {
    Outline outline;
    trammel_detail::WalkContours(path, outline);
    if (outline.IsEmpty()) {
        return {};
    }
    int const exponent = outline.Normalize();
    double const size = outline.Length() * outline.Extent();
    double const finest = kFinest * size;
    double const asked = std::scalbn(accuracy, -2 * exponent);
    double const error = outline.Divide(asked > finest ? asked : finest) + kRounding * size;
    double area = 0.0;
    for (TPolygon<double> const& ring : RemoveOverlap(outline.Chords(), rule)) {
        area += SignedArea(ring);
    }
    return {std::scalbn(std::max(area, 0.0), 2 * exponent), std::scalbn(error, 2 * exponent)};
}

} // namespace trammel
