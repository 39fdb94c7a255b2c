#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of `trammel combine`, the boolean operations."""

import math
import os
import unittest

from support import AppTest, svg


class Combine(AppTest):
    """A square of 10 with a hole of 2, and the same 5 to the right and below with a hole of 2."""

    def setUp(self):
        super().setUp()
        self.a = self.write("a.svg", svg('<path id="a" fill-rule="evenodd" '
                                         'd="M0 0H10V10H0ZM2 2H4V4H2Z"/>'))
        self.b = self.write("b.svg", svg('<path d="M5 5H15V15H5ZM6 6V8H8V6Z"/>'))
        self.out = self.path("out.svg")

    def test_the_four_operations_give_their_areas(self):
        expected = {"union": (171, 2, 1), "intersection": (21, 2, 1), "difference": (75, 3, 1),
                    "xor": (150, 4, 1)}
        for operation, (area, contours, holes) in expected.items():
            with self.subTest(operation):
                data = self.run_json("combine", operation, self.a, self.b, "-o", self.out)
                self.assertEqual(data["operation"], operation)
                for side in ("a", "b"):
                    self.assertEqual((data[side]["area"], data[side]["contours"],
                                      data[side]["holes"], data[side]["vertices"]), (96, 2, 1, 8))
                self.assertEqual((data["result"]["area"], data["result"]["contours"],
                                  data["result"]["holes"]), (area, contours, holes))
                self.assertEqual(list(self.path_data("out.svg")), ["a"])
                # What was written covers what was reported.
                again = self.run_json("combine", "union", self.out, self.out)
                self.assertEqual(again["a"]["area"], area)

    def test_outlines_can_be_chosen(self):
        file = self.write("two.svg", svg('<rect id="a" width="10" height="10"/>'
                                         '<rect id="h" x="2" y="2" width="2" height="2"/>'))
        data = self.run_json("combine", "difference", file, file, "--id-a", "a", "--id-b", "h")
        self.assertEqual((data["a"]["area"], data["b"]["area"], data["result"]["area"]),
                         (100, 4, 96))
        self.assertEqual(os.path.exists(self.out), False)

    def test_fill_rules_decide(self):
        """Two squares of 10 in one path, run in the same direction, share a square of 5."""
        def area(rule, *options):
            file = self.write("r.svg", svg(f'<g fill-rule="{rule}"><path id="p" '
                                           'd="M0 0H10V10H0ZM5 5H15V15H5Z"/></g>'))
            return self.run_json("combine", "union", file, file, *options)["result"]["area"]
        self.assertEqual((area("nonzero"), area("evenodd")), (175, 150))
        self.assertEqual(area("nonzero", "--rule", "evenodd"), 150)
        self.assertEqual(area("evenodd", "--rule", "nonzero"), 175)
        self.fails("combine", "union", self.a, self.b, "--rule", "odd", "-o", self.out,
                   names=["--rule", "odd"])

    def test_the_first_drawing_stays(self):
        """The result takes the place of the first outline that was chosen; the others go."""
        a = ('<!-- a --><g class="k" transform="translate(5 0)">\n  <rect id="r" style="fill:red" '
             'width="10" height="10" data-x="1"/>\n  <circle id="c" r="1"/>\n'
             '  <path id="other" d="M0 0 L 1,1"/>\n</g>')
        file = self.write("in.svg", svg(a))
        self.run_text("combine", "difference", file, self.b, "--id-a", "r", "--id-a", "c", "-o",
                      self.out)
        text = self.read("out.svg").decode()
        data = self.path_data("out.svg")["r"]
        self.assertEqual(text, svg('<!-- a --><g class="k" transform="translate(5 0)">\n  <path '
                                   f'id="r" style="fill:red" d="{data}" data-x="1"/>\n'
                                   '  <path id="other" d="M0 0 L 1,1"/>\n</g>'))
        used = self.write("use.svg", svg('<defs><g id="g"><path id="p" d="M0 0H9V9Z"/><path id="q" '
                                         'd="M0 0H1V1Z"/></g></defs><use id="u" href="#g"/>'))
        self.fails("combine", "union", used, self.b, "--id-a", "u/p", "-o", self.out,
                   names=["u/p", "<use>"])
        self.run_text("combine", "union", used, self.b, "-o", self.out)
        self.assertEqual(list(self.measure_file("out.svg")), ["union"])

    def test_curves_stay_curves_within_the_error(self):
        """A square of 40, and a circle of radius 20 around its corner."""
        circle = self.write("c.svg", svg('<circle id="c" cx="50" cy="50" r="20"/>'))
        square = self.write("s.svg", svg('<rect id="s" x="50" y="50" width="40" height="40"/>'
                                         '<path id="h" d="M60 80H80L70 70Z"/>'))
        for error in ("0.1", "1e-6"):
            data = self.run_json("combine", "difference", square, circle, "--id-a", "s", "--error",
                                 error, "-o", self.out)
            self.assertEqual(data["a"]["curves"], 0)
            self.assertGreater(data["result"]["curves"], 0)
            self.assertLess(data["result"]["vertices"], 20)
            self.assertLessEqual(data["distance"], float(error))
            # The outlines are shorter than 300.
            self.assertLess(abs(data["result"]["area"] - (1600 - 100 * math.pi)),
                            300 * float(error))
        self.assertTrue(self.measure_file("out.svg")["s"]["curves"])
        data = self.run_json("combine", "xor", square, circle)
        self.assertEqual((data["result"]["contours"], data["result"]["holes"]), (2, 0))

    def test_an_empty_result_is_an_empty_drawing(self):
        away = self.write("away.svg", svg('<rect x="50" y="50" width="1" height="1"/>'))
        data = self.run_json("combine", "intersection", self.a, away, "-o", self.out)
        self.assertEqual(data["result"], {"area": 0, "contours": 0, "holes": 0, "vertices": 0,
                                          "curves": 0})
        self.assertEqual(self.path_data("out.svg"), {"a": ""})
        self.assertEqual(self.run_text("combine", "union", self.a, away, "-o",
                                       self.path("out.png")), "")
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

    def test_wrong_arguments_are_named(self):
        self.fails("combine", "add", self.a, self.b, "-o", self.out, names=["add", "xor"])
        self.fails("combine", "union", self.a, self.b, names=["-o", "--json"])
        self.fails("combine", "union", self.a, self.b, "--json", "-o", "-", names=["--json", "-o -"])
        self.fails("polygons", self.a, "--describe", "-o", "-", names=["-o", "standard output"])
        self.fails("combine", "union", self.a, "-o", self.out, names=["B"])
        self.fails("combine", "union", self.a, "none.svg", "-o", self.out, names=["none.svg"])
        self.fails("combine", "union", self.a, self.b, "-o", "out.pdf", names=["out.pdf"])
        self.fails("combine", "union", self.a, self.b, "--json", "-o", "no/out.svg",
                   names=["no/out.svg"])
        self.fails("combine", "union", self.a, self.b, "--error", "0", "-o", self.out,
                   names=["--error"])
        self.fails("combine", "union", self.a, self.b, "--id-b", "q", "-o", self.out,
                   names=["b.svg", "q"])


if __name__ == "__main__":
    unittest.main()
