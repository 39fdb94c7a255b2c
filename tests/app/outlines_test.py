#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of the commands that give outlines new forms: `overlap`, `stroke`, `offset`, `simplify`,
`fit`."""

import math
import unittest

from support import AppTest, font_bytes, svg


class Outlines(AppTest):
    def setUp(self):
        super().setUp()
        self.out = self.path("out.svg")

    def areas(self, name="out.svg"):
        """The areas of the outlines of a drawing, by id and the rule."""
        found = {}
        for rule in ("nonzero", "evenodd"):
            data = self.run_json("area", self.path(name), "--rule", rule)
            for outline in data["outlines"]:
                found.setdefault(outline["id"], []).append(outline["area"])
        return found

    def test_overlap_leaves_contours_that_either_rule_fills(self):
        # Two circles of radius 10, 10 apart, and two squares that share a quarter.
        circles = ('<path id="c" class="k" d="M30 20A10 10 0 1 1 10 20A10 10 0 1 1 30 20Z'
                   'M40 20A10 10 0 1 1 20 20A10 10 0 1 1 40 20Z" />')
        squares = '<g  transform="scale(2)"><path id="s" d="M0 0H2V2H0ZM1 1H3V3H1Z"/></g><!-- x -->'
        line = '<path id="l" fill="none" stroke="red" d="M0 0 H9 V9"/>'
        file = self.write("in.svg", svg(circles + squares + line))
        self.run_text("overlap", file, "--tolerance", "1e-6", "-o", self.out)
        shared = 100 * (2 * math.pi / 3 - math.sqrt(3) / 2)
        areas = self.areas()
        for area in areas["c"]:
            self.assertAlmostEqual(area, 200 * math.pi - shared, delta=1e-4)
        self.assertEqual([round(area, 4) for area in areas["s"]], [28, 28])
        measured = self.measure_file("out.svg")
        self.assertTrue(measured["c"]["curves"] and not measured["c"]["lines"])
        self.assertLess(measured["c"]["elements"], 80)
        data = self.path_data("out.svg")
        expected = circles.split(' d="')[0] + f' d="{data["c"]}" />' + squares.replace(
            "M0 0H2V2H0ZM1 1H3V3H1Z", data["s"]) + line
        self.assertEqual(self.read("out.svg").decode(), svg(expected))

    def test_overlap_changes_a_line_that_is_named(self):
        file = self.write("in.svg", svg('<path id="l" fill="none" d="M0 0H9V9"/>'))
        self.run_text("overlap", file, "--id", "l", "-o", self.out)
        self.assertEqual(self.path_data("out.svg"), {"l": "M0 0H9V9Z"})

    def test_stroke_gives_the_area_of_the_line(self):
        body = ('<path id="p" stroke="red" d="M10 10H30"/>'
                '<path id="q" style="fill:none;stroke:url(#g)" d="M10 50H30V70"/>')
        file = self.write("in.svg", svg(body))
        for options, areas in {
            (): (80, 80 + 80),
            ("--cap", "square"): (96, 80 + 80 + 16),
            ("--join", "bevel"): (80, 80 + 80 - 2),
            ("--cap", "round", "--join", "round"): (80 + 4 * math.pi,
                                                    160 - 4 + 5 * math.pi),
            ("--dash", "3,2"): (4 * 12, 8 * 12),
        }.items():
            with self.subTest(options):
                self.run_text("stroke", file, "--pen", "4", *options, "-o", self.out)
                got = self.areas()
                for area in got["p"]:
                    self.assertAlmostEqual(area, areas[0], delta=0.02)
                for area in got["q"]:
                    self.assertAlmostEqual(area, areas[1], delta=0.02)
        text = self.read("out.svg").decode()
        self.assertIn('<path id="p" stroke="none" d="', text)
        self.assertIn('fill="red"', text)
        self.assertIn(';fill:url(#g);stroke:none"', text)

    def test_offset_moves_the_outline(self):
        file = self.write("in.svg", svg('<circle id="c" cx="50" cy="50" r="20"/>'
                                        '<rect id="r" width="10" height="10"/>'))
        for options, c, r in (
                (("--by", "5"), 25, 100 + 200 + 25 * math.pi),
                (("--by", "5", "--join", "miter"), 25, 400),
                (("--by", "-2"), 18, 36)):
            with self.subTest(options):
                self.run_text("offset", file, *options, "--tolerance", "1e-4", "-o", self.out)
                areas = self.areas()
                self.assertAlmostEqual(areas["c"][0], c * c * math.pi, delta=1e-4 * 2 * math.pi * c)
                self.assertAlmostEqual(areas["r"][0], r, delta=1e-4 * 80)
        self.run_text("offset", file, "--by", "-6", "-o", self.out)
        self.assertEqual(self.path_data("out.svg")["r"], "")

    def test_simplify_takes_fewer_elements(self):
        # 64 lines in a row, and a circle of many curves.
        steps = "".join(f"L{i} {i}" for i in range(1, 65))
        file = self.write("in.svg", svg(f'<path id="l" d="M0 0{steps}V0"/>'))
        self.run_text("simplify", file, "--tolerance", "0.01", "-o", self.out)
        self.assertEqual(self.path_data("out.svg"), {"l": "M0 0 64 64V0"})
        self.run_text("shape", "circle", "50,50,40", "--tolerance", "1e-9", "--set-id", "c", "-o",
                      self.path("fine.svg"))
        self.run_text("simplify", self.path("fine.svg"), "--tolerance", "0.05", "-o", self.out)
        fine, simple = (self.measure_file(name)["c"] for name in ("fine.svg", "out.svg"))
        self.assertLess(simple["elements"], fine["elements"] / 3)
        self.assertBox(simple["bounds"], [10, 10, 90, 90], 0.05)

    def test_fit_puts_curves_in_place_of_lines(self):
        points = " ".join(f"{50 + 40 * math.cos(a / 50 * math.pi)},"
                          f"{50 + 40 * math.sin(a / 50 * math.pi)}" for a in range(100))
        curve = '<path id="k" d="M0 0C1 2 3 4 5 0"/>'
        file = self.write("in.svg", svg(f'<polygon id="c" points="{points}"/>{curve}'
                                        '<path id="r" d="M0 0H10V10H0Z"/>'))
        self.run_text("fit", file, "--tolerance", "0.1", "-o", self.out)
        circle = self.measure_file("out.svg")["c"]
        self.assertTrue(circle["curves"] and circle["closed"])
        self.assertLess(circle["elements"], 20)
        self.assertBox(circle["bounds"], [10, 10, 90, 90], 0.1)
        data = self.path_data("out.svg")
        self.assertEqual((data["k"], data["r"]), ("M0 0C1 2 3 4 5 0", "M0 0H10V10H0V0Z"))

    def test_fonts_become_new_drawings(self):
        font = self.write("font.ttf", font_bytes())
        self.run_text("stroke", font, "--id", "glyph2", "--pen", "20", "-o", self.out)
        self.assertAlmostEqual(self.areas()["glyph2"][0], 520**2 - 480**2, delta=20)
        self.run_text("offset", font, "--by", "9", "-o", self.path("out.png"))
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

    def test_wrong_arguments_are_named(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H9V9"/>'))
        for arguments, names in (
                (("stroke", file, "--pen", "0"), ["--pen", "'0'"]),
                (("stroke", file, "--pen", "1", "--cap", "flat"), ["--cap", "flat", "butt"]),
                (("stroke", file, "--pen", "1", "--dash", "1,-1"), ["--dash", "1,-1"]),
                (("offset", file, "--by", "1", "--join", "arc"), ["--join", "arc", "bevel"]),
                (("offset", file, "--by", "1", "--miter-limit", "0.5"), ["--miter-limit", "0.5"]),
                (("fit", file, "--corner", "0"), ["--corner", "'0'"]),
                (("overlap", file, "--tolerance", "0"), ["--tolerance", "'0'"]),
                (("overlap", file, "--strict", "--tolerance", "1e-99"), ["in.svg", "p", "1e-99"])):
            with self.subTest(arguments):
                self.fails(*arguments, "-o", self.out, names=names)


if __name__ == "__main__":
    unittest.main()
