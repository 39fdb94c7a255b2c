// SPDX-License-Identifier: MIT

// How does the library compare with its plain form? The same work in the same order, results alike
// to the last bit (Compare.h says how it is measured). `script/bench --ratios` prints the table.
//
// Run by hand: trammel_bench --benchmark_filter=^compare/

#include "Compare.h"
#include "Inputs.h"
#include "Truth.h"

#include <trammel/CFPolygonRef.h>
#include <trammel/CMatrix3x3.h>
#include <trammel/CPathActions.h>
#include <trammel/TLine.h>
#include <trammel/TPoly.h>

#include "plain/Plain.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using compare::Job;

plain::Pt ToPlain(TPoint<double> const& p) { return plain::Pt(p.h, p.v); }

std::vector<plain::Pt> ToPlain(std::vector<TPoint<double>> const& points) {
    std::vector<plain::Pt> result;
    result.reserve(points.size());
    for (TPoint<double> const& p : points) {
        result.push_back(ToPlain(p));
    }
    return result;
}

/// The counters of a work whose target is `value`, 0 if it has none.
std::map<std::string, double> Target(double value) {
    return value > 0.0 ? std::map<std::string, double>{{"target", value}}
                       : std::map<std::string, double>();
}

/// The input made of a set, made when it is first needed.
template <class Input> std::shared_ptr<Input> Kept(inputs::Set set) {
    static std::map<inputs::Set, std::shared_ptr<Input>> kept;
    auto& entry = kept[set];
    if (entry == nullptr) {
        entry = std::make_shared<Input>(set);
    }
    return entry;
}

/// A job of ours(i) and plainly(i) for i from 0 to calls - 1, which return a number.
template <class Ours, class Plainly>
std::shared_ptr<Job> JobOf(std::size_t calls, std::map<std::string, double> const& counters,
                           Ours ours, Plainly plainly) {
    auto job = std::make_shared<Job>();
    job->items = calls;
    job->trammel = [=] {
        double sum = 0.0;
        for (std::size_t i = 0; i < calls; ++i) {
            sum += ours(i);
        }
        return sum;
    };
    job->plain = [=] {
        double sum = 0.0;
        for (std::size_t i = 0; i < calls; ++i) {
            sum += plainly(i);
        }
        return sum;
    };
    job->counters = counters;
    return job;
}

/// A job on every item of an input: ours(item, point) and plainly(item, point) return a number.
template <class Input, class Ours, class Plainly>
std::shared_ptr<Job> JobOnEach(std::shared_ptr<Input> const& data, double target, Ours ours,
                               Plainly plainly) {
    return JobOf(
        data->ours.size(), Target(target),
        [=](std::size_t i) { return ours(data->ours[i], data->points[i]); },
        [=](std::size_t i) { return plainly(data->plainly[i], data->plainPoints[i]); });
}

// ------------------------------------------------------------------------------------------------
// Curves

/// Curves and a point near each, in both forms.
struct CurveInput {
    std::vector<CBezier> const& ours;
    std::vector<TPoint<double>> points;
    plain::CurveList plainly;
    std::vector<plain::Pt> plainPoints;

    explicit CurveInput(inputs::Set set)
        : ours(inputs::Curves(set)), points(inputs::PointsInBoxes(ours)),
          plainPoints(ToPlain(points)) {
        for (CBezier const& c : ours) {
            plainly.Add(ToPlain(c.P0), ToPlain(c.P1), ToPlain(c.P2), ToPlain(c.P3));
        }
    }
};

typedef std::function<truth::Errors(CurveInput const&)> ErrorsOf;

/// A job on every curve: ours(curve, point) and plainly(curve, point) return a number; `errors`
/// tells how far the answers are off.
template <class Ours, class Plainly>
void OnCurves(std::string const& work, std::string const& input, inputs::Set set, double target,
              Ours ours, Plainly plainly, ErrorsOf const& errors = {}) {
    compare::Register(work, input, [=] {
        auto const data = Kept<CurveInput>(set);
        auto job = JobOnEach(data, target, ours, plainly);
        if (errors) {
            job->Add(errors(*data));
        }
        return job;
    });
}

