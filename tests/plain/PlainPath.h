// SPDX-License-Identifier: MIT

// A path's algorithms step by step, written to be read: one walk for each question, every curve
// measured anew each time. Tests compare the library with them bit for bit.
//
// They serve consistent paths only (as many points as the codes take), and pass over unknown codes.

#ifndef TRAMMEL_PLAINPATH_H
#define TRAMMEL_PLAINPATH_H

#include "plain/PlainBezier.h"

#include <cstdlib>
#include <functional>
#include <vector>

namespace plain {

struct Path {
    std::vector<char> codes;
    std::vector<Pt> pts;
    Pt current;
    bool open = false;
    Rect bounds;

    // Building

    void Clear() { *this = Path(); }

    void AddPt(Pt const& p) {
        pts.push_back(p);
        current = p;
        bounds |= p;
    }

    void MoveTo(Pt const& p) {
        if (!codes.empty() && codes.back() == 0) {
            codes.pop_back();
            pts.pop_back();
        }
        codes.push_back(0);
        AddPt(p);
        open = true;
    }

    void LineTo(Pt const& p) {
        if (!open) {
            MoveTo(p);
        } else if (p != current) {
            codes.push_back(1);
            AddPt(p);
        }
    }

    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) {
        if (!open || e != current) {
            codes.push_back(2);
            AddPt(c1);
            AddPt(c2);
            AddPt(e);
        }
    }

    void ClosePath() {
        if (open) {
            codes.push_back(3);
        }
        open = false;
    }

    static Pt UnitPt(double angle) {
        if (angle == 0.0) {
            return Pt(1.0, 0.0);
        }
        if (angle == pi) {
            return Pt(-1.0, 0.0);
        }
        if (std::abs(angle) == pi / 2.0) {
            return Pt(0.0, angle < 0.0 ? -1.0 : 1.0);
        }
        return Pt(std::cos(angle), std::sin(angle));
    }

    void Arc(Pt const& centre, double hRadius, double vRadius, double startAngle, double sweep) {
        auto const map = [&](Pt const& p) {
            return Pt(p.h * hRadius + centre.h, p.v * vRadius + centre.v);
        };
        double const maxStep = 90.0 * pi / 180.0;
        int const n = std::abs(static_cast<int>(std::trunc(sweep / maxStep))) + 1;
        double const step = sweep / n;
        double const half = step / 2.0;
        double const k = 1.0 / std::cos(half);
        double f = 0.0;
        Pt s = UnitPt(startAngle);
        LineTo(map(s));
        double a = startAngle;
        for (int i = 0; i < n; ++i) {
            Pt const e = UnitPt(a + step);
            Pt const t = UnitPt(a + half) * k;
            if (f == 0.0) {
                Pt const d = t - s;
                double const length = std::sqrt(d.h * d.h + d.v * d.v);
                f = 1.3333333333333333 / (std::sqrt(length * length + 1.0) + 1.0);
            }
            Pt const c1 = s + (t - s) * f;
            Pt const c2 = e + (t - e) * f;
            s = e;
            CurveTo(map(c1), map(c2), map(e));
            a = a + step;
        }
    }

    /// Takes a copy: a path may be appended to itself.
    void Append(Path other) {
        std::vector<char> kept;
        for (char const code : codes) {
            if (code != 3) {
                kept.push_back(code);
            }
        }
        codes = kept;
        std::size_t at = 0;
        for (char const code : other.codes) {
            if (code == 0 || code == 1) {
                LineTo(other.pts[at]);
                at += 1;
            } else if (code == 2) {
                CurveTo(other.pts[at], other.pts[at + 1], other.pts[at + 2]);
                at += 3;
            }
        }
    }

    // Measuring

