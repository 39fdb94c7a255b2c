// SPDX-License-Identifier: MIT

// CMatrix3x3: the two-dimensional affine transform.
//
// It holds the six variable entries of a 3x3 matrix whose third column is (0, 0, 1), and a word
// that tells how the matrix was built. Points are row vectors multiplied on the left:
//
//                         | a   b   0 |
//     [x' y' 1] = [x y 1] | c   d   0 |     x' = x·a + y·c + tx     (x = h, y = v)
//                         | tx  ty  1 |     y' = x·b + y·d + ty
//
// Building operations post-concatenate and return the matrix, so a chain applies in call order:
// CMatrix3x3().Translate(1, 0).Rotate(pi / 2) moves first and turns then. Angles are radians; a
// positive one turns from +h toward +v, which is clockwise to the eye, because v grows downward.
//
// Only inversion checks its input, and only inversion throws: NaN and infinities propagate.
// Arguments are read before anything is written, so a matrix may be its own argument. No shared
// state: safe in any thread.

#ifndef TRAMMEL_CMATRIX3X3_H
#define TRAMMEL_CMATRIX3X3_H

#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <type_traits>

/// Bits of CMatrix3x3::mKind.
///
/// Concatenation clears the word, and every elementary operation concatenates. The bits of
/// elementary operations therefore live in temporaries only; the bits of compound operations
/// survive until the next concatenation. The word is informational: nothing decides by it.
enum CMatrixKind : std::int32_t {
    kMatrixTranslate = 0x1,    ///< temporaries of Translate
    kMatrixScale = 0x2,        ///< temporaries of Scale
    kMatrixRotate = 0x4,       ///< temporaries of Rotate
    kMatrixReflect = 0x8,      ///< after Reflect in a line
    kMatrixMap = 0x10,         ///< after Map
    kMatrixShear = 0x20,       ///< temporaries of Shear
    kMatrixRotateAbout = 0x40, ///< after Rotate about a point
    kMatrixScaleAbout = 0x80,  ///< after Scale about a point
    kMatrixReflect3 = 0x100,   ///< after the three-point Reflect
    kMatrixShear3 = 0x200,     ///< after the three-point Shear
    kMatrixInverted = 0x400,   ///< after an inversion
};

/// A two-dimensional affine transform.
class TRAMMEL_API CMatrix3x3 {
public:
    alignas(8) double a; ///< x to x; the alignment gives the record 56 bytes on every machine
    double b;            ///< x to y
    double c;            ///< y to x
    double d;            ///< y to y
    double tx;           ///< translation of x
    double ty;           ///< translation of y
    std::int32_t mKind;  ///< how the matrix was built: CMatrixKind bits

    // Create

    /// Makes the identity, of kind 0.
    constexpr CMatrix3x3() : a(1.0), b(0.0), c(0.0), d(1.0), tx(0.0), ty(0.0), mKind(0) {}
    /// Stores the six entries as given, and the low 32 bits of `kind`.
    constexpr CMatrix3x3(double aIn, double bIn, double cIn, double dIn, double txIn, double tyIn,
                         long kind)
        : a(aIn), b(bIn), c(cIn), d(dIn), tx(txIn), ty(tyIn),
          mKind(static_cast<std::int32_t>(kind)) {}
    /// Sets all fields to zero, then reads them as `operator>>` does. Fields that cannot be read
    /// stay zero, or as the stream's extractors leave them, and the stream's state tells.
    explicit CMatrix3x3(std::istream& in);

    /// Resets to the identity of kind 0.
    constexpr CMatrix3x3& Identity() { return *this = CMatrix3x3(); }

    // Query

    /// Copies out the six entries.
    void Value(double& aOut, double& bOut, double& cOut, double& dOut, double& txOut,
               double& tyOut) const {
        CMatrix3x3 const m(*this);
        aOut = m.a;
        bOut = m.b;
        cOut = m.c;
        dOut = m.d;
        txOut = m.tx;
        tyOut = m.ty;
    }
    /// Returns a·d - b·c: the signed factor by which areas grow.
    constexpr double Determinant() const { return a * d - b * c; }
    /// True when the determinant is exactly 0: then, and only then, inversion throws. False for
    /// NaN.
    constexpr bool IsSingular() const { return Determinant() == 0.0; }
    /// Returns the linear part: the same a, b, c, d without translation, of kind 0.
    constexpr CMatrix3x3 GetDTransform() const { return CMatrix3x3(a, b, c, d, 0.0, 0.0, 0); }