void RegisterFlatten(std::string const& work, std::string const& input, inputs::Set set,
                     double error, double target) {
    OnCurves(
        work, input, set, target,
        [=](CBezier const& curve, TPoint<double> const&) {
            TPolygon<double> polygon;
            curve.Flatten(polygon, error);
            long const last = polygon.LastIndex();
            return static_cast<double>(last) + polygon.GetPt(last / 2).h;
        },
        [=](plain::Bezier const& curve, plain::Pt const&) {
            plain::Polygon polygon;
            plain::Flatten(curve, polygon, error);
            long const last = polygon.LastIndex();
            return static_cast<double>(last) + polygon.GetPt(last / 2).h;
        },
        [=](CurveInput const& data) {
            return truth::OfFlattening(data.ours, [&](std::size_t i) {
                TPolygon<double> polygon;
                data.ours[i].Flatten(polygon, error);
                return compare::Vertices(polygon);
            });
        });
}

/// The targets are for curves of a drawing's size; other inputs are measured without.
void RegisterCurves(std::string const& input, inputs::Set set, bool targets) {
    auto const target = [=](double value) { return targets ? value : 0.0; };
    RegisterFlatten("flatten_0.001", input, set, 0.001, target(9.0));
    RegisterFlatten("flatten_0.1", input, set, 0.1, target(7.0));
    OnCurves(
        "curve_length", input, set, target(11.0),
        [](CBezier const& curve, TPoint<double> const&) { return curve.Length(); },
        [](plain::Bezier const& curve, plain::Pt const&) { return plain::Length(curve); },
        [](CurveInput const& data) {
            return truth::OfLength(data.ours, [&](std::size_t i) { return data.ours[i].Length(); });
        });
    OnCurves(
        "curve_nearest", input, set, target(5.0),
        [](CBezier const& curve, TPoint<double> const& p) {
            return curve.FindTValue(p, 0.001, 0.0, 1.0);
        },
        [](plain::Bezier const& curve, plain::Pt const& p) {
            return plain::FindTValue(curve, p, 0.001, 0.0, 1.0);
        },
        [](CurveInput const& data) {
            return truth::OfNearest(data.ours, data.points, [&](std::size_t i) {
                return data.ours[i].FindTValue(data.points[i], 0.001, 0.0, 1.0);
            });
        });
    OnCurves(
        "curve_fraction_to_parameter", input, set, target(11.0),
        [](CBezier const& curve, TPoint<double> const&) { return curve.PercentT(0.3); },
        [](plain::Bezier const& curve, plain::Pt const&) { return plain::PercentT(curve, 0.3); },
        [](CurveInput const& data) {
            return truth::OfFraction(data.ours, 0.3,
                                     [&](std::size_t i) { return data.ours[i].PercentT(0.3); });
        });
    OnCurves(
        "curve_parameter_to_fraction", input, set, 0.0,
        [](CBezier const& curve, TPoint<double> const&) { return curve.TPercent(0.3); },
        [](plain::Bezier const& curve, plain::Pt const&) { return plain::TPercent(curve, 0.3); });
    OnCurves(
        "curve_hit", input, set, target(4.0),
        [](CBezier const& curve, TPoint<double> const& p) {
            return curve.HitTest(p, 0.5) ? 1.0 : 0.0;
        },
        [](plain::Bezier const& curve, plain::Pt const& p) {
            return plain::HitTest(curve, p, 0.5) ? 1.0 : 0.0;
        },
        [](CurveInput const& data) {
            return truth::OfHit(data.ours, data.points, 0.5, [&](std::size_t i) {
                return data.ours[i].HitTest(data.points[i], 0.5);
            });
        });
    OnCurves(
        "curve_in_rectangle", input, set, 0.0,
        [](CBezier curve, TPoint<double> const& p) {
            return curve.Intersects(TRect<double>(p.h, p.v, p.h + 1.0, p.v + 1.0)) ? 1.0 : 0.0;
        },
        [](plain::Bezier const& curve, plain::Pt const& p) {
            return plain::Intersects(curve, plain::Rect(p.h, p.v, p.h + 1.0, p.v + 1.0)) ? 1.0
                                                                                         : 0.0;
        });
}

