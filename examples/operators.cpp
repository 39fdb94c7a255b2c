// SPDX-License-Identifier: MIT

#include <trammel/GeometryText.h>
#include <trammel/Operators.h>

#include <iostream>

int main() {
    constexpr TPoint<double> p(3, 4), q = 2.0 * p - TPoint<double>(1, 0);
    std::cout << p << " and " << q << ": dot " << trammel::Dot(p, q) << ", cross "
              << trammel::Cross(p, q) << '\n';
    std::cout << "direction " << trammel::Normalize(p) << '\n';

    CMatrix3x3 const turn = CMatrix3x3().Rotate(pi / 2), move = CMatrix3x3().Translate(10, 0);
    std::cout << p * turn * move << " by " << trammel::ToString(turn * move) << '\n';

    CPath path;
    path.MoveTo({1, 0}).LineTo({0.1, 1e-9}).CurveTo({5, 1}, {5, 2}, {4, 3}).ClosePath();
    std::cout << path << '\n' << path.Bounds() << '\n';
}