    // Concatenate

    /// Returns the product that applies this matrix first and then `m`; kind 0.
    CMatrix3x3 operator*(CMatrix3x3 const& m) const;
    /// Applies `m` after this matrix: *this = *this · m, kind 0.
    CMatrix3x3& PostCat(CMatrix3x3 const& m);
    /// Does the same as PostCat, in spite of its name: *this = *this · m. Callers depend on it; for
    /// the other order write m = Concat(other, m).
    CMatrix3x3& PreCat(CMatrix3x3 const& m);

    // Build: each operation applies after what the matrix already does

    /// Then moves by (dx, dy).
    CMatrix3x3& Translate(double dx, double dy);
    /// Then moves by (p.h, p.v).
    CMatrix3x3& Translate(TPoint<double> const& p);
    /// Then scales about the origin.
    CMatrix3x3& Scale(double sx, double sy);
    /// Then scales about the origin by (p.h, p.v).
    CMatrix3x3& Scale(TPoint<double> const& p);
    /// Then scales about the origin, both directions alike.
    CMatrix3x3& Scale(double s);
    /// Then rotates about the origin by `angle` radians, exactly at 0, ±pi/2 and pi.
    CMatrix3x3& Rotate(double angle);
    /// Then shears by the angles `ax` and `ay` (radians): x' = x + y·tan(ax), y' = x·tan(ay) + y.
    CMatrix3x3& Shear(double ax, double ay);
    /// Then shears by the angles p.h and p.v.
    CMatrix3x3& Shear(TPoint<double> const& p);

    /// Then rotates about `centre`; sets kMatrixRotateAbout.
    CMatrix3x3& Rotate(double angle, TPoint<double> const& centre);
    /// Then scales about `centre`; sets kMatrixScaleAbout.
    CMatrix3x3& Scale(double sx, double sy, TPoint<double> const& centre);
    /// Then mirrors in the line through `p1` and `p2`; sets kMatrixReflect. Coincident points
    /// mirror in the horizontal line through them.
    CMatrix3x3& Reflect(TPoint<double> const& p1, TPoint<double> const& p2);
    /// Then rotates about `o` by the angle that turns the direction to `from` into the direction to
    /// `to`; sets kMatrixRotateAbout.
    CMatrix3x3& Rotate(TPoint<double> const& o, TPoint<double> const& from,
                       TPoint<double> const& to);
    /// Then scales about `o` so that `from` moves to `to`; sets kMatrixScaleAbout. A direction in
    /// which `from` is closer than 1e-15 to `o` is not scaled.
    CMatrix3x3& Scale(TPoint<double> const& o, TPoint<double> const& from,
                      TPoint<double> const& to);
    /// Then mirrors in the line from `o` to `p2` and turns that line onto the direction from `o` to
    /// `p3`; sets kMatrixReflect3.
    CMatrix3x3& Reflect(TPoint<double> const& o, TPoint<double> const& p2,
                        TPoint<double> const& p3);
    /// Then shears about `o`, along the direction from `p2` to `p3`; sets kMatrixShear3.
    ///
    /// The shear ratios found from the three points go to Shear(TPoint), which takes them for
    /// angles. Zero coordinates on the way divide by zero: infinities or NaN.
    CMatrix3x3& Shear(TPoint<double> const& o, TPoint<double> const& p2, TPoint<double> const& p3);
    /// Then applies the transform that carries rectangle `src` onto rectangle `dst`; sets
    /// kMatrixMap. Widths and heights keep their signs. A direction in which `src` is narrower than
    /// 2^-23 is neither scaled nor moved.
    CMatrix3x3& Map(TRect<double> const& src, TRect<double> const& dst);

    // Apply

    /// Maps a position.
    constexpr void Transform(TPoint<double>& p) const {
        double const x = p.h;
        double const y = p.v;
        p.h = x * a + y * c + tx;
        p.v = x * b + y * d + ty;
    }
    /// Maps a difference of positions (a vector): does the same as Transform without the
    /// translation.
    constexpr void DTransform(TPoint<double>& p) const {
        double const x = p.h;
        double const y = p.v;
        p.h = x * a + y * c;
        p.v = x * b + y * d;
    }

    // Invert: a determinant of exactly 0 throws the `char const*` "marix_singularity"