// ------------------------------------------------------------------------------------------------
// Paths

/// Adds the path that it visits to a list of plain paths.
class PlainBuilder : public CPathActions {
public:
    explicit PlainBuilder(plain::PathList& list) : mList(list) { mList.Begin(); }
    void MoveTo(TPoint<double> const& p) override { mList.MoveTo(ToPlain(p)); }
    void LineTo(TPoint<double> const& p) override { mList.LineTo(ToPlain(p)); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        mList.CurveTo(ToPlain(c1), ToPlain(c2), ToPlain(e));
    }
    void ClosePath() override { mList.ClosePath(); }

private:
    plain::PathList& mList;
};

struct PathInput {
    std::vector<CPath> const& ours;
    std::vector<TPoint<double>> points;
    plain::PathList plainly;
    std::vector<plain::Pt> plainPoints;

    explicit PathInput(inputs::Set set)
        : ours(inputs::Outlines(set)), points(inputs::Points(ours.size(), inputs::Side(set))),
          plainPoints(ToPlain(points)) {
        for (CPath const& path : ours) {
            PlainBuilder builder(plainly);
            path.ForAll(builder);
        }
    }
};

template <class Ours, class Plainly>
void OnPaths(std::string const& work, std::string const& input, inputs::Set set, double target,
             Ours ours, Plainly plainly) {
    compare::Register(work, input,
                      [=] { return JobOnEach(Kept<PathInput>(set), target, ours, plainly); });
}

void RegisterPaths(std::string const& input, inputs::Set set, bool targets) {
    auto const target = [=](double value) { return targets ? value : 0.0; };
    OnPaths(
        "path_length", input, set, target(12.0),
        [](CPath const& path, TPoint<double> const&) { return path.Length(); },
        [](plain::Path const& path, plain::Pt const&) { return plain::Length(path); });
    OnPaths(
        "path_point", input, set, target(17.0),
        [](CPath const& path, TPoint<double> const&) {
            TPoint<double> const p = path.TPt(0.3);
            return p.h + p.v;
        },
        [](plain::Path const& path, plain::Pt const&) {
            plain::Pt const p = plain::TPt(path, 0.3);
            return p.h + p.v;
        });
    OnPaths(
        "path_nearest", input, set, target(20.0),
        [](CPath const& path, TPoint<double> const& p) { return path.FindTValue(p); },
        [](plain::Path const& path, plain::Pt const& p) { return plain::FindTValue(path, p); });
    OnPaths(
        "path_cut", input, set, 0.0,
        [](CPath const& path, TPoint<double> const&) {
            CPath piece;
            path.GetTRange(0.25, 0.75, piece);
            double sum = 0.0;
            for (TPoint<double> const& p : piece.mPts) {
                sum += p.h + p.v;
            }
            return sum;
        },
        [](plain::Path const& path, plain::Pt const&) { return plain::CutSum(path, 0.25, 0.75); });
}

// ------------------------------------------------------------------------------------------------
// Polygons

/// A polygon in all forms, points all over its bounds, and lines across it.
struct PolygonInput {
    std::vector<TPoint<double>> vertices;
    std::vector<TPoint<double>> points;
    std::vector<TLine<double>> lines;
    TPolygon<double> list;
    CFPolygonRef handle{true};
    std::vector<plain::Pt> plainVertices;
    std::vector<plain::Pt> plainPoints;
    std::vector<plain::Line> plainLines;
    plain::Polygon plainList;
    plain::HandlePolygon plainHandle{true};

    explicit PolygonInput(std::vector<TPoint<double>> ring)
        : vertices(std::move(ring)), plainVertices(ToPlain(vertices)) {
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            list.Append(vertices[i], true);
            handle.Append(vertices[i]);
            plainList.Append(plainVertices[i], true);
            plainHandle.Append(plainVertices[i]);
        }
        list.Close();
        plainList.Close();
        points = inputs::PointsOver(vertices, 1000);
        lines = inputs::LinesOver(vertices, 1000);
        plainPoints = ToPlain(points);
        for (TLine<double> const& line : lines) {
            plainLines.emplace_back(ToPlain(line.mStart), ToPlain(line.mEnd));
        }
    }
    PolygonInput(PolygonInput const&) = delete;
    PolygonInput& operator=(PolygonInput const&) = delete;
    ~PolygonInput() {
        handle.Dispose();
        plainHandle.Dispose();
    }
};

