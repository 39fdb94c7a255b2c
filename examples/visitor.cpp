// SPDX-License-Identifier: MIT

#include <trammel/CPath.h>
#include <trammel/TLine.h>

#include <cstdio>

namespace {

/// Sums up the lengths of straight segments, closing ones included.
class StraightLength : public CPathActions {
public:
    double mLength = 0;

    void LineTo(TPoint<double> const& p) override { Add(p); }
    void ClosePath() override { Add(GetStartPt()); }

private:
    // GetCurrentPt is where the segment begins; it moves on after the call.
    void Add(TPoint<double> const& end) { mLength += TLine<double>(GetCurrentPt(), end).Length(); }
};

} // namespace

int main() {
    CPath path;
    path.RRect(TRect<double>(0, 0, 200, 100), 40);
    StraightLength straight;
    path.ForAll(straight);
    std::printf("%.2f of %.2f are straight\n", straight.mLength, path.Length());
}
