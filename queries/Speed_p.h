// SPDX-License-Identifier: MIT

// The speed of a cubic, its integral, and the parameter at which the integral has a given value.
// AccurateLength.cpp tells the method. Not installed.

#ifndef TRAMMEL_SPEED_P_H
#define TRAMMEL_SPEED_P_H

#include "AccurateCurve_p.h"
#include "CBezier.h"
#include "LengthKernels_p.h"
#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

/// Half of the nodes (those above 0) of the Gauss-Legendre formula with 2·Half nodes, and their
/// weights.
template <std::size_t Half> struct GaussFormula {
    std::array<double, Half> nodes;
    std::array<double, Half> weights;
};

inline constexpr GaussFormula<2> kGauss4 = {{0.33998104358485626, 0.8611363115940526},
                                            {0.6521451548625461, 0.34785484513745385}};
inline constexpr GaussFormula<4> kGauss8 = {
    {0.1834346424956498, 0.525532409916329, 0.7966664774136267, 0.9602898564975363},
    {0.362683783378362, 0.31370664587788727, 0.22238103445337448, 0.10122853629037626}};
inline constexpr GaussFormula<6> kGauss12 = {
    {0.1252334085114689, 0.3678314989981802, 0.5873179542866175, 0.7699026741943047,
     0.9041172563704749, 0.9815606342467192},
    {0.24914704581340277, 0.2334925365383548, 0.20316742672306592, 0.16007832854334622,
     0.10693932599531843, 0.04717533638651183}};
inline constexpr GaussFormula<8> kGauss16 = {
    {0.09501250983763744, 0.2816035507792589, 0.45801677765722737, 0.6178762444026438,
     0.755404408355003, 0.8656312023878318, 0.9445750230732326, 0.9894009349916499},
    {0.1894506104550685, 0.18260341504492358, 0.16915651939500254, 0.14959598881657674,
     0.12462897125553388, 0.09515851168249279, 0.062253523938647894, 0.027152459411754096}};
inline constexpr GaussFormula<10> kGauss20 = {
    {0.07652652113349734, 0.22778585114164507, 0.37370608871541955, 0.5108670019508271,
     0.636053680726515, 0.7463319064601508, 0.8391169718222188, 0.912234428251326,
     0.9639719272779138, 0.9931285991850949},
    {0.15275338713072584, 0.14917298647260374, 0.14209610931838204, 0.13168863844917664,
     0.11819453196151841, 0.10193011981724044, 0.08327674157670475, 0.06267204833410907,
     0.04060142980038694, 0.017614007139152118}};
inline constexpr GaussFormula<12> kGauss24 = {
    {0.06405689286260563, 0.1911188674736163, 0.3150426796961634, 0.4337935076260451,
     0.5454214713888396, 0.6480936519369755, 0.7401241915785544, 0.820001985973903,
     0.8864155270044011, 0.9382745520027328, 0.9747285559713095, 0.9951872199970213},
    {0.12793819534675216, 0.1258374563468283, 0.12167047292780339, 0.1155056680537256,
     0.10744427011596563, 0.09761865210411388, 0.08619016153195327, 0.0733464814110803,
     0.05929858491543678, 0.04427743881741981, 0.028531388628933663, 0.0123412297999872}};
inline constexpr GaussFormula<14> kGauss28 = {
    {0.05507928988403427, 0.16456928213338076, 0.2720616276351781, 0.3762515160890787,
     0.4758742249551183, 0.5697204718114017, 0.656651094038865, 0.7356108780136318,
     0.8056413709171791, 0.8658925225743951, 0.9156330263921321, 0.9542592806289382,
     0.9813031653708727, 0.9964424975739544},
    {0.1100470130164752, 0.10871119225829413, 0.10605576592284642, 0.10211296757806076,
     0.09693065799792992, 0.09057174439303284, 0.08311341722890121, 0.07464621423456878,
     0.0652729239669996, 0.05510734567571675, 0.04427293475900423, 0.03290142778230438,
     0.02113211259277126, 0.009124282593094517}};