typedef std::function<std::vector<TPoint<double>>()> Ring;
typedef std::function<std::shared_ptr<PolygonInput>()> PolygonMaker;

/// A maker that keeps its job.
PolygonMaker Once(Ring const& ring) {
    auto const made = std::make_shared<std::shared_ptr<PolygonInput>>();
    return [=] {
        if (*made == nullptr) {
            *made = std::make_shared<PolygonInput>(ring());
        }
        return *made;
    };
}

/// A job on a polygon: ours(data, k) and plainly(data, k) for k from 0 to count - 1. An item is a
/// call, or a vertex when `perVertex`.
template <class Ours, class Plainly>
void OnPolygon(std::string const& work, std::string const& input, PolygonMaker const& make,
               std::map<std::string, double> const& counters, bool perVertex, std::size_t most,
               Ours ours, Plainly plainly) {
    compare::Register(work, input, [=] {
        auto const data = make();
        std::size_t const vertices = data->vertices.size();
        auto job = JobOf(
            compare::Calls(vertices, most), counters, [=](std::size_t i) { return ours(*data, i); },
            [=](std::size_t i) { return plainly(*data, i); });
        if (perVertex || vertices == 0) {
            job->items *= vertices;
        }
        return job;
    });
}

double Sum(TPoint<double> const& p) { return p.h + p.v; }
double Sum(plain::Pt const& p) { return p.h + p.v; }
double Sum(TRect<double> const& r) { return r.left + r.top + r.right + r.bottom; }
double Sum(plain::Rect const& r) { return r.left + r.top + r.right + r.bottom; }

CMatrix3x3 Turn() { return CMatrix3x3().Rotate(1.0, TPoint<double>(500.0, 500.0)); }

plain::Matrix PlainTurn() {
    CMatrix3x3 const m = Turn();
    return plain::Matrix(m.a, m.b, m.c, m.d, m.tx, m.ty);
}

void RegisterContains(std::string const& input, PolygonMaker const& make, double target) {
    OnPolygon(
        "contains", input, make, Target(target), false, 1000,
        [](PolygonInput& data, std::size_t i) {
            return data.list.Contains(data.points[i]) ? 1.0 : 0.0;
        },
        [](PolygonInput& data, std::size_t i) {
            return data.plainList.Contains(data.plainPoints[i]) ? 1.0 : 0.0;
        });
    OnPolygon(
        "contains_handle", input, make, Target(target), false, 1000,
        [](PolygonInput& data, std::size_t i) {
            return data.handle.Contains(data.points[i]) ? 1.0 : 0.0;
        },
        [](PolygonInput& data, std::size_t i) {
            return data.plainHandle.Contains(data.plainPoints[i]) ? 1.0 : 0.0;
        });
}

void RegisterLoops(std::string const& input, PolygonMaker const& make, bool large) {
    OnPolygon(
        "bounds", input, make, Target(large ? 12.0 : 0.0), true, 1000,
        [](PolygonInput& data, std::size_t) {
            data.list.InvalBounds();
            return Sum(data.list.Bounds());
        },
        [](PolygonInput& data, std::size_t) {
            data.plainList.InvalBounds();
            return Sum(data.plainList.Bounds());
        });
    OnPolygon(
        "bounds_handle", input, make, Target(large ? 12.0 : 0.0), true, 1000,
        [](PolygonInput& data, std::size_t) {
            data.handle.InvalBounds();
            return Sum(data.handle.Bounds());
        },
        [](PolygonInput& data, std::size_t) {
            data.plainHandle.InvalBounds();
            return Sum(data.plainHandle.Bounds());
        });
    OnPolygon(
        "polygon_length", input, make, Target(0.0), true, 1000,
        [](PolygonInput& data, std::size_t) { return data.list.Length(); },
        [](PolygonInput& data, std::size_t) { return data.plainList.Length(); });
}

