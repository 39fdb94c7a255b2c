// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "CFPolygonRef.h"
#include "PreparedPolygon.h"
#include "TPoly.h"
#include "identity/Identity.h"
#include "plain/PlainPolygon.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace fuzz {

namespace {

using identity::Digest;

bool IsNumber(Pt const& p) { return !std::isnan(p.h) && !std::isnan(p.v); }

void Contained(TPolygon<double> const& list, CFPolygonRef const& handle,
               std::vector<Pt> const& points, Input& in) {
    trammel::PreparedPolygon const preparedList(list);
    trammel::PreparedPolygon const preparedHandle(handle);
    plain::PointList const plainList{points, false};
    plain::HandlePoints const plainHandle{points};
    std::vector<Pt> asked;
    for (int i = in.Int(0, 6); i >= 0; --i) {
        // Mostly at the height of a vertex, or at one.
        Pt p = in.Point();
        if (!points.empty() && i % 3 != 0) {
            Pt const& vertex = points[in.Byte() % points.size()];
            p.v = vertex.v;
            p.h = i % 3 == 1 ? vertex.h : p.h;
        }
        bool const inList = list.Contains(p);
        bool const inHandle = handle.Contains(p);
        Require(inList == plainList.Contains(p), "a list contains what its plain form does");
        Require(inHandle == plainHandle.Contains(p), "a handle contains what its plain form does");
        Require(inList == preparedList.Contains(p), "a prepared list answers as the list");
        Require(inHandle == preparedHandle.Contains(p), "a prepared handle answers as the handle");
        asked.push_back(p);
    }
    bool inside[7];
    preparedList.Contains(asked.data(), asked.size(), inside);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        Require(inside[i] == list.Contains(asked[i]), "many points are inside as each one is");
    }
}

} // namespace

void Polygons(Input& in) {
    std::vector<Pt> const points = in.Points(80);
    TPolygon<double> list;
    for (Pt const& p : points) {
        list.Append(p, true);
    }
    CFPolygonRef handle;
    handle.CFPolygonCreate(points);
    Contained(list, handle, points, in);

    plain::PointList const plainly{points, false};
    Digest ours;
    Digest expected;
    ours.Add(list.Length());
    ours.Add(list.Bounds());
    ours.Add(handle.Bounds());
    expected.Add(plainly.Length());
    expected.Add(plainly.Bounds());
    expected.Add(plain::HandlePoints{points}.Bounds());
    Require(ours == expected, "lengths and bounds are the plain form's");

    Pt const from = in.Point();
    TLine<double> const line(from, in.Point());
    std::vector<TLine<double>> const pieces = list.Clip(line);
    bool numbers = IsNumber(line.mStart) && IsNumber(line.mEnd);
    bool zero = false; // zeros of both signs may come in either order
    for (Pt const& p : points) {
        zero = zero || p.h == 0.0 || p.v == 0.0;
    }
    if (numbers && !zero) {
        std::vector<TLine<double>> const same = plainly.Clip(line);
        Require(pieces.size() == same.size(), "there are as many pieces as in the plain form");
        Digest cut;
        Digest cutPlainly;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            cut.Add(pieces[i].mStart);
            cut.Add(pieces[i].mEnd);
            cutPlainly.Add(same[i].mStart);
            cutPlainly.Add(same[i].mEnd);
        }
        Require(cut == cutPlainly, "the pieces are the plain form's");
    }
    handle.Dispose();
}

} // namespace fuzz
