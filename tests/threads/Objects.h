// SPDX-License-Identifier: MIT

// What the threads share, and the record of what they get. main.cpp says what the program is.

#ifndef TRAMMEL_THREADS_OBJECTS_H
#define TRAMMEL_THREADS_OBJECTS_H

#include <trammel/trammel.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace threads {

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef TPolygon<double> Polygon;

/// A hash of all that was added, in order.
class Digest {
public:
    void Add(std::uint64_t bits) {
        mValue = (mValue ^ bits) * 0x9E3779B97F4A7C15U;
        mValue ^= mValue >> 32U;
    }
    void Add(double x) {
        std::uint64_t bits;
        std::memcpy(&bits, &x, sizeof bits);
        Add(bits);
    }
    void Add(long n) { Add(static_cast<std::uint64_t>(n)); }
    void Add(unsigned int n) { Add(std::uint64_t{n}); }
    void Add(int n) { Add(long{n}); }
    void Add(bool yes) { Add(long{yes}); }
    void Add(std::string const& text) {
        for (char const c : text) {
            Add(long{c});
        }
    }
    void Add(Pt const& p) {
        Add(p.h);
        Add(p.v);
    }
    void Add(Box const& r) {
        Add(r.top);
        Add(r.left);
        Add(r.bottom);
        Add(r.right);
    }
    void Add(CBezier const& c) {
        Add(c.P0);
        Add(c.P1);
        Add(c.P2);
        Add(c.P3);
    }
    void Add(CPath const& path) {
        for (char const code : path.mCtls) {
            Add(long{code});
        }
        Add(path.mPts);
    }
    void Add(Polygon const& polygon) {
        for (Pt const& p : polygon) {
            Add(p);
        }
    }
    void Add(CFPolygonRef const& polygon) {
        for (Pt const& p : polygon) {
            Add(p);
        }
    }
    void Add(trammel::PolygonWithHoles const& polygon) {
        Add(polygon.outer);
        Add(polygon.holes);
    }
    void Add(trammel::Intersection const& place) {
        Add(place.a.t);
        Add(place.b.t);
    }
    template <class Item> void Add(std::vector<Item> const& items) {
        Add(static_cast<long>(items.size()));
        for (Item const& item : items) {
            Add(item);
        }
    }
    /// Adds a new handle polygon, and disposes it.
    void Take(CFPolygonRef polygon) {
        Add(polygon);
        polygon.Dispose();
    }

    std::uint64_t Value() const { return mValue; }

private:
    std::uint64_t mValue = 0x243F6A8885A308D3U;
};

/// One object of each kind. New ones keep no bounds and no paths yet, so that the threads that ask
/// first compute and keep them.
struct Objects {
    CBezier curve{Pt(0, 0), Pt(40, 90), Pt(70, -50), Pt(100, 20)};
    CBSpline spline{Pt(0, 0), Pt(50, 80), Pt(100, 10)};
    TLine<double> line{Pt(-5, 12), Pt(110, 31)};
    Polygon polygon{{1, 2}, {90, 5}, {70, 60}, {85, 95}, {20, 80}, {35, 40}};
    CFPolygonRef handle;
    CPath path;
    CPath other;
    Tgpc_polygon area;
    CGMutablePathRef drawing = CGPathCreateMutable();
    trammel::PolygonWithHoles holed;
    trammel::PathMeasure measure;
    trammel::OutlineMeasure exactMeasure;
    trammel::PreparedPolygon prepared;
    trammel::PreparedOutline preparedOutline;
    trammel::OutlineArrangement outlines;
    trammel::PolygonArrangement polygons;

    Objects();
    ~Objects();
    Objects(Objects const&) = delete;
    Objects& operator=(Objects const&) = delete;
};

/// Some calls of the library, on the shared objects as they are or on objects of their own.
struct Calls {
    char const* name;
    void (*run)(Objects const& shared, Digest& digest);
};

std::vector<Calls> CallsOfCurves();
std::vector<Calls> CallsOfPolygons();
std::vector<Calls> CallsOfOutlines();

} // namespace threads

#endif
