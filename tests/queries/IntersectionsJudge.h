// SPDX-License-Identifier: MIT

// The intersections of two cubic curves by exact algebra: the resultant of the implicit form of one
// curve with the other one, in rational numbers.

#ifndef TRAMMEL_INTERSECTIONSJUDGE_H
#define TRAMMEL_INTERSECTIONSJUDGE_H

#include "CBezier.h"

#include <gmpxx.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace trammel_test {

typedef std::vector<mpq_class> Polynomial; // the coefficients of 1, x, x² ...

inline void Trim(Polynomial& p) {
    while (!p.empty() && p.back() == 0) {
        p.pop_back();
    }
}
inline Polynomial operator*(Polynomial const& a, Polynomial const& b) {
    if (a.empty() || b.empty()) {
        return {};
    }
    Polynomial product(a.size() + b.size() - 1);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) {
            product[i + j] += a[i] * b[j];
        }
    }
    Trim(product);
    return product;
}
inline Polynomial Combined(Polynomial a, Polynomial const& b, mpq_class const& factor) {
    a.resize(std::max(a.size(), b.size()));
    for (std::size_t i = 0; i < b.size(); ++i) {
        a[i] += b[i] * factor;
    }
    Trim(a);
    return a;
}
inline Polynomial operator+(Polynomial const& a, Polynomial const& b) { return Combined(a, b, 1); }
inline Polynomial operator-(Polynomial const& a, Polynomial const& b) { return Combined(a, b, -1); }
inline mpq_class At(Polynomial const& p, mpq_class const& x) {
    mpq_class value = 0;
    for (std::size_t i = p.size(); i-- > 0;) {
        value = value * x + p[i];
    }
    return value;
}
inline Polynomial Derivative(Polynomial const& p) {
    Polynomial d;
    for (std::size_t i = 1; i < p.size(); ++i) {
        d.push_back(p[i] * static_cast<unsigned long>(i));
    }
    return d;
}
/// The quotient and the remainder of a division.
struct Division {
    Polynomial quotient;
    Polynomial remainder;
};
inline Division Divide(Polynomial a, Polynomial const& b) {
    Polynomial quotient(a.size() >= b.size() ? a.size() - b.size() + 1 : 0);
    while (a.size() >= b.size()) {
        mpq_class const factor = a.back() / b.back();
        std::size_t const shift = a.size() - b.size();
        quotient[shift] = factor;
        for (std::size_t i = 0; i < b.size(); ++i) {
            a[shift + i] -= factor * b[i];
        }
        Trim(a);
    }
    Trim(quotient);
    return {quotient, a};
}
/// The polynomial with coefficients that are whole numbers without a common factor. It is divided
/// by a positive number, which changes no sign and no root.
inline Polynomial Primitive(Polynomial p) {
    mpz_class denominators = 1;
    for (mpq_class const& x : p) {
        denominators = lcm(denominators, x.get_den());
    }
    mpz_class numerators = 0;
    for (mpq_class& x : p) {
        x *= denominators;
        numerators = gcd(numerators, x.get_num());
    }
    for (mpq_class& x : p) {
        x /= numerators;
    }
    return p;
}
inline Polynomial GreatestCommonDivisor(Polynomial a, Polynomial b) {
    while (!b.empty()) {
        Polynomial r = Primitive(Divide(a, b).remainder);
        a = b;
        b = r;
    }
    return Primitive(a);
}

/// The number of distinct roots between two numbers, the first one excluded, by Sturm's theorem.
class Sturm {
public:
    explicit Sturm(Polynomial const& p) : mChain{p, Derivative(p)} {
        while (!mChain.back().empty()) {
            mChain.push_back(Primitive(Polynomial() -
                                       Divide(mChain[mChain.size() - 2], mChain.back()).remainder));
        }
        mChain.pop_back();
    }
    int Roots(mpq_class const& from, mpq_class const& to) const {
        return Changes(from) - Changes(to);
    }

private:
    int Changes(mpq_class const& x) const {
        int changes = 0;
        int last = 0;
        for (Polynomial const& p : mChain) {
            int const sign = sgn(At(p, x));
            if (sign != 0) {
                changes += last == -sign ? 1 : 0;
                last = sign;
            }
        }
        return changes;
    }

    std::vector<Polynomial> mChain;
};

/// A common point of two curves.
struct TrueMeeting {
    double s;
    double t;
    int order; ///< the number of roots that fall together here: odd where the curves cross
};