/// These change the polygons, each in the same way, so they have polygons of their own. The number
/// of passes is not the same for both, so their results do not agree after the first.
void RegisterTransforms(std::string const& input, Ring const& ring, bool large) {
    OnPolygon(
        "transform", input, Once(ring), Target(large ? 40.0 : 0.0), true, 1000,
        [m = Turn()](PolygonInput& data, std::size_t) {
            data.list.Transform(m);
            return Sum(data.list.GetPt(0));
        },
        [m = PlainTurn()](PolygonInput& data, std::size_t) {
            data.plainList.Transform(m);
            return Sum(data.plainList.GetPt(0));
        });
    OnPolygon(
        "offset_handle", input, Once(ring), Target(0.0), true, 1000,
        [](PolygonInput& data, std::size_t i) {
            data.handle.Offset(i % 2 == 0 ? TPoint<double>(0.5, 0.25)
                                          : TPoint<double>(-0.5, -0.25));
            return Sum(data.handle.PolyPoints(0));
        },
        [](PolygonInput& data, std::size_t i) {
            data.plainHandle.Offset(i % 2 == 0 ? plain::Pt(0.5, 0.25) : plain::Pt(-0.5, -0.25));
            return Sum(data.plainHandle.PolyPoints(0));
        });
}

void RegisterClip(std::string const& input, PolygonMaker const& make, double target) {
    OnPolygon(
        "clip_segment", input, make, Target(target), false, 100,
        [](PolygonInput& data, std::size_t i) {
            double sum = 0.0;
            for (TLine<double> const& piece : data.list.Clip(data.lines[i])) {
                sum += Sum(piece.mStart) + Sum(piece.mEnd);
            }
            return sum;
        },
        [](PolygonInput& data, std::size_t i) {
            double sum = 0.0;
            for (plain::Line const& piece : data.plainList.Clip(data.plainLines[i])) {
                sum += Sum(piece.mStart) + Sum(piece.mEnd);
            }
            return sum;
        });
}

void RegisterPointByTable(std::string const& input, PolygonMaker const& make) {
    compare::Register("polygon_point_by_table", input, [=] {
        auto const data = make();
        auto const table = std::make_shared<std::vector<double>>();
        BuildLTable<double>(data->list, *table);
        auto const plainTable = std::make_shared<std::vector<double>>();
        plain::BuildLTable(data->plainList, *plainTable);
        auto const fraction = [](std::size_t i) {
            return 0.001 * static_cast<double>((i * 617) % 1000);
        };
        return JobOf(
            1000, {}, [=](std::size_t i) { return Sum(data->list.TPt(fraction(i), table.get())); },
            [=](std::size_t i) { return Sum(data->plainList.TPt(fraction(i), plainTable.get())); });
    });
}

