#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of `trammel point`, `nearest` and `hit`."""

import math
import unittest

from support import AppTest, SQUARE, svg


class Queries(AppTest):
    def test_point_tells_place_and_direction(self):
        file = self.write("in.svg", SQUARE)
        data = self.run_json("point", file, "--at", "0.125", "--at", "0.375,1")
        self.assertEqual(data["outlines"], [{"id": "sq", "length": 40.0, "points": [
            {"at": 0.125, "point": [5.0, 0.0], "direction": [1.0, 0.0], "angle": 0.0},
            {"at": 0.375, "point": [10.0, 5.0], "direction": [0.0, 1.0], "angle": 90.0},
            {"at": 1.0, "point": [0.0, 0.0], "direction": [0.0, -1.0], "angle": -90.0}],
            "accuracy": 1e-10}])
        self.assertEqual(self.run_text("point", file, "--at", "0.125"),
                         "sq: at 0.125: 5,0 direction 1,0 (0 degrees)\n")

    def test_points_lie_on_the_circle(self):
        file = self.write("in.svg", svg('<circle cx="50" cy="50" r="10"/>'))
        fractions = [0, 0.1, 0.25, 0.4, 0.7, 0.9]
        data = self.run_json("point", file, "--at", ",".join(map(str, fractions)))
        for entry in data["outlines"][0]["points"]:
            angle = 2 * math.pi * entry["at"]
            self.assertBox(entry["point"],
                           [50 + 10 * math.cos(angle), 50 + 10 * math.sin(angle)], 0.02)
            self.assertBox(entry["direction"], [-math.sin(angle), math.cos(angle)], 0.002)

    def test_a_direction_exists_where_a_control_point_is_missing(self):
        file = self.write("in.svg", svg('<path d="M0 0C0 0 0 10 10 10"/>'))
        points = self.run_json("point", file, "--at", "0,1")["outlines"][0]["points"]
        self.assertBox(points[0]["direction"], [0, 1])
        self.assertBox(points[1]["direction"], [1, 0])

    def test_point_passes_dots(self):
        file = self.write("in.svg", svg('<path d="M90 90zM0 0H10"/>'))
        points = self.run_json("point", file, "--at", "0,0.5")["outlines"][0]["points"]
        self.assertEqual([p["point"] for p in points], [[0, 0], [5, 0]])

    def test_nearest_tells_outline_place_and_distance(self):
        file = self.write("in.svg", svg('<rect id="a" width="10" height="10"/>'
                                        '<rect id="b" x="50" width="10" height="10"/>'))
        data = self.run_json("nearest", file, "--to", "13,2.5", "--to", "48,-1")
        self.assertEqual(data["nearest"], [
            {"to": [13.0, 2.5], "id": "a", "fraction": 0.3125, "point": [10.0, 2.5],
             "placeAccuracy": 1e-9, "distance": 3.0, "accuracy": 1e-10},
            {"to": [48.0, -1.0], "id": "b", "fraction": 0.0, "point": [50.0, 0.0],
             "distance": 2.236067977, "accuracy": 1e-9}])
        self.assertEqual(self.run_text("nearest", file, "--to", "13,2.5"),
                         "a: fraction 0.3125, at 10,2.5, distance 3\n")

    def test_the_nearest_place_is_right_to_the_digits_printed(self):
        """The distance is flat at its least, and tells the place to half of its digits only."""
        file = self.write("in.svg", svg('<path id="q" d="M-2 4Q0 -4 2 4"/>'))  # v = h²
        for t in (-1.9, -1.1, -0.4, 0.0, 0.3, 1.7):
            size = math.hypot(1, 2 * t)
            for away in (0.001, 0.3, 2.0, 40.0):
                # Below the parabola, at a right angle to it.
                to = (t + 2 * t / size * away, t * t - away / size)
                found = self.run_json("nearest", file, "--to", f"{to[0]!r},{to[1]!r}")["nearest"][0]
                accuracy = found.get("placeAccuracy", found["accuracy"])
                self.assertLessEqual(accuracy, 1e-8)
                self.assertBox(found["point"], [t, t * t], accuracy)
                self.assertLessEqual(abs(found["distance"] - away), found["accuracy"])
                def length(x):
                    return x / 2 * math.hypot(1, 2 * x) + math.asinh(2 * x) / 4
                fraction = (length(t) + length(2)) / (2 * length(2))
                self.assertLessEqual(abs(found["fraction"] - fraction), 10 * accuracy)

    def test_a_hit_has_the_accuracy_that_is_asked_for(self):
        file = self.write("in.svg", svg('<circle id="c" r="10"/>'))
        hit = self.run_json("hit", file, "--at", "6,0", "--accuracy", "0.01")["points"][0]["hits"][0]
        self.assertEqual((hit["distance"], hit["accuracy"]), (4, 0.01))
        self.fails("hit", file, "--at", "6,0", "--accuracy", "0", names=["--accuracy"])
        self.fails("hit", file, "--at", "6,0", "--accuracy", "1", "--classic", names=["--accuracy"])

    def test_the_nearest_point_lies_on_the_curve(self):
        file = self.write("in.svg", svg('<circle cx="50" cy="50" r="10"/>'))
        found = self.run_json("nearest", file, "--to", "80,90")["nearest"][0]
        self.assertLess(abs(found["distance"] - 40), 0.001)
        self.assertBox(found["point"], [56, 58], 0.02)

    def test_hit_tells_inside_from_edge(self):
        file = self.write("in.svg", svg(
            '<path id="ring" fill-rule="evenodd" d="M0 0H20V20H0zM5 5H15V15H5z"/><circle id="c" cx="60" cy="10" r="10"/>'
            '<path id="t" d="M0 0 0 40 40 40"/>'))
        def hits(at, *more):
            data = self.run_json("hit", file, "--at", at, *more)
            return {h["id"]: (h["inside"], h["onOutline"]) for h in data["points"][0]["hits"]}
        self.assertEqual(hits("2,1"), {"ring": (True, False)})
        self.assertEqual(hits("10,9"), {})  # in the hole
        self.assertTrue(hits("10,5")["ring"][1])  # on the edge of the hole
        self.assertEqual(hits("2,25"), {"t": (True, False)})  # as if closed
        self.assertEqual(hits("60,10"), {"c": (True, False)})
        self.assertEqual(hits("70.5,10"), {})
        self.assertEqual(hits("70.5,10", "--tolerance", "0.6"), {"c": (False, True)})
        self.assertEqual(hits("30,29"), {})  # the closing line is not drawn
        self.assertEqual(hits("30,-2", "--tolerance", "1"), {})

    def test_hit_says_so_in_words(self):
        file = self.write("in.svg", SQUARE)
        self.assertEqual(
            self.run_text("hit", file, "--at", "5,5", "--at", "10.5,5", "--at", "50,50",
                          "--at", "9.9,5", "--tolerance", "1"),
            "5,5: sq inside\n10.5,5: sq on the outline\n50,50: nothing\n"
            "9.9,5: sq inside, on the outline\n")

    def test_area_is_by_rule_and_signed(self):
        file = self.write("in.svg", svg(
            '<path id="ring" d="M0 0H20V20H0zM5 5H15V15H5z"/>'
            '<path id="knot" fill-rule="evenodd" d="M0 0H10V10H0zM5 5H15V15H5z"/>'
            '<path id="eight" d="M0 0L10 10L10 0L0 10z"/><path id="left" d="M0 0V10H10V0z"/>'
            '<path id="arch" d="M0 0C0 40 40 40 40 0"/>'))
        def areas(*more):
            data = self.run_json("area", file, *more)
            return {o["id"]: (o["area"], o["signedArea"], o["centroid"])
                    for o in data["outlines"]}
        own = areas()
        self.assertEqual(own["ring"], (400, 500, [10, 10]))
        self.assertEqual(own["knot"], (150, 200, [7.5, 7.5]))
        self.assertEqual(own["eight"][:2], (50, 0))
        self.assertEqual(own["left"][:2], (100, -100))
        # The integral of the cubic: 0.6 of the control polygon's 40 by 40.
        self.assertBox(own["arch"][:2], (960, -960), 1e-6)
        self.assertBox(own["arch"][2], (20, 40 * 9 / 28), 1e-6)
        self.assertEqual(areas("--rule", "evenodd")["ring"][0], 300)
        self.assertEqual(areas("--rule", "nonzero")["knot"][0], 175)
        self.assertEqual(self.run_text("area", file, "--id", "left"),
                         "left: area 100 (nonzero), signed -100, centroid 5,5\n")

    def test_intersect_tells_places_and_their_kinds(self):
        a = self.write("a.svg", svg('<rect id="sq" width="10" height="10"/>'
                                    '<path id="knot" d="M0 20L10 30L10 20L0 30"/>'))
        b = self.write("b.svg", svg('<path id="line" d="M-5 4H15"/>'
                                    '<path id="top" d="M2 0H8"/><path id="touch" d="M5 12L10 10"/>'
                                    ))
        data = self.run_json("intersect", a, b, "--id-a", "sq")
        found = [(p["b"]["id"], p["kind"], p["point"]) for p in data["places"]]
        self.assertIn(("line", "crossing", [10, 4]), found)
        self.assertIn(("line", "crossing", [0, 4]), found)
        self.assertIn(("touch", "end", [10, 10]), found)
        overlap = next(p for p in data["places"] if p["kind"] == "overlap")
        self.assertEqual((overlap["b"]["id"], overlap["point"], overlap["endPoint"]),
                         ("top", [2, 0], [8, 0]))
        self.assertEqual(len(found), 4)
        knot = self.run_json("intersect", a, "--self", "--id-a", "knot")["places"]
        self.assertEqual([(p["kind"], p["point"]) for p in knot], [("crossing", [5, 25])])
        self.assertEqual(self.run_text("intersect", a, "--self", "--id-a", "knot"),
                         "knot itself: crossing at 5,25\n")
        self.assertEqual(self.run_json("intersect", a)["places"], [])
        self.fails("intersect", a, b, "--self", names=["--self"])

    def test_intersect_tells_near_outlines_whose_bounds_are_apart(self):
        file = self.write("near.svg", svg('<path id="a" d="M0 0H10"/><path id="b" d="M4 0.2V9"/>'
                                          '<path id="c" d="M20 0V9"/>'))
        def found(*options):
            places = self.run_json("intersect", file, *options)["places"]
            return [(p["a"]["id"], p["b"]["id"], p["kind"]) for p in places]
        self.assertEqual(found(), [])
        self.assertEqual(found("--accuracy", "1"), [("a", "b", "end")])


if __name__ == "__main__":
    unittest.main()