/// All common points of curves `a` and `b` with parameters from 0 to 1, in order of s. Requires
/// that `b` is not straight and does not cross itself at a common point, and that the curves have
/// only finitely many points in common.
class ExactMeetings {
public:
    ExactMeetings(CBezier const& a, CBezier const& b) {
        Polynomial const ax = Powers(a.P0.h, a.P1.h, a.P2.h, a.P3.h);
        Polynomial const ay = Powers(a.P0.v, a.P1.v, a.P2.v, a.P3.v);
        mX = Powers(b.P0.h, b.P1.h, b.P2.h, b.P3.h);
        mY = Powers(b.P0.v, b.P1.v, b.P2.v, b.P3.v);
        mX.resize(4);
        mY.resize(4);
        // Bézout's matrix of x(t) - ax and y(t) - ay, as polynomials in s.
        auto const entry = [&](std::size_t i, std::size_t j) {
            Polynomial const one{1};
            auto const f = [&](std::size_t k) {
                Polynomial p = one * Polynomial{mX[k]};
                Trim(p);
                return k == 0 ? p - ax : p;
            };
            auto const g = [&](std::size_t k) {
                Polynomial p = one * Polynomial{mY[k]};
                Trim(p);
                return k == 0 ? p - ay : p;
            };
            Polynomial sum;
            for (std::size_t k = 0; k <= std::min(i, j); ++k) {
                std::size_t const m = i + j + 1 - k;
                if (m <= 3) {
                    sum = sum + (f(m) * g(k) - f(k) * g(m));
                }
            }
            return sum;
        };
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                mBezout[i][j] = entry(i, j);
            }
        }
        Polynomial rest = mBezout[0][0] * Minor(1, 1, 2, 2) - mBezout[0][1] * Minor(1, 0, 2, 2) +
                          mBezout[0][2] * Minor(1, 0, 2, 1);
        mFinite = !rest.empty();
        if (!mFinite) {
            return;
        }
        rest = Primitive(rest);
        // Yun's algorithm: the factors of each multiplicity.
        Polynomial common = GreatestCommonDivisor(rest, Derivative(rest));
        Polynomial single = Divide(rest, common).quotient;
        for (int order = 1; single.size() > 1; ++order) {
            Polynomial const next = GreatestCommonDivisor(single, common);
            AddRoots(Primitive(Divide(single, next).quotient), order);
            single = next;
            common = Divide(common, next).quotient;
        }
        std::sort(mMeetings.begin(), mMeetings.end(),
                  [](TrueMeeting const& m, TrueMeeting const& n) { return m.s < n.s; });
    }
    std::vector<TrueMeeting> const& All() const { return mMeetings; }
    /// False where the curves have a whole stretch in common, or parts of one curve.
    bool Finite() const { return mFinite; }

private:
    static Polynomial Powers(double p0, double p1, double p2, double p3) {
        mpq_class const a(p0);
        mpq_class const b(p1);
        mpq_class const c(p2);
        mpq_class const d(p3);
        Polynomial p{a, 3 * (b - a), 3 * (c - 2 * b + a), d - 3 * c + 3 * b - a};
        Trim(p);
        return p;
    }
    /// A minor of Bézout's matrix: rows i and k, columns j and l.
    Polynomial Minor(std::size_t i, std::size_t j, std::size_t k, std::size_t l) const {
        return mBezout[i][j] * mBezout[k][l] - mBezout[i][l] * mBezout[k][j];
    }
    void AddRoots(Polynomial const& p, int order) {
        if (p.size() < 2) {
            return;
        }
        if (At(p, 0) == 0) {
            Add(0, order);
        }
        Isolate(p, Sturm(p), 0, 1, order);
    }
    void Isolate(Polynomial const& p, Sturm const& sturm, mpq_class low, mpq_class high,
                 int order) {
        int const count = sturm.Roots(low, high);
        if (count == 0) {
            return;
        }
        if (count == 1) {
            int const after = sgn(At(p, high));
            mpq_class const enough = mpq_class(1) / (mpz_class(1) << 90);
            while (after != 0 && high - low > enough) {
                mpq_class const middle = (low + high) / 2;
                int const sign = sgn(At(p, middle));
                (sign == after || sign == 0 ? high : low) = middle;
                if (sign == 0) {
                    break;
                }
            }
            Add(high, order);
            return;
        }
        mpq_class const middle = (low + high) / 2;
        Isolate(p, sturm, low, middle, order);
        Isolate(p, sturm, middle, high, order);
    }
    /// Adds a root, if its parameter on the other curve is from 0 to 1. The vector of that
    /// parameter's powers lies in the kernel of Bézout's matrix.
    void Add(mpq_class const& s, int order) {
        std::array<std::array<mpq_class, 3>, 3> m;
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                m[i][j] = At(mBezout[i][j], s);
            }
        }
        // The kernel is the cross product of two rows; the greatest one is the surest.
        std::array<mpq_class, 3> best;
        mpq_class most = -1;
        for (std::size_t i = 0; i < 3; ++i) {
            auto const& r = m[i];
            auto const& q = m[(i + 1) % 3];
            std::array<mpq_class, 3> const cross{
                r[1] * q[2] - r[2] * q[1], r[2] * q[0] - r[0] * q[2], r[0] * q[1] - r[1] * q[0]};
            mpq_class const size = abs(cross[0]) + abs(cross[1]) + abs(cross[2]);
            if (size > most) {
                most = size;
                best = cross;
            }
        }
        if (best[0] == 0) {
            return; // at infinity
        }
        mpq_class const t = best[1] / best[0];
        mpq_class const slack = mpq_class(1) / (mpz_class(1) << 50);
        if (t >= -slack && t <= 1 + slack) {
            mMeetings.push_back({s.get_d(), t.get_d(), order});
        }
    }

    Polynomial mX;
    Polynomial mY;
    std::array<std::array<Polynomial, 3>, 3> mBezout;
    std::vector<TrueMeeting> mMeetings;
    bool mFinite = true;
};

} // namespace trammel_test

#endif