void RegisterAppend(std::string const& input, PolygonMaker const& make) {
    std::map<std::string, double> const limit = {{"limit", 5.0}};
    OnPolygon(
        "append_list", input, make, limit, true, 100,
        [](PolygonInput& data, std::size_t) {
            TPolygon<double> polygon;
            for (TPoint<double> const& p : data.vertices) {
                polygon.Append(p, true);
            }
            return Sum(polygon.GetPt(polygon.LastIndex()));
        },
        [](PolygonInput& data, std::size_t) {
            plain::Polygon polygon;
            for (plain::Pt const& p : data.plainVertices) {
                polygon.Append(p, true);
            }
            return Sum(polygon.GetPt(polygon.LastIndex()));
        });
    OnPolygon(
        "append_unique_list", input, make, limit, true, 100,
        [](PolygonInput& data, std::size_t) {
            TPolygon<double> polygon;
            for (TPoint<double> const& p : data.vertices) {
                polygon.AppendUnique(p);
            }
            return Sum(polygon.GetPt(polygon.LastIndex()));
        },
        [](PolygonInput& data, std::size_t) {
            plain::Polygon polygon;
            for (plain::Pt const& p : data.plainVertices) {
                polygon.AppendUnique(p);
            }
            return Sum(polygon.GetPt(polygon.LastIndex()));
        });
    OnPolygon(
        "append_handle", input, make, limit, true, 100,
        [](PolygonInput& data, std::size_t) {
            CFPolygonRef polygon(true);
            for (TPoint<double> const& p : data.vertices) {
                polygon.Append(p);
            }
            double const sum = Sum(polygon.PolyPoints(polygon.LastIndex()));
            polygon.Dispose();
            return sum;
        },
        [](PolygonInput& data, std::size_t) {
            plain::HandlePolygon polygon(true);
            for (plain::Pt const& p : data.plainVertices) {
                polygon.Append(p);
            }
            double const sum = Sum(polygon.PolyPoints(polygon.LastIndex()));
            polygon.Dispose();
            return sum;
        });
    OnPolygon(
        "build_path_lines", input, make, {{"limit", 10.0}}, true, 100,
        [](PolygonInput& data, std::size_t) {
            CPath path;
            for (TPoint<double> const& p : data.vertices) {
                path.LineTo(p);
            }
            return static_cast<double>(path.mPts.size());
        },
        [](PolygonInput& data, std::size_t) {
            plain::PathList list;
            list.Begin();
            for (plain::Pt const& p : data.plainVertices) {
                list.LineTo(p);
            }
            return static_cast<double>(plain::PointCount(list[0]));
        });
    // Here an element is one of four: a move or line, a line, a curve of three points, a close.
    OnPolygon(
        "build_path_curves", input, make, {{"limit", 10.0}}, true, 100,
        [](PolygonInput& data, std::size_t) {
            CPath path;
            auto const& p = data.vertices;
            for (std::size_t i = 0; i + 4 < p.size(); i += 4) {
                path.LineTo(p[i]);
                path.LineTo(p[i + 1]);
                path.CurveTo(p[i + 2], p[i + 3], p[i + 4]);
                path.ClosePath();
            }
            return static_cast<double>(path.mPts.size());
        },
        [](PolygonInput& data, std::size_t) {
            plain::PathList list;
            list.Begin();
            auto const& p = data.plainVertices;
            for (std::size_t i = 0; i + 4 < p.size(); i += 4) {
                list.LineTo(p[i]);
                list.LineTo(p[i + 1]);
                list.CurveTo(p[i + 2], p[i + 3], p[i + 4]);
                list.ClosePath();
            }
            return static_cast<double>(plain::PointCount(list[0]));
        });
}

bool RegisterAll() {
    RegisterCurves("drawing", inputs::Set::kDrawing, true);
    RegisterCurves("glyphs_truetype", inputs::Set::kTrueType, false);
    RegisterCurves("glyphs_cff", inputs::Set::kCff, false);
    RegisterCurves("icons", inputs::Set::kIcons, false);
    RegisterCurves("large", inputs::Set::kRandom, false);
    RegisterPaths("glyphs_cff", inputs::Set::kCff, true);
    RegisterPaths("poster_cff", inputs::Set::kPoster, true);
    RegisterPaths("drawing", inputs::Set::kDrawing, true);
    RegisterPaths("glyphs_truetype", inputs::Set::kTrueType, false);
    RegisterPaths("icons", inputs::Set::kIcons, false);
    RegisterPaths("outline_1000", inputs::Set::kLong, false);

    for (std::size_t const count : {10, 1000, 100000}) {
        std::string const input = std::to_string(count);
        Ring const star = [=] { return inputs::Star(count); };
        PolygonMaker const make = Once(star);
        RegisterContains(input, make, count < 1000 ? 10.0 : 24.0);
        RegisterLoops(input, make, count >= 1000);
        RegisterTransforms(input, star, count >= 1000);
        if (count <= 1000) {
            RegisterClip(input, make, count < 1000 ? 0.0 : 20.0);
        }
        RegisterPointByTable(input, make);
        if (count >= 1000) {
            RegisterAppend(input, make);
        }
    }
    for (std::size_t const count : {1000, 10000}) {
        PolygonMaker const make = Once([=] { return inputs::Country(count); });
        RegisterContains("country_" + std::to_string(count), make, 24.0);
        RegisterClip("country_" + std::to_string(count), make, 0.0);
    }
    return true;
}

[[maybe_unused]] bool const kRegistered = RegisterAll();

} // namespace