    /// Returns the inverse; its kind is this one's with kMatrixInverted.
    CMatrix3x3 Inverse() const;
    /// Stores the inverse in `out` and returns true. When it throws, `out` is the identity (even
    /// when `out` is this matrix).
    bool Inverse(CMatrix3x3& out) const;
    /// Replaces the matrix by its inverse, adding kMatrixInverted. When it throws, the matrix is
    /// unchanged.
    CMatrix3x3& Invert();

    // Stream

    /// Writes a, b, c, d, tx, ty and the kind with the stream's own formatting. Nothing stands
    /// between them (the identity is "1001000"), so the text cannot be read back. Returns the
    /// stream.
    std::ostream& operator<<(std::ostream& out) const;
    /// Reads six doubles and the kind with the stream's extractors, in field order. A kind that
    /// does not fit 32 bits sets the failbit. Returns the stream.
    std::istream& operator>>(std::istream& in);
};

/// Returns the product that applies `m1` first and then `m2`; kind 0.
TRAMMEL_API inline CMatrix3x3 Concat(CMatrix3x3 const& m1, CMatrix3x3 const& m2) {
    return CMatrix3x3(m1.a * m2.a + m1.b * m2.c, m1.a * m2.b + m1.b * m2.d,
                      m1.c * m2.a + m1.d * m2.c, m1.c * m2.b + m1.d * m2.d,
                      m1.tx * m2.a + m1.ty * m2.c + m2.tx, m1.tx * m2.b + m1.ty * m2.d + m2.ty, 0);
}

/// Writes `m` as its member `operator<<` does.
TRAMMEL_API std::ostream& operator<<(std::ostream& out, CMatrix3x3 const& m);
/// Reads `m` as its member `operator>>` does.
TRAMMEL_API std::istream& operator>>(std::istream& in, CMatrix3x3& m);

inline CMatrix3x3 CMatrix3x3::operator*(CMatrix3x3 const& m) const { return Concat(*this, m); }
inline CMatrix3x3& CMatrix3x3::PostCat(CMatrix3x3 const& m) { return *this = Concat(*this, m); }
inline CMatrix3x3& CMatrix3x3::PreCat(CMatrix3x3 const& m) { return PostCat(m); }

// The members of points and rectangles that take a matrix.

template <class T> TPoint<T>& TPoint<T>::Transform(CMatrix3x3 const& m) {
    if constexpr (std::is_same_v<T, double>) {
        m.Transform(*this);
    } else {
        TPoint<double> p(*this);
        m.Transform(p);
        *this = p;
    }
    return *this;
}

template <class T> TPoint<T>& TPoint<T>::Map(TRect<T> const& from, TRect<T> const& to) {
    return Transform(CMatrix3x3().Map(from, to));
}

template <class T> TRect<T>& TRect<T>::Map(TRect const& from, TRect const& to) {
    CMatrix3x3 const m = CMatrix3x3().Map(from, to);
    mCorners[0].Transform(m);
    mCorners[1].Transform(m);
    return *this;
}

template <class T> TRect<T>& TRect<T>::Transform(CMatrix3x3 m) {
    TRect<double> bounds;
    for (TPoint<double> corner : {TPoint<double>(TopLeft()), TPoint<double>(TopRight()),
                                  TPoint<double>(BottomLeft()), TPoint<double>(BottomRight())}) {
        bounds |= corner.Transform(m);
    }
    return *this = bounds;
}

extern template TPoint<double>& TPoint<double>::Transform(CMatrix3x3 const&);
extern template TPoint<short>& TPoint<short>::Transform(CMatrix3x3 const&);
extern template TPoint<double>& TPoint<double>::Map(TRect<double> const&, TRect<double> const&);
extern template TPoint<short>& TPoint<short>::Map(TRect<short> const&, TRect<short> const&);
extern template TRect<double>& TRect<double>::Map(TRect<double> const&, TRect<double> const&);
extern template TRect<short>& TRect<short>::Map(TRect<short> const&, TRect<short> const&);
extern template TRect<double>& TRect<double>::Transform(CMatrix3x3);
extern template TRect<short>& TRect<short>::Transform(CMatrix3x3);

static_assert(sizeof(CMatrix3x3) == 56 && offsetof(CMatrix3x3, tx) == 32 &&
              offsetof(CMatrix3x3, mKind) == 48);
static_assert(std::is_trivially_copyable_v<CMatrix3x3>);
static_assert(std::is_standard_layout_v<CMatrix3x3>);

#endif
