#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of how exact the figures are: each is compared with one that the test works out itself, by
quadrature, by the roots of derivatives or by dense sampling. The curves are such on which subdivision
up to a limit goes wrong."""

import json
import math
import os
import re
import unittest

from support import AppTest, font_bytes, svg

# The middle of the S lies on its chord.
S = ((0, 0), (300, 550), (314, -550), (614, 0))
LOOP = ((10, 10), (150, 90), (-40, 95), (95, 5))
CUSP = ((0, 0), (100, 100), (0, 100), (100, 0))
# The middle of one half lies on that half's chord, which halving takes for the whole half.
BEND = ((0, 0), (-300, 420), (60, -380), (614, 0))
CURVES = {"s": S, "bend": BEND, "loop": LOOP, "cusp": CUSP}

BREEZE = "/usr/share/icons/breeze/"
# Icons with outlines whose classic length is off by 5 %, or whose control points lie far outside.
HARD_ICONS = ("emotes/22/face-in-love.svg", "apps/48/kteatime.svg", "apps/48/claws-mail.svg")


def at(curve, t):
    """The point of a cubic curve at a parameter."""
    u = 1 - t
    return tuple(u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d
                 for a, b, c, d in zip(*curve))


def speed(curve, t):
    u = 1 - t
    return math.hypot(*(3 * (u * u * (b - a) + 2 * u * t * (c - b) + t * t * (d - c))
                        for a, b, c, d in zip(*curve)))


def length(curve, begin=0.0, end=1.0, steps=20000):
    """The arc length by the midpoint rule, whose error is far below 1e-4 of a digit printed."""
    h = (end - begin) / steps
    return math.fsum(speed(curve, begin + (i + 0.5) * h) for i in range(steps)) * h


def bounds(curve):
    """The bounds of a curve, from the zeros of its derivatives."""
    sides = []
    for a, b, c, d in zip(*curve):
        p, q, r = b - a, c - b, d - c
        x, y, z = p - 2 * q + r, q - p, p
        roots = []
        if x != 0:
            inside = y * y - x * z
            if inside >= 0:
                roots = [(-y + sign * math.sqrt(inside)) / x for sign in (-1, 1)]
        elif y != 0:
            roots = [-z / (2 * y)]
        values = [a, d] + [(1 - t) ** 3 * a + 3 * (1 - t) ** 2 * t * b + 3 * (1 - t) * t * t * c +
                           t ** 3 * d for t in roots if 0 < t < 1]
        sides.append((min(values), max(values)))
    return [sides[0][0], sides[1][0], sides[0][1], sides[1][1]]


def distance_to_segment(p, a, b):
    d = (b[0] - a[0], b[1] - a[1])
    square = d[0] * d[0] + d[1] * d[1]
    t = 0.0
    if square > 0:
        t = max(0.0, min(1.0, ((p[0] - a[0]) * d[0] + (p[1] - a[1]) * d[1]) / square))
    return math.hypot(p[0] - a[0] - t * d[0], p[1] - a[1] - t * d[1])


def path_text(curve):
    return "M{0} {1}C{2} {3} {4} {5} {6} {7}".format(*(x for p in curve for x in p))


def curves_of(text):
    """The segments of a path text of moves, lines, curves and closes, each as a cubic curve."""
    curves = []
    here = start = (0.0, 0.0)
    for command, rest in re.findall(r"([mMlLcCzZ])([^mMlLcCzZ]*)", text):
        numbers = [float(x) for x in re.findall(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?", rest)]
        points = list(zip(numbers[::2], numbers[1::2]))
        if command in "zZ":
            curves.append((here, here, start, start))
            here = start
        size = 3 if command in "cC" else 1
        for i in range(0, len(points), size):
            origin = here if command.islower() else (0.0, 0.0)
            part = [(origin[0] + p[0], origin[1] + p[1]) for p in points[i : i + size]]
            if command in "mM" and i == 0:
                start = part[0]
            else:
                curves.append((here, *part) if size == 3 else (here, here, part[0], part[0]))
            here = part[-1]
    return curves


class Accuracy(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("curves.svg", svg("".join(
            f'<path id="{name}" d="{path_text(curve)}"/>' for name, curve in CURVES.items())))

    def test_lengths_and_bounds_are_right_to_the_digits_printed(self):
        data = self.run_json("measure", self.file)
        for outline in data["files"][0]["outlines"]:
            curve = CURVES[outline["id"]]
            with self.subTest(outline["id"]):
                self.assertLess(outline["accuracy"], 1e-7)
                self.assertLess(abs(outline["length"] - length(curve)), 1e-4 * outline["length"]
                                if outline["id"] == "cusp" else 1e-5)
                self.assertBox(outline["bounds"], bounds(curve), outline["accuracy"])
        text = self.run_text("measure", self.file, "--id", "s")
        self.assertIn("length " + f"{length(S, steps=200000):.8g},", text)

    def test_arcs_of_any_size_are_right_to_the_digits_printed(self):
        for size in (1e-150, 1e-9, 1.0, 1e9, 1e150, 1e200, 1e300):
            with self.subTest(size):
                arc = self.measure(svg(f'<path id="a" d="M{size} 0A{size} {size} 0 0 1 0 {size}Z"/>'))["a"]
                self.assertGreater(arc["accuracy"], 0)
                self.assertLess(arc["accuracy"], 1e-6 * size)
                off = abs(arc["length"] - (math.pi / 2 + math.sqrt(2)) * size)
                self.assertLess(off, arc["accuracy"])

    @unittest.skipUnless(os.path.isdir(BREEZE + "emotes"), "no icons: apt-get install breeze-icon-theme")
    def test_hard_outlines_of_real_icons_are_right_to_the_digits_printed(self):
        texts = {}
        for name in HARD_ICONS:
            with open(BREEZE + name, encoding="utf-8") as file:
                for text in re.findall(r'\sd="([^"]+)"', file.read()):
                    if not re.search("[^mMlLcCzZeE0-9.,+\\s-]", text):
                        texts[f"p{len(texts)}"] = text
        file = self.write("real.svg", svg("".join(
            f'<path id="{name}" d="{text}"/>' for name, text in texts.items())))
        exact, classic = ({o["id"]: o for o in self.run_json("measure", file, *more)["files"][0]["outlines"]}
                          for more in ([], ["--classic"]))
        worst = [0.0, 0.0]
        for name, outline in exact.items():
            curves = curves_of(texts[name])
            boxes = [bounds(curve) for curve in curves]
            right = [least(side) for least, side in zip((min, min, max, max), zip(*boxes))]
            size = max(right[2] - right[0], right[3] - right[1])
            total = math.fsum(length(curve, steps=400) for curve in curves)
            with self.subTest(texts[name]):
                self.assertLess(abs(outline["length"] - total), 1e-5 * total)
                self.assertBox(outline["bounds"], right, outline["accuracy"])
            worst[0] = max(worst[0], abs(classic[name]["length"] / total - 1))
            worst[1] = max(worst[1], *(abs(a - b) / size for a, b in zip(classic[name]["bounds"], right)))
        self.assertGreater(worst[0], 0.01)
        self.assertGreater(worst[1], 0.15)

    def test_an_accuracy_can_be_asked_for(self):
        data = self.run_json("measure", self.file, "--id", "s", "--accuracy", "0.01")
        outline = data["files"][0]["outlines"][0]
        self.assertEqual(outline["accuracy"], 0.01)
        self.assertEqual(outline["length"], round(length(S), 2))
        self.fails("measure", self.file, "--accuracy", "0", names=["--accuracy"])
        self.fails("point", self.file, "--at", "0", "--accuracy", "x", names=["--accuracy"])

    def test_classic_figures_are_still_there(self):
        exact = self.run_json("measure", self.file, "--id", "s")
        classic = self.run_json("measure", self.file, "--id", "s", "--classic")
        self.assertTrue(classic["files"][0]["classic"])
        self.assertNotIn("classic", exact["files"][0])
        outline = classic["files"][0]["outlines"][0]
        self.assertNotIn("accuracy", outline)
        self.assertGreater(abs(outline["length"] - length(S)), 1e-5)
        # The path's own bounds hold the control points, and forget one at the origin.
        self.assertEqual(outline["bounds"], [300, -550, 614, 550])
        found = [self.run_json("nearest", self.file, "--id", "s", "--to", "150,240", *more)
                 ["nearest"][0] for more in ([], ["--classic"])]
        self.assertNotEqual(found[0]["distance"], found[1]["distance"])
        self.assertAlmostEqual(found[0]["distance"], found[1]["distance"], 2)
        points = [self.run_json("point", self.file, "--id", "s", "--at", "0.3", *more)
                  ["outlines"][0]["points"][0]["point"] for more in ([], ["--classic"])]
        self.assertNotEqual(points[0], points[1])
        self.assertBox(points[0], points[1], 0.5)
        self.run_text("flatten", self.file, "--error", "1", "--classic", "-o",
                      self.path("flat.svg"))
        self.assertGreater(self.deviation(BEND, self.flat_points("flat.svg")["bend"]), 50)
        hit = self.run_json("hit", self.file, "--id", "s", "--at", "307,0", "--classic")
        self.assertEqual(list(hit["points"][0]["hits"][0]), ["id", "inside", "onOutline"])
        self.fails("measure", self.file, "--classic", "--accuracy", "1", names=["--accuracy"])

    def test_a_flattened_curve_stays_within_its_error(self):
        self.run_text("flatten", self.file, "--error", "1", "-o", self.path("flat.svg"))
        flat = self.flat_points("flat.svg")
        for name, curve in CURVES.items():
            with self.subTest(name):
                points = flat[name]
                self.assertLessEqual(self.deviation(curve, points), 1)
                samples = [at(curve, i / 2000) for i in range(2001)]
                for a, b in zip(points, points[1:]):
                    for i in range(5):
                        p = (a[0] + (b[0] - a[0]) * i / 4, a[1] + (b[1] - a[1]) * i / 4)
                        nearest = min(math.hypot(p[0] - q[0], p[1] - q[1]) for q in samples)
                        self.assertLess(nearest, 1 + 0.5)  # samples are apart

    def deviation(self, curve, points):
        """How far the curve is from the polyline, at the samples that are farthest."""
        return max(min(distance_to_segment(at(curve, i / 1000), a, b)
                       for a, b in zip(points, points[1:])) for i in range(1001))

    def flat_points(self, name):
        """The vertices of each outline of a file of lines."""
        data = self.run_json("polygons", self.path(name), "--describe")
        return {outline["id"]: [tuple(map(float, line.split(", "))) for line in
                                outline["polygons"][0]["description"].split("\n") if line]
                for outline in data["outlines"]}

    ROUNDS = {  # outlines with their lengths and areas
        "circle": ('<circle id="o" r="7"/>', 14 * math.pi, 49 * math.pi),
        "halves": ('<path id="o" d="M.1.1a5 5 0 1 0 10 0 5 5 0 1 0-10 0z"/>', 10 * math.pi,
                   25 * math.pi),
        "corners": ('<rect id="o" x="3" width="30" height="20" rx="2"/>', 84 + 4 * math.pi,
                    584 + 4 * math.pi),
        "turned": ('<path id="o" transform="rotate(30)scale(2)" d="M0 3V-3A3 3 0 0 1 0 3z"/>',
                   12 + 6 * math.pi, 18 * math.pi),
        "many": ('<path id="o" d="M0 0' + "a1 1 0 0 1 2 0" * 50 + '"/>', 50 * math.pi, None),
    }

    def test_circles_and_arcs_are_as_exact_as_is_asked_for(self):
        for name, (body, length, area) in self.ROUNDS.items():
            elements = []
            for asked in ("0.01", "1e-7", None):
                more = ["--accuracy", asked] if asked else []
                file = self.write(name + ".svg", svg(body))
                with self.subTest((name, asked)):
                    data = self.run_json("measure", file, *more)
                    outline = data["files"][0]["outlines"][0]
                    accuracy = outline["accuracy"]
                    self.assertLessEqual(accuracy, float(asked) if asked else 1e-7 * length)
                    self.assertLessEqual(abs(outline["length"] - length), accuracy)
                    elements.append(outline["elements"])
                    if area is not None:
                        found = self.run_json("area", file, *more)["outlines"][0]
                        self.assertLessEqual(found["accuracy"], float(asked) if asked
                                             else 1e-6 * area)
                        self.assertLessEqual(abs(found["area"] - area), found["accuracy"])
            self.assertLess(elements[0], elements[1])
        # No more curves than that needs.
        file = self.write("c.svg", svg('<circle r="7"/>'))
        counts = [self.run_json("measure", file, *more)["files"][0]["outlines"][0]["elements"] - 2
                  for more in (["--accuracy", "0.1"], [], ["--accuracy", "1e-99"])]
        self.assertEqual(counts, [4, 28, 416])

    def test_places_on_a_circle_are_right_to_the_digits_printed(self):
        file = self.write("c.svg", svg('<circle transform="translate(3 4)" r="7"/>'))
        fractions = [i / 37 for i in range(38)]
        for more in ([], ["--accuracy", "1e-11"], ["--accuracy", "0.001"]):
            result = self.run_json("point", file, "--at", ",".join(map(repr, fractions)), *more)
            outline = result["outlines"][0]
            for place in outline["points"]:
                angle = 2 * math.pi * place["at"]
                self.assertBox(place["point"], [3 + 7 * math.cos(angle), 4 + 7 * math.sin(angle)],
                               outline["accuracy"])
                digits = 1e-6 if not more else float(more[1]) * 10
                self.assertBox(place["direction"], [-math.sin(angle), math.cos(angle)], digits)
            found = self.run_json("nearest", file, "--to", "30,31", *more)["nearest"][0]
            self.assertBox(found["point"], [3 + 7 / math.sqrt(2), 4 + 7 / math.sqrt(2)],
                           found["accuracy"])
            self.assertLessEqual(abs(found["distance"] - (27 * math.sqrt(2) - 7)),
                                 found["accuracy"])
            hit = self.run_json("hit", file, "--at", "3,4", *more)["points"][0]["hits"][0]
            self.assertLessEqual(abs(hit["distance"] - 7), hit["accuracy"])

    def test_an_accuracy_in_millimetres_is_kept(self):
        file = self.write("page.svg", svg('<circle id="o" r="7"/>',
                                          'viewBox="0 0 100 100" width="1m" height="1m"'
                                          .replace("1m", "10mm")))
        for asked in (1e-2, 1e-6, 1e-10):
            data = self.run_json("measure", file, "--unit", "mm", "--accuracy", repr(asked))
            outline = data["files"][0]["outlines"][0]
            self.assertEqual(outline["accuracy"], asked)
            self.assertLessEqual(abs(outline["length"] - 1.4 * math.pi), asked)

    def test_written_curves_are_few_or_as_near_as_is_asked_for(self):
        file = self.write("c.svg", svg('<circle id="o" r="1"/>'))
        curves = []
        for more in ([], ["--accuracy", "0.01"], ["--accuracy", "1e-9"]):
            self.run_text("transform", file, "--scale", "3", "--coordinates", *more, "-o",
                          self.path("out.svg"))
            curves.append(self.path_data("out.svg")["o"].upper().count("C") and
                          self.measure_file("out.svg")["o"]["elements"] - 2)
        self.assertEqual(curves, [8, 4, 36])
        self.fails("cut", file, "--from", "0", "--to", "0.5", "--accuracy", "0", "-o",
                   self.path("out.svg"), names=["--accuracy"])

    def test_places_follow_the_length(self):
        fractions = [i / 200 for i in range(201)]
        result = self.run_json("point", self.file, "--id", "s", "--at",
                               ",".join(map(repr, fractions)))["outlines"][0]
        points = [p["point"] for p in result["points"]]
        total = result["length"]
        self.assertEqual(points[0], [0, 0])
        self.assertEqual(points[-1], [614, 0])
        for before, after in zip(points, points[1:]):
            step = math.hypot(after[0] - before[0], after[1] - before[1])
            self.assertLessEqual(step, total / 200 * (1 + 1e-9))
            self.assertGreater(step, total / 200 * 0.98)
        # The middle of the S is its middle by length, too.
        self.assertBox(points[100], [307, 0], 1e-9)

    def test_the_end_of_a_path_is_its_end(self):
        below = math.nextafter(1.0, 0.0)
        points = self.run_json("point", self.file, "--id", "s", "--at", f"1,{below!r}")
        for place in points["outlines"][0]["points"]:
            self.assertBox(place["point"], [614, 0], 1e-9)

    def test_hit_agrees_with_nearest(self):
        # A point beside the S, 0.57 away at a right angle.
        t = 0.3
        p = at(S, t)
        ahead, behind = at(S, t + 1e-6), at(S, t - 1e-6)
        d = (ahead[0] - behind[0], ahead[1] - behind[1])
        size = math.hypot(*d)
        point = f"{p[0] - d[1] / size * 0.57!r},{p[1] + d[0] / size * 0.57!r}"
        found = self.run_json("nearest", self.file, "--id", "s", "--to", point)["nearest"][0]
        self.assertAlmostEqual(found["distance"], 0.57, 8)
        self.assertAlmostEqual(found["fraction"], length(S, 0, t) / length(S), 6)
        hits = {tolerance: self.run_json("hit", self.file, "--id", "s", "--at", point,
                                         "--tolerance", tolerance)["points"][0]["hits"]
                for tolerance in ("0.5", "0.7")}
        self.assertTrue(all(not hit["onOutline"] for hit in hits["0.5"]))
        self.assertTrue(hits["0.7"][0]["onOutline"])
        self.assertEqual(hits["0.7"][0]["distance"], found["distance"])

    def test_a_vertex_at_the_origin_is_like_any_other(self):
        for shift in (0, 7):
            body = f'<path id="p" d="M{shift} {shift}h10v10h-10z"/>'
            file = self.write("square.svg", svg(body))
            for h, v, inside in ((5, 5, True), (1, 9, True), (-1, 5, False), (5, -1, False),
                                 (11, 5, False), (0.5, 0.25, True)):
                with self.subTest((shift, h, v)):
                    data = self.run_json("hit", file, "--at", f"{h + shift},{v + shift}")
                    hits = data["points"][0]["hits"]
                    self.assertEqual([hit["inside"] for hit in hits], [True] if inside else [])

    def test_inside_is_by_the_drawings_own_rule(self):
        ring = 'd="M0 0H20V20H0zM5 5H15V15H5z"'
        file = self.write("rings.svg", svg(
            f'<path id="default" {ring}/><path id="even" fill-rule="evenodd" {ring}/>'))
        def inside(*more):
            data = self.run_json("hit", file, "--at", "10,9", *more)
            return [(h["id"], h["winding"], h["rule"]) for h in data["points"][0]["hits"]]
        self.assertEqual(inside(), [("default", 2, "nonzero")])
        self.assertEqual(inside("--rule", "evenodd"), [])
        self.assertEqual([h[0] for h in inside("--rule", "nonzero")], ["default", "even"])
        self.fails("hit", file, "--at", "1,1", "--rule", "odd", names=["--rule", "nonzero"])
        self.fails("hit", file, "--at", "1,1", "--rule", "nonzero", "--classic", names=["--rule"])

    def test_a_distance_greater_than_asked_for_is_told(self):
        font = self.write("font.ttf", font_bytes())
        base = self.write("base.svg", svg('<path id="base" d="M0 0H100"/>'))
        self.file = self.write("s.svg", svg('<path id="s" d="M0 0C300 550 314 -550 614 0"/>'))
        for command in (["flatten", self.file, "--error", "1e-13"],
                        ["overlap", self.file, "--tolerance", "1e-13"],
                        ["offset", self.file, "--by", "1", "--tolerance", "1e-13"],
                        ["stroke", self.file, "--pen", "1", "--tolerance", "1e-13"],
                        ["divide", self.file, "--tolerance", "1e-13"],
                        ["combine", "union", self.file, self.file, "--error", "1e-13"],
                        ["text", font, "B", "--along", base, "--size", "80", "--raw-quadratics",
                         "--error", "1e-13"]):
            with self.subTest(command[0]):
                output = self.path("out.svg")
                result = self.execute(*command, "-o", output)
                told = re.fullmatch("trammel: warning: .*: keeps within (.*) only, not within "
                                    "1e-13\n", result.stderr.decode())
                self.assertTrue(told, result.stderr)
                self.assertEqual(result.returncode, 0)
                self.assertTrue(1e-13 < float(told.group(1)) < 1e-4)
                os.remove(output)
                self.fails(*command, "--strict", "-o", output, names=["only, not within 1e-13"])

    def test_centroids_are_right_at_any_size(self):
        for size in (1e-300, 1e-170, 1e-110, 1e110, 1e153, 1e200, 1e300):
            with self.subTest(size):
                file = self.write("in.svg", svg(
                    f'<circle id="c" cy="{2 * size}" r="{size}"/>'
                    f'<path id="p" d="M{size} 0V{3 * size}H{7 * size}Z"/>'))
                c, p = self.run_json("area", file)["outlines"]
                self.assertBox([x / size for x in c["centroid"]], [0, 2], 1e-7)
                self.assertBox([x / size for x in p["centroid"]], [3, 2], 1e-7)
                if 1e-150 < size < 1e150:
                    self.assertAlmostEqual(c["signedArea"] / size / size, math.pi, 7)
                elif size > 1e154:
                    self.assertEqual((c["area"], c["signedArea"]), (None, None))
        self.assertIn("c: area inf (nonzero), signed inf, centroid 0,2e+300\n",
                      self.run_text("area", file))

    def test_help_and_json_tell_the_accuracy(self):
        told = {"measure": [], "point": ["--at", "0.5"], "nearest": ["--to", "1,2"],
                "hit": ["--at", "307,0"], "area": [], "intersect": []}
        for command, options in told.items():
            with self.subTest(command):
                text = self.run_text(command, "--help")
                self.assertIn("right to the digits printed", text)
                self.assertIn("--accuracy", text)
                self.assertEqual("--classic" in text, command not in ("area", "intersect"))
                self.assertIn('"accuracy"', json.dumps(self.run_json(command, self.file, *options)))


if __name__ == "__main__":
    unittest.main()
