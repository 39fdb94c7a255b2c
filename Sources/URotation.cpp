// SPDX-License-Identifier: MIT

#include "URotation.h"

#include <cmath>

namespace {

/// The cosine, the sine, the negated sine and the cosine of an angle; all zero until set.
struct RotationTable {
    double entries[4];
};

RotationTable trnsform;
RotationTable unTrnsform;

void Set(RotationTable& table, double angle) {
    double const sine = std::sin(angle);
    double const cosine = std::cos(angle);
    table = {{cosine, sine, -sine, cosine}};
}

void Apply(RotationTable const& table, TPoint<double>& p) {
    double const(&t)[4] = table.entries;
    double const h = p.h;
    p.h = h * t[0] + p.v * t[2];
    p.v = h * t[1] + p.v * t[3];
}

} // namespace

void SetRotate(double angle) { Set(trnsform, angle); }

void SetUnRotate(double angle) { Set(unTrnsform, angle); }

void Transform(TPoint<double>& p) { Apply(trnsform, p); }

void UnTransform(TPoint<double>& p) { Apply(unTrnsform, p); }