inline constexpr GaussFormula<16> kGauss32 = {
    {0.04830766568773832, 0.1444719615827965, 0.23928736225213706, 0.33186860228212767,
     0.42135127613063533, 0.5068999089322294, 0.5877157572407623, 0.6630442669302152,
     0.7321821187402897, 0.7944837959679424, 0.84936761373257, 0.8963211557660521,
     0.9349060759377397, 0.9647622555875064, 0.9856115115452684, 0.9972638618494816},
    {0.0965400885147278, 0.09563872007927486, 0.09384439908080457, 0.09117387869576389,
     0.08765209300440381, 0.08331192422694675, 0.07819389578707031, 0.0723457941088485,
     0.06582222277636185, 0.058684093478535544, 0.050998059262376175, 0.04283589802222668,
     0.03427386291302143, 0.02539206530926206, 0.01627439473090567, 0.007018610009470096}};
inline constexpr GaussFormula<18> kGauss36 = {
    {0.04301819847370861, 0.1287361038093848, 0.2135008923168656, 0.29668499534402826,
     0.37767254711968923, 0.45586394443342027, 0.5306802859262452, 0.6015676581359806,
     0.668001236585521, 0.7294891715935565, 0.7855762301322066, 0.8358471669924753,
     0.8799298008903972, 0.9174977745156591, 0.9482729843995076, 0.972027691049698,
     0.9885864789022122, 0.9978304624840858},
    {0.08598327567039475, 0.08534668573933862, 0.08407821897966193, 0.0821872667043397,
     0.0796878289120716, 0.07659841064587067, 0.07294188500565306, 0.06874532383573645,
     0.06403979735501548, 0.05886014424532482, 0.05324471397775992, 0.04723508349026598,
     0.04087575092364489, 0.03421381077030723, 0.02729862149856878, 0.020181515297735472,
     0.012915947284065574, 0.0055657196642450455}};
inline constexpr GaussFormula<20> kGauss40 = {
    {0.03877241750605082, 0.11608407067525521, 0.1926975807013711, 0.2681521850072537,
     0.3419940908257585,  0.413779204371605,   0.4830758016861787, 0.5494671250951282,
     0.6125538896679802,  0.6719566846141796,  0.7273182551899271, 0.7783056514265194,
     0.8246122308333117,  0.8659595032122595,  0.9020988069688743, 0.9328128082786765,
     0.9579168192137917,  0.9772599499837743,  0.990726238699457,  0.9982377097105593},
    {0.0775059479784248,  0.07703981816424797,  0.07611036190062624,  0.07472316905796826,
     0.07288658239580406, 0.07061164739128678,  0.0679120458152339,   0.06480401345660104,
     0.06130624249292894, 0.05743976909939155,  0.05322784698393682,  0.04869580763507223,
     0.04387090818567327, 0.038782167974472016, 0.033460195282547844, 0.0279370069800234,
     0.02224584919416696, 0.01642105838190789,  0.010498284531152813, 0.004521277098533191}};

/// All of them as SpeedLength takes them.
struct GaussTable {
    double entries[kGaussEntries] = {};
    std::size_t filled = 0;

    template <std::size_t Half> constexpr GaussTable& Add(GaussFormula<Half> const& formula) {
        for (std::size_t i = 0; i < Half; i += 2) {
            for (std::size_t k = i; k < i + 2; ++k) {
                entries[filled] = formula.nodes[k];
                entries[filled + 1] = -formula.nodes[k];
                entries[filled + 4] = formula.weights[k];
                entries[filled + 5] = formula.weights[k];
                filled += 2;
            }
            filled += 4;
        }
        return *this;
    }
};
inline constexpr GaussTable kGaussTable = GaussTable()
                                              .Add(kGauss4)
                                              .Add(kGauss8)
                                              .Add(kGauss12)
                                              .Add(kGauss16)
                                              .Add(kGauss20)
                                              .Add(kGauss24)
                                              .Add(kGauss28)
                                              .Add(kGauss32)
                                              .Add(kGauss36)
                                              .Add(kGauss40);
static_assert(kGaussTable.filled == kGaussEntries);

