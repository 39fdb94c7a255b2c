#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of `trammel text`, which sets words along an outline."""

import math
import unittest

from support import AppTest, arch_length, font_bytes, svg


class Text(AppTest):
    def setUp(self):
        super().setUp()
        self.font = self.write("font", font_bytes())
        self.out = self.path("out.svg")

    def along(self, body):
        return self.write("along.svg", svg(body))

    def bounds(self):
        return {k: o["bounds"] for k, o in self.measure_file("out.svg").items() if "glyph" in k}

    def test_glyphs_stand_on_a_straight_line(self):
        file = self.along('<path d="M10 50H90"/>')
        self.run_text("text", self.font, "A CB", "--along", file, "--size", "10", "-o", self.out)
        # Advances of 6, 2.5, 4 and 10 at this size.
        got = self.bounds()
        self.assertEqual(list(got), ["1-glyph2", "3-glyph4", "4-glyph3"])
        self.assertBox(got["1-glyph2"], [10, 45, 15, 50])
        self.assertBox(got["3-glyph4"], [18.5, 46, 22.5, 50])
        self.assertBox(got["4-glyph3"], [22.5, 45, 32.5, 50], 1e-4)

    def test_kerning_and_start_move_glyphs(self):
        file = self.along('<path d="M10 50H90"/>')
        self.run_text("text", self.font, "AB", "--along", file, "--size", "10", "--start", "20",
                      "-o", self.out)
        got = self.bounds()
        self.assertBox(got["1-glyph2"], [30, 45, 35, 50])
        self.assertBox(got["2-glyph3"], [35, 45, 45, 50], 1e-4)  # 6 - 1 after the A

    def test_glyphs_turn_with_the_line(self):
        file = self.along('<path d="M50 10V90"/>')
        self.run_text("text", self.font, "A", "--along", file, "--size", "10", "-o", self.out)
        self.assertBox(self.bounds()["1-glyph2"], [50, 10, 55, 15])

    def test_glyphs_stand_around_a_circle(self):
        file = self.along('<circle cx="50" cy="50" r="20"/>')
        self.run_text("text", self.font, "AAAAAAAA", "--along", file, "-o", self.out)
        outlines = self.measure_file("out.svg")
        del outlines["circle#1"]
        self.assertEqual(len(outlines), 8)
        # Filling the circle, each has an eighth of it; a square's side is 5/6 of its advance.
        side = 40 * math.pi / 8 * 5 / 6
        for outline in outlines.values():
            self.assertLess(abs(outline["length"] / 4 - side), 0.02)
        # The middle of the first advance stands at a sixteenth of the circle.
        angle = 2 * math.pi / 16
        advance = side * 6 / 5
        middle = [50 + 20 * math.cos(angle), 50 + 20 * math.sin(angle)]
        corner = [middle[0] + advance / 2 * math.sin(angle),
                  middle[1] - advance / 2 * math.cos(angle)]
        start = self.run_json("point", self.out, "--id", "1-glyph2", "--at", "0")
        self.assertBox(start["outlines"][0]["points"][0]["point"], corner, 0.05)

    def test_raw_quadratics_are_kept(self):
        file = self.along('<path d="M10 50H90"/>')
        words = ["text", self.font, "B", "--along", file, "--size", "10", "-o", self.out]
        self.run_text(*words, "--raw-quadratics")
        fine = self.measure_file("out.svg")["1-glyph3"]
        self.assertEqual((fine["lines"], fine["curves"]), (True, False))
        self.assertLess(abs(fine["length"] - arch_length() / 100), 0.02)
        self.run_text(*words, "--raw-quadratics", "--error", "1")
        coarse = self.measure_file("out.svg")["1-glyph3"]
        self.assertLess(coarse["elements"], fine["elements"])
        self.run_text(*words)
        self.assertEqual(self.measure_file("out.svg")["1-glyph3"]["curves"], True)
        self.fails(*words, "--error", "1", names=["--error", "--raw-quadratics"])
        self.fails(*words, "--raw-quadratics", "--error", "0", names=["--error"])

    def test_the_outline_may_be_drawn_and_a_png_written(self):
        file = self.along('<path id="base" d="M10 50H90"/>')
        self.run_text("text", self.font, "A", "--along", file, "-o", self.out)
        self.assertEqual(list(self.path_data("out.svg")), ["base", "1-glyph2"])
        self.run_text("text", self.font, "A", "--along", file, "--outline", "-o",
                      self.path("out.png"))
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

    def test_wrong_arguments_are_named(self):
        file = self.along('<path id="p" d="M10 50H90"/><path id="dot" d="M1 1"/>')
        def fails(*more, words="A", font=self.font, names=()):
            self.fails("text", font, words, "--along", file, "-o", self.out, *more, names=names)
        fails(words="é", names=[self.font, "U+00E9"])
        fails("--size", "100", words="AAAA", names=[file, "p:", "the words end at 240"])
        fails("--size", "0", names=["--size"])
        fails("--size", "nan", names=["--size"])
        fails("--start", "-1", names=["--start"])
        fails("--start", "80", names=["--start"])
        fails("--id", "dot", names=[file, "dot", "no length"])
        fails("--id", "nix", names=[file, "nix"])
        fails(words="", names=["words"])
        fails(font=file, names=[file, "not a font"])
        fails(font=self.path("none"), names=["none", "No such file"])
        self.fails("text", self.font, b"A\xff", "--along", file, "-o", self.out,
                   names=["byte 1", "UTF-8"])


if __name__ == "__main__":
    unittest.main()
