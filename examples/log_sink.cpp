// SPDX-License-Identifier: MIT

#include <trammel/Log.h>
#include <trammel/UHygiene.h>

#include <cmath>
#include <cstdio>

int main() {
    // Lines of the log go to standard error, until the application takes them.
    SetNSLogSink([](std::string const& line) { std::printf("log: %s\n", line.c_str()); });

    TPoint<double> p(3, std::nan(""));
    if (ValidatePoint(p)) {
        std::printf("made good: (%g, %g)\n", p.h, p.v);
    }
    SetNSLogSink(nullptr);
}
