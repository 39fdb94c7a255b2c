// SPDX-License-Identifier: MIT

// libpolyclipping, called as a program would that has doubles: coordinates are scaled to a grid of
// 61 bits and back. This is Trammel's bundled clipper without what it adds: exact coordinates of
// vertices that survive, contours that do not cross, right hole flags, the order of contours.

#include "Peer.h"

#include <polyclipping/clipper.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

namespace peers {
namespace {

/// Even over one axis: a power of two, so that scaling rounds only what is below the grid.
struct Axis {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    double middle = 0.0;
    double up = 1.0;

    void Include(double v) {
        low = std::min(low, v);
        high = std::max(high, v);
    }
    void Fit() {
        int exponent = 0;
        std::frexp(high - low, &exponent);
        middle = low + (high - low) / 2.0;
        up = std::ldexp(1.0, 61 - exponent);
    }
    ClipperLib::cInt ToGrid(double v) const {
        return static_cast<ClipperLib::cInt>(std::nearbyint((v - middle) * up));
    }
    double FromGrid(ClipperLib::cInt g) const { return static_cast<double>(g) / up + middle; }
};

class PolyclippingJob : public Job {
public:
    explicit PolyclippingJob(operands::Pair const& pair)
        : mFirst(pair.first.rings), mSecond(pair.second.rings) {}

    void Run(TPolyOp op) override {
        Axis h;
        Axis v;
        for (std::vector<operands::Ring> const* rings : {&mFirst, &mSecond}) {
            for (operands::Ring const& ring : *rings) {
                for (TPoint<double> const& p : ring) {
                    h.Include(p.h);
                    v.Include(p.v);
                }
            }
        }
        h.Fit();
        v.Fit();
        auto const toPaths = [&](std::vector<operands::Ring> const& rings) {
            ClipperLib::Paths paths(rings.size());
            for (std::size_t i = 0; i < rings.size(); ++i) {
                paths[i].reserve(rings[i].size());
                for (TPoint<double> const& p : rings[i]) {
                    paths[i].emplace_back(h.ToGrid(p.h), v.ToGrid(p.v));
                }
            }
            return paths;
        };
        ClipperLib::Clipper clipper;
        clipper.AddPaths(toPaths(mFirst), ClipperLib::ptSubject, true);
        clipper.AddPaths(toPaths(mSecond), ClipperLib::ptClip, true);
        ClipperLib::ClipType const type = op == kPolyDifference     ? ClipperLib::ctDifference
                                          : op == kPolyIntersection ? ClipperLib::ctIntersection
                                          : op == kPolyXor          ? ClipperLib::ctXor
                                                                    : ClipperLib::ctUnion;
        ClipperLib::Paths paths;
        if (!clipper.Execute(type, paths, ClipperLib::pftEvenOdd)) {
            throw std::runtime_error("Clipper::Execute failed");
        }
        mResult.assign(paths.size(), operands::Ring());
        for (std::size_t i = 0; i < paths.size(); ++i) {
            mResult[i].reserve(paths[i].size());
            for (ClipperLib::IntPoint const& p : paths[i]) {
                mResult[i].emplace_back(h.FromGrid(p.X), v.FromGrid(p.Y));
            }
        }
    }

    /// Holes run against the outer contours.
    double Area() const override {
        double twice = 0.0;
        for (operands::Ring const& ring : mResult) {
            for (std::size_t i = 0; i < ring.size(); ++i) {
                TPoint<double> const a = ring[i] - ring[0];
                TPoint<double> const b = ring[(i + 1) % ring.size()] - ring[0];
                twice += a.h * b.v - a.v * b.h;
            }
        }
        return std::abs(twice / 2.0);
    }

private:
    std::vector<operands::Ring> mFirst;
    std::vector<operands::Ring> mSecond;
    std::vector<operands::Ring> mResult;
};

} // namespace

Peer Polyclipping() {
    return {"polyclipping", true, true, false,
            [](operands::Pair const& pair) -> std::unique_ptr<Job> {
                return std::make_unique<PolyclippingJob>(pair);
            }};
}

} // namespace peers
