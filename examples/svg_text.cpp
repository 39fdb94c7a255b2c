// SPDX-License-Identifier: MIT

#include <trammel/CMatrix3x3.h>
#include <trammel/SvgPath.h>

#include <cstdio>

int main() {
    trammel::SvgPathResult heart =
        trammel::ReadSvgPath("M50 90 C0 50 20 10 50 30 C80 10 100 50 50 90 Z");
    heart.path.Transform(CMatrix3x3().Scale(0.5));
    std::printf("%s\n", trammel::WriteSvgPath(heart.path).c_str());

    trammel::SvgPathResult const broken = trammel::ReadSvgPath("M0 0 L30 40 L50 oops");
    if (broken.error) {
        std::printf("%s\n", broken.error->Message().c_str());
    }
    std::printf("read before it: %.0f\n", broken.path.Length());
}