/// The speed of a curve, and its integral. It holds a third of the curve's derivative.
class Speed {
public:
    /// Takes the derivative with Bezier coefficients 3·d0, 3·d1, 3·d2.
    Speed(Pt const& d0, Pt const& d1, Pt const& d2)
        : mCurve(SpeedCurveOf(d0.h, d0.v, d1.h, d1.v, d2.h, d2.v)), mD2(d2) {}
    /// Returns a bound on the curve's length. It is at most sqrt(2) times the length of the control
    /// polygon.
    double Size() const { return mCurve.size; }
    /// Returns the derivative's length at `t`.
    double At(double t) const {
        return 3.0 * std::sqrt(Square(t < 0.5 ? Value(t) : ValueFromEnd(1.0 - t)));
    }
    /// Returns the length between two parameters from 0 to 1, t0 <= t1, right within `accuracy` and
    /// the rounding, 2^-50 of the size.
    double Length(double t0, double t1, double accuracy) {
        return SpeedLength(mCurve, t0, t1, accuracy, kGaussTable.entries);
    }

private:
    Pt Value(double t) const {
        return Pt(mCurve.aH, mCurve.aV) +
               (Pt(mCurve.bH, mCurve.bV) * 2.0 + Pt(mCurve.cH, mCurve.cV) * t) * t;
    }
    /// Returns the same seen from the end, so that a curve that stops there has the speed 0.
    Pt ValueFromEnd(double s) const {
        Pt const c(mCurve.cH, mCurve.cV);
        return mD2 - (Pt(mCurve.bH, mCurve.bV) * 2.0 + c * 2.0 - c * s) * s;
    }

    SpeedCurve mCurve;
    Pt mD2;
};

/// Returns the points for measuring the length, which depends on their differences alone.
inline ScaledPoints<4> Measured(CBezier const& curve) {
    std::array<Pt, 4> points = {curve.P0, curve.P1, curve.P2, curve.P3};
    DropCommon(points);
    return ScaledPoints<4>(points);
}

inline Speed SpeedOf(ScaledPoints<4> const& p) {
    return Speed(p[1] - p[0], p[2] - p[1], p[3] - p[2]);
}

/// Returns the parameter between `from` and `to` at which the length from there reaches `target`.
/// The whole length there is `total`, and 0 < target < total. The length up to the parameter is
/// `target` within `accuracy`.
inline double SolveLength(Speed& speed, double from, double to, double target, double total,
                          double accuracy) {
    double const least = 2.0 * kLengthRounding * speed.Size();
    double const enough = std::max(0.5 * accuracy, least);
    double step =
        0.125 * accuracy; // of each integral; halved each time, so that the sum is bounded

    double lo = from;
    double hi = to;
    double lengthLo = 0.0;
    double lengthHi = total;
    // The first guess is a cubic function of the length that has the right values and slopes at the
    // ends. The slopes are limited, so that it is monotone [Fritsch and Carlson].
    double const width = to - from;
    double const u = target / total;
    double const slope0 = std::min(total / (width * speed.At(from)), 3.0);
    double const slope1 = std::min(total / (width * speed.At(to)), 3.0);
    double t =
        from +
        width * (u * (slope0 + u * (3.0 - 2.0 * slope0 - slope1 + u * (slope0 + slope1 - 2.0))));
    // Newton's steps are taken while they stay in the bracket and halve it in three steps.
    // Otherwise the bracket is bisected.
    double widthBefore = 2.0;
    for (int i = 1; lo < hi; ++i) {
        if (!(t > lo && t < hi) || (i % 3 == 0 && hi - lo > 0.5 * widthBefore)) {
            t = lo + 0.5 * (hi - lo);
            if (t == lo || t == hi) {
                break;
            }
        }
        if (i % 3 == 0) {
            widthBefore = hi - lo;
        }
        double const length = t - lo < hi - t ? lengthLo + speed.Length(lo, t, step)
                                              : lengthHi - speed.Length(t, hi, step);
        step *= 0.5;
        double const off = length - target;
        if (std::abs(off) <= enough) {
            return t;
        }
        (off < 0.0 ? lo : hi) = t;
        (off < 0.0 ? lengthLo : lengthHi) = length;
        t -= off / speed.At(t);
    }
    return target - lengthLo <= lengthHi - target ? lo : hi;
}

} // namespace trammel_detail

#endif
