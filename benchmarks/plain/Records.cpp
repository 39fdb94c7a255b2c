// SPDX-License-Identifier: MIT

#include "plain/PlainRecords.h"

#include <algorithm>
#include <cmath>

namespace plain {

// Points

Pt& Pt::operator+=(Pt const& p) {
    h += p.h;
    v += p.v;
    return *this;
}

Pt& Pt::operator-=(Pt const& p) {
    h -= p.h;
    v -= p.v;
    return *this;
}

Pt& Pt::operator*=(double s) {
    h *= s;
    v *= s;
    return *this;
}

Pt& Pt::operator/=(double s) {
    h /= s;
    v /= s;
    return *this;
}

Pt Pt::operator+(Pt const& p) const { return Pt(h + p.h, v + p.v); }
Pt Pt::operator-(Pt const& p) const { return Pt(h - p.h, v - p.v); }
Pt Pt::operator*(double s) const { return Pt(h * s, v * s); }
Pt Pt::operator/(double s) const { return Pt(h / s, v / s); }
bool Pt::operator==(Pt const& p) const { return h == p.h && v == p.v; }
bool Pt::operator!=(Pt const& p) const { return !(h == p.h && v == p.v); }
double Pt::Slope() const { return v / h; }
double Pt::Hypotenuse() const { return std::hypot(h, v); }

Pt& Pt::Rotate(double angle) {
    double const s = std::sin(angle);
    double const c = std::cos(angle);
    Pt const old = *this;
    h = old.h * c - old.v * s;
    v = old.h * s + old.v * c;
    return *this;
}

Pt& Pt::Rotate(double angle, Pt const& centre) {
    Pt const c = centre;
    *this -= c;
    Rotate(angle);
    return *this += c;
}

Pt& Pt::Transform(Matrix const& m) {
    m.Transform(*this);
    return *this;
}

// Rectangles

Rect::Rect() : top(0.0), left(0.0), bottom(0.0), right(0.0) {}

Rect::Rect(Pt const& a, Pt const& b) : top(a.v), left(a.h), bottom(b.v), right(b.h) { Rectify(); }

Rect::Rect(double left_, double top_, double right_, double bottom_)
    : top(top_), left(left_), bottom(bottom_), right(right_) {}

void Rect::Rectify() {
    if (top > bottom) {
        std::swap(top, bottom);
    }
    if (right < left) {
        std::swap(left, right);
    }
}

bool Rect::Null() const { return top == 0.0 && left == 0.0 && bottom == 0.0 && right == 0.0; }

bool Rect::Contains(Pt const& p) const {
    return top <= p.v && p.v <= bottom && left <= p.h && p.h <= right;
}

Rect& Rect::Inset(double dh, double dv) {
    left += dh;
    top += dv;
    right -= dh;
    bottom -= dv;
    return *this;
}

Rect& Rect::Outset(double dh, double dv) {
    left -= dh;
    top -= dv;
    right += dh;
    bottom += dv;
    return *this;
}

Rect& Rect::operator|=(Pt const& p) {
    if (Null()) {
        *this = Rect(p, p);
    } else {
        top = std::min(top, p.v);
        left = std::min(left, p.h);
        bottom = std::max(bottom, p.v);
        right = std::max(right, p.h);
    }
    return *this;
}

bool NaiveSectTRect(Rect const& a, Rect const& b) {
    auto const overlap = [](double a0, double a1, double b0, double b1) {
        double const aLo = a1 > a0 ? a0 : a1;
        double const aHi = a0 >= a1 ? a0 : a1;
        double const bLo = b1 > b0 ? b0 : b1;
        double const bHi = b0 >= b1 ? b0 : b1;
        return !(bLo > aHi) && !(aLo > bHi);
    };
    return overlap(a.left, a.right, b.left, b.right) && overlap(a.top, a.bottom, b.top, b.bottom);
}

// Matrices

Matrix::Matrix(double a_, double b_, double c_, double d_, double tx_, double ty_)
    : a(a_), b(b_), c(c_), d(d_), tx(tx_), ty(ty_) {}

void Matrix::Transform(Pt& p) const {
    Pt const old = p;
    p.h = old.h * a + old.v * c + tx;
    p.v = old.h * b + old.v * d + ty;
}

} // namespace plain
