#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of `trammel polygons`, which shows outlines as handle polygons."""

import math
import unittest

from support import AppTest, svg


class Polygons(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("in.svg", svg('<path id="p" d="M0.4 0.4H10.6V5.5H.4Z"/>'))

    def test_describe_lists_the_points(self):
        self.assertEqual(self.run_text("polygons", self.file, "--describe"),
                         "p: 5 points, last equal to first\n"
                         "0.4, 0.4\n10.6, 0.4\n10.6, 5.5\n0.4, 5.5\n0.4, 0.4\n")
        polygon = self.run_json("polygons", self.file,
                                "--describe")["outlines"][0]["polygons"][0]
        self.assertEqual((polygon["points"], polygon["bounds"], polygon["circular"]),
                         (5, [0.4, 0.4, 10.6, 5.5], False))

    def test_bounds_can_be_rotated(self):
        file = self.write("r.svg", svg('<rect id="r" x="10" y="20" width="8" height="4"/>'))
        data = self.run_json("polygons", file, "--rotate-bounds", "90", "-o", self.path("o.svg"))
        outline = data["outlines"][0]
        for corner, expected in zip(outline["corners"], [[16, 18], [16, 26], [12, 26], [12, 18]]):
            self.assertBox(corner, expected)
        self.assertEqual((outline["centre"], outline["radii"]), ([14, 22], [4, 2]))
        self.assertEqual(outline["anyBoundsCornerInside"], False)
        self.assertBox(self.measure_file("o.svg")["r"]["bounds"], [12, 18, 16, 26])

    def test_quickdraw_polygons_are_rounded(self):
        data = self.run_json("polygons", self.file, "--to-quickdraw", "-o", self.path("o.svg"))
        polygon = data["outlines"][0]["polygons"][0]
        # Halves are rounded away from zero.
        self.assertEqual(polygon["points"], [[0, 0], [11, 0], [11, 6], [0, 6], [0, 0]])
        self.assertEqual((polygon["bytes"], polygon["box"]), (10 + 4 * 5, [0, 0, 11, 6]))
        self.assertAlmostEqual(polygon["movedByAtMost"], math.hypot(0.4, 0.5), places=12)
        self.assertEqual(self.measure_file("o.svg")["p"]["bounds"], [0, 0, 11, 6])

    def test_wrong_arguments_are_named(self):
        self.fails("polygons", self.file, names=["--describe"])
        self.fails("polygons", self.file, "--describe", "--to-quickdraw", names=["needs one of"])
        self.fails("polygons", self.file, "--rotate-bounds", "x", names=["--rotate-bounds"])
        self.fails("polygons", self.file, "--describe", "--error", "-1", names=["--error"])
        far = self.write("far.svg", svg('<path id="f" d="M0 0H40000V5Z"/>'))
        self.fails("polygons", far, "--to-quickdraw", names=["far.svg", "f", "32767"])


if __name__ == "__main__":
    unittest.main()
