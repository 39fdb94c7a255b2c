// SPDX-License-Identifier: MIT

// Areas by winding numbers, computed by strips: a judge that shares nothing with the engine.

#ifndef TRAMMEL_STRIPAREA_H
#define TRAMMEL_STRIPAREA_H

#include "TPoint.h"
#include "TPoly.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace trammel_test {

typedef std::vector<TPolygon<double>> Rings;

/// Returns the area of the points for which inside(windings) is true, where `windings` has their
/// winding number around each of the layers. Rings may cross.
///
/// The plane is cut into strips at the heights of vertices and crossings. In each strip the edges
/// are sorted by their middles. The error is about 1e-12 of the bounds.
template <class Inside> double StripArea(std::vector<Rings> const& layers, Inside const& inside) {
    struct Edge {
        TPoint<double> low;
        TPoint<double> high;
        std::size_t layer;
        int step;
        double At(double v) const {
            return low.h + (v - low.v) / (high.v - low.v) * (high.h - low.h);
        }
    };
    std::vector<Edge> edges;
    std::vector<double> heights;
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        for (TPolygon<double> const& ring : layers[layer]) {
            for (long i = 0; i <= ring.LastIndex(); ++i) {
                TPoint<double> const p = ring.GetPt(i);
                TPoint<double> const q = ring.GetPt(i == ring.LastIndex() ? 0 : i + 1);
                heights.push_back(p.v);
                if (p.v != q.v) {
                    // A walk toward +h crosses edges that run toward -v from right to left.
                    edges.push_back(p.v < q.v ? Edge{p, q, layer, -1} : Edge{q, p, layer, 1});
                }
            }
        }
    }
    for (std::size_t i = 0; i < edges.size(); ++i) {
        for (std::size_t j = i + 1; j < edges.size(); ++j) {
            double const low = std::max(edges[i].low.v, edges[j].low.v);
            double const high = std::min(edges[i].high.v, edges[j].high.v);
            if (low < high) {
                double const before = edges[i].At(low) - edges[j].At(low);
                double const after = edges[i].At(high) - edges[j].At(high);
                if ((before < 0 && after > 0) || (before > 0 && after < 0)) {
                    heights.push_back(low + (high - low) * (before / (before - after)));
                }
            }
        }
    }
    std::sort(heights.begin(), heights.end());
    std::vector<int> windings(layers.size());
    std::vector<std::pair<double, std::size_t>> row;
    double area = 0.0;
    for (std::size_t k = 0; k + 1 < heights.size(); ++k) {
        double const height = heights[k + 1] - heights[k];
        double const middle = heights[k] + height / 2;
        row.clear();
        for (std::size_t i = 0; i < edges.size() && height > 0; ++i) {
            if (edges[i].low.v <= heights[k] && edges[i].high.v >= heights[k + 1]) {
                row.emplace_back(edges[i].At(middle), i);
            }
        }
        std::sort(row.begin(), row.end());
        std::fill(windings.begin(), windings.end(), 0);
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            windings[edges[row[i].second].layer] += edges[row[i].second].step;
            if (inside(windings)) {
                area += height * (row[i + 1].first - row[i].first);
            }
        }
    }
    return area;
}

} // namespace trammel_test

#endif