    /// Calls onLine(from, to) and onCurve(curve) for the segments, which return true to stop;
    /// returns the start of the last subpath walked.
    Pt Walk(std::function<bool(Pt const&, Pt const&)> const& onLine,
            std::function<bool(Bezier const&)> const& onCurve) const {
        Pt start;
        Pt cur;
        std::size_t at = 0;
        for (char const code : codes) {
            bool stop = false;
            if (code == 0) {
                start = cur = pts[at];
                at += 1;
            } else if (code == 1) {
                stop = onLine(cur, pts[at]);
                cur = pts[at];
                at += 1;
            } else if (code == 2) {
                stop = onCurve(Bezier{cur, pts[at], pts[at + 1], pts[at + 2]});
                cur = pts[at + 2];
                at += 3;
            } else if (code == 3) {
                stop = onLine(cur, start);
            }
            if (stop) {
                break;
            }
        }
        return start;
    }

    double Length() const {
        double length = 0.0;
        Walk(
            [&](Pt const& a, Pt const& b) {
                length += LineLength(a, b);
                return false;
            },
            [&](Bezier const& c) {
                length += c.Length();
                return false;
            });
        return length;
    }

    Pt TPt(double t) const {
        double const target = t * Length();
        double running = 0.0;
        bool found = false;
        Pt result;
        Pt const start = Walk(
            [&](Pt const& a, Pt const& b) {
                double const segLen = LineLength(a, b);
                double const prev = running;
                running += segLen;
                found = target <= running;
                if (found) {
                    result = LinePt(a, b, (target - prev) / segLen);
                }
                return found;
            },
            [&](Bezier const& c) {
                double const segLen = c.Length();
                double const prev = running;
                running += segLen;
                found = target <= running;
                if (found) {
                    result = c.TPt(c.PercentT((target - prev) / segLen));
                }
                return found;
            });
        return found ? result : start;
    }

    double FindTValue(Pt const& p) const {
        double best = std::numeric_limits<double>::max();
        double result = 0.0;
        double const total = Length();
        double running = 0.0;
        Walk(
            [&](Pt const& a, Pt const& b) {
                Pt const q = LinePt(a, b, LineTValue(a, b, p));
                double const d = LineLength(p, q);
                if (d < best) {
                    best = d;
                    result = (running + LineLength(a, q)) / total;
                }
                running += LineLength(a, b);
                return false;
            },
            [&](Bezier const& c) {
                double const u = c.FindTValue(p, 0.001, 0.0, 1.0);
                double const d = LineLength(p, c.TPt(u));
                if (d <= best) {
                    best = d;
                    Bezier left;
                    Bezier right;
                    c.Divide(left, right, u);
                    result = (running + left.Length()) / total;
                }
                running += c.Length();
                return false;
            });
        return result;
    }

    void GetTRange(double t0, double t1, Path& out) const {
        double const total = Length();
        double const startLen = t0 * total;
        double const endLen = t1 * total;
        double running = 0.0;
        out.MoveTo(TPt(t0));
        Walk(
            [&](Pt const& a, Pt const& b) {
                running += LineLength(a, b);
                if (startLen < running) {
                    if (endLen <= running) {
                        out.LineTo(TPt(t1));
                        return true;
                    }
                    out.LineTo(b);
                }
                return false;
            },
            [&](Bezier const& c) {
                double const prev = running;
                double const curveLen = c.Length();
                running += curveLen;
                if (startLen < running) {
                    if (endLen < prev) {
                        return true;
                    }
                    double const u0 =
                        prev < startLen ? c.PercentT((startLen - prev) / curveLen) : 0.0;
                    double const u1 =
                        endLen < running ? c.PercentT((endLen - prev) / curveLen) : 1.0;
                    Bezier const piece = c.GetTRange(u0, u1);
                    out.CurveTo(piece.p1, piece.p2, piece.p3);
                }
                return false;
            });
    }

    bool Closed() const { return std::find(codes.begin(), codes.end(), 3) != codes.end(); }

    void RemoveTRange(double t0, double t1, Path& outA, Path& outB) const {
        if (t1 < t0) {
            GetTRange(t1, t0, outA);
        } else if (Closed()) {
            GetTRange(0.0, t0, outB);
            GetTRange(t1, 1.0, outA);
            outA.Append(outB);
            outB.Clear();
        } else {
            GetTRange(0.0, t0, outA);
            GetTRange(t1, 1.0, outB);
        }
    }
};

} // namespace plain

#endif
