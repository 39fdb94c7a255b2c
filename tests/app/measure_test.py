#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of `trammel measure`: shapes, the structure of SVG documents, and what is printed."""

import math
import os
import pty
import subprocess
import unittest

from support import AppTest, PROGRAM, SQUARE, arch_length, font_bytes, svg


class Shapes(AppTest):
    def test_a_square_is_measured(self):
        outline = self.measure(SQUARE)["sq"]
        self.assertEqual(outline, {
            "id": "sq", "elements": 5, "subpaths": 1, "length": 40.0,
            "bounds": [0.0, 0.0, 10.0, 10.0], "controlBounds": [0.0, 0.0, 10.0, 10.0],
            "closed": True, "lines": True, "curves": False, "accuracy": 1e-10})

    def test_the_origin_counts_in_the_bounds(self):
        """The origin counts as a point of the bounds, though it comes first."""
        outline = self.measure(svg('<path id="t" d="M0 0L3 4L3 8"/>'))["t"]
        self.assertEqual(outline["length"], 9.0)
        self.assertEqual(outline["bounds"], [0, 0, 3, 8])
        self.assertFalse(outline["closed"])

    def test_a_circle_is_as_long_as_its_circumference(self):
        outline = self.measure(svg('<circle id="c" cx="50" cy="50" r="10"/>'))["c"]
        self.assertEqual(outline["accuracy"], 1e-6)
        self.assertLess(abs(outline["length"] - 20 * math.pi), 1e-6)
        self.assertBox(outline["bounds"], [40, 40, 60, 60])
        self.assertTrue(outline["closed"] and outline["curves"] and not outline["lines"])
        self.assertIn("length 62.831853,", self.run_text("measure", self.path("in.svg")))

    def test_the_area_can_be_asked_for(self):
        file = self.write("in.svg", svg('<path id="r" fill-rule="evenodd" d="M0 0H20V20H0zM5 5H15V15H5z"/>'
                                        '<circle id="c" r="10"/>'))
        outlines = self.run_json("measure", file, "--area")["files"][0]["outlines"]
        self.assertEqual((outlines[0]["id"], outlines[0]["area"]), ("r", 300))
        self.assertLessEqual(abs(outlines[1]["area"] - 100 * math.pi), outlines[1]["areaAccuracy"])
        self.assertNotIn("area", self.run_json("measure", file)["files"][0]["outlines"][0])
        self.assertIn(", area 314.1592", self.run_text("measure", file, "--area"))
        self.fails("measure", file, "--area", "--classic", names=["--area"])

    def test_an_ellipse_reaches_as_far_as_its_radii(self):
        outlines = self.measure(svg('<ellipse id="e" cx="5" cy="6" rx="4" ry="3"/>'
                                    '<ellipse id="auto" cx="5" cy="6" rx="4"/>'))
        self.assertBox(outlines["e"]["bounds"], [1, 3, 9, 9])
        self.assertBox(outlines["auto"]["bounds"], [1, 2, 9, 10])

    def test_round_corners_shorten_a_rectangle(self):
        outlines = self.measure(svg(
            '<rect id="r" x="60" y="5" width="30" height="20" rx="5"/>'
            '<rect id="pill" width="30" height="20" rx="50" ry="10"/>'
            '<rect id="plain" width="30" height="20" rx="0" ry="5"/>'))
        self.assertLess(abs(outlines["r"]["length"] - (60 + 10 * math.pi)), 1e-6)
        self.assertBox(outlines["r"]["bounds"], [60, 5, 90, 25])
        self.assertBox(outlines["pill"]["bounds"], [0, 0, 30, 20])
        self.assertFalse(outlines["pill"]["lines"])  # the radii meet on all sides
        self.assertEqual(outlines["plain"]["length"], 100)
        self.assertFalse(outlines["plain"]["curves"])

    def test_corners_are_elliptical(self):
        """Points halfway along a corner lie on its ellipse."""
        file = self.write("r.svg", svg('<rect width="20" height="10" rx="10" ry="5"/>'))
        data = self.run_json("point", file, "--at", "0.06,0.125,0.19,0.4,0.66,0.93")
        for entry in data["outlines"][0]["points"]:
            h, v = entry["point"]
            self.assertLess(abs(math.hypot((h - 10) / 10, (v - 5) / 5) - 1), 1e-5)

    def test_lines_polylines_and_polygons_are_measured(self):
        outlines = self.measure(svg(
            '<line id="l" x1="1" y1="2" x2="4" y2="6"/>'
            '<polyline id="pl" points="0,0 3,4, 6 8"/><polygon id="pg" points="0 0 3 0 3-4"/>'))
        self.assertEqual([outlines[i]["length"] for i in ("l", "pl", "pg")], [5, 10, 12])
        self.assertEqual([outlines[i]["closed"] for i in ("l", "pl", "pg")], [False, False, True])

    def test_bounds_are_those_of_the_drawn_curve(self):
        outline = self.measure(svg('<path id="p" d="M0 0C0 40 40 40 40 0"/>'))["p"]
        self.assertBox(outline["bounds"], [0, 0, 40, 30], 1e-4)
        self.assertEqual(outline["controlBounds"], [0, 0, 40, 40])

    def test_lengths_may_have_units(self):
        body = "".join(f'<line id="{u}" x2="1{u}"/>' for u in
                       ("px", "pt", "pc", "mm", "cm", "in", "Q"))
        outlines = self.measure(svg(body + '<line id="pct" x2="50%"/>'
                                    '<circle id="r" r="10%"/>', 'viewBox="0 0 30 40"'))
        expected = {"px": 1, "pt": 4 / 3, "pc": 16, "mm": 96 / 25.4, "cm": 96 / 2.54, "in": 96,
                    "Q": 96 / 101.6, "pct": 15}
        for unit, length in expected.items():
            self.assertAlmostEqual(outlines[unit]["length"], length, 9, unit)
        radius = 0.1 * math.sqrt((30 * 30 + 40 * 40) / 2)
        self.assertBox(outlines["r"]["bounds"], [-radius, -radius, radius, radius],
                       outlines["r"]["accuracy"])

    def test_elements_without_an_outline_are_passed_over(self):
        self.assertEqual(self.measure(svg(
            '<rect width="0" height="5"/><circle r="0"/><ellipse rx="3" ry="0"/><path/>'
            '<path d=""/><path d="none"/><polyline points=""/>'
            "<!-- comment --><title>t</title>")), {})

    def test_nameless_outlines_are_numbered(self):
        self.assertEqual(list(self.measure(svg('<rect width="1" height="1"/><g><circle r="1"/></g>'
                                               '<path d="M0 0H1"/>'))),
                         ["rect#1", "circle#2", "path#3"])


class Structure(AppTest):
    def bounds(self, body, **options):
        return {k: o["bounds"] for k, o in self.measure(svg(body, **options)).items()}

    def test_transforms_apply(self):
        half = math.sqrt(0.5)
        cases = {
            "translate(5)": [5, 0, 15, 10],
            "translate(5,6)": [5, 6, 15, 16],
            "translate(5 -6)": [5, -6, 15, 4],
            "scale(2)": [0, 0, 20, 20],
            "scale(2 .5)": [0, 0, 20, 5],
            "scale(-1,1)": [-10, 0, 0, 10],
            "rotate(90)": [-10, 0, 0, 10],
            "rotate(45)": [-10 * half, 0, 10 * half, 20 * half],
            "rotate(180 5 5)": [0, 0, 10, 10],
            "rotate(90, 10, 10)": [10, 0, 20, 10],
            "skewX(45)": [0, 0, 20, 10],
            "skewY(45)": [0, 0, 10, 20],
            "matrix(1 2 3 4 5 6)": [5, 6, 45, 66],
            "matrix(1,0,0,1,1e1,-1.5e0)": [10, -1.5, 20, 8.5],
            "translate(5,0)scale(2)": [5, 0, 25, 20],
            " scale(2) , translate(5,0) ": [10, 0, 30, 20],
            "": [0, 0, 10, 10],
        }
        for text, expected in cases.items():
            with self.subTest(text):
                got = self.bounds(f'<rect id="r" width="10" height="10" transform="{text}"/>')["r"]
                self.assertBox(got, expected, 1e-9)

    def test_nested_transforms_multiply(self):
        got = self.bounds('<g transform="translate(100 0)"><a transform="scale(2)">'
                          '<rect id="r" x="1" width="1" height="1"/></a></g>')
        self.assertEqual(got["r"], [102, 0, 104, 2])

    def test_use_draws_again(self):
        got = self.bounds(
            '<defs><g id="pair"><rect id="a" width="1" height="1"/>'
            '<rect id="b" x="2" width="1" height="1"/></g></defs>'
            '<use id="u" href="#pair" x="10" y="20" transform="scale(2)"/>'
            '<use xlink:href="#b"/><use href="#missing"/>')
        self.assertEqual(got, {"u/a": [20, 40, 22, 42], "u/b": [24, 40, 26, 42],
                               "b": [2, 0, 3, 1]})

    def test_use_finds_later_elements(self):
        self.assertEqual(self.bounds('<use href="#r" x="5"/><defs><rect id="r" width="1" '
                                     'height="1"/></defs>')["r"], [5, 0, 6, 1])

    def test_a_symbol_fits_its_use(self):
        got = self.bounds('<symbol id="s" viewBox="0 0 10 10"><rect id="r" width="10" height="10"/>'
                          '</symbol><use href="#s" x="3" width="40" height="20"/>')
        # Fitted by its height, in the middle of the width: 10 on either side.
        self.assertEqual(got, {"r": [13, 0, 33, 20]})

    def test_an_inner_svg_fits_its_box(self):
        for rule, expected in {
            "": [3 + 10, 4, 3 + 30, 4 + 20],
            "none": [3, 4, 43, 24],
            "xMinYMid": [3, 4, 23, 24],
            "xMaxYMax meet": [23, 4, 43, 24],
            "xMidYMin slice": [3, 4, 43, 44],
            "xMidYMid slice": [3, -6, 43, 34],
        }.items():
            with self.subTest(rule):
                got = self.bounds(
                    '<svg x="3" y="4" width="40" height="20" viewBox="5 5 10 10" overflow="visible" '
                    f'preserveAspectRatio="{rule}"><rect id="r" x="5" y="5" width="10" '
                    'height="10"/></svg>')
                self.assertEqual(got["r"], expected)

    def test_hidden_elements_are_not_measured(self):
        self.assertEqual(self.bounds(
            '<g display="none"><rect width="1" height="1"/></g>'
            '<rect style="fill:red; display : none !important" width="1" height="1"/>'
            '<clipPath id="c"><rect width="1" height="1"/></clipPath>'
            '<mask><rect width="1" height="1"/></mask><marker><path d="M0 0H1"/></marker>'
            '<pattern><path d="M0 0H1"/></pattern><symbol><path d="M0 0H1"/></symbol>'
            '<other:path xmlns:other="urn:x" d="M0 0H1"/>'
            '<rect id="r" style="display:inline" display="none" width="1" height="1"/>'),
            {"r": [0, 0, 1, 1]})

    def test_a_switch_draws_its_first_match(self):
        self.assertEqual(list(self.bounds(
            '<switch><rect id="x" requiredExtensions="urn:x" width="1" height="1"/>'
            '<rect id="de" systemLanguage="de" width="1" height="1"/>'
            '<rect id="yes" width="1" height="1"/><rect id="late" width="1" height="1"/></switch>')),
            ["yes"])

    def test_a_document_may_have_a_prefix(self):
        self.assertEqual(list(self.measure(
            '<?xml version="1.0"?><!DOCTYPE svg [<!ENTITY x "y">]>'
            '<s:svg xmlns:s="http://www.w3.org/2000/svg"><s:rect id="r" width="1" height="1"/>'
            "</s:svg>")), ["r"])

    def test_a_document_may_be_utf16(self):
        self.assertEqual(list(self.measure(("\ufeff" + SQUARE).encode("utf-16-le"))), ["sq"])

    def test_names_are_kept(self):
        self.assertEqual(list(self.measure(svg('<path id="a&quot;&lt;ü&amp;" d="M0 0H1"/>'))),
                         ['a"<ü&'])
        self.run_text("flatten", self.path("in.svg"), "--error", "1", "-o", self.path("out.svg"))
        self.assertEqual(list(self.path_data("out.svg")), ['a"<ü&'])


class Measure(AppTest):
    def test_text_is_one_line_for_each_outline(self):
        file = self.write("in.svg", SQUARE)
        self.assertEqual(self.run_text("measure", file, file), (
            f"{file}: sq: 5 elements, length 40, bounds 0,0 to 10,10, closed, lines\n" * 2 +
            "2 files, 2 outlines, 10 elements, length 80, bounds 0,0 to 10,10\n"))

    def test_totals_add_up(self):
        a = self.write("a.svg", SQUARE)
        b = self.write("b.svg", svg('<path d="M-3 0V20"/>'))
        self.assertEqual(self.run_json("measure", a, b)["totals"], {
            "files": 2, "outlines": 2, "elements": 7, "length": 60.0,
            "bounds": [-3.0, 0.0, 10.0, 20.0], "accuracy": 1e-09})

    def test_a_drawing_may_have_no_outlines(self):
        self.assertEqual(self.measure(svg("")), {})
        self.assertIn("1 file, 0 outlines", self.run_text("measure", self.path("in.svg")))

    def test_a_dot_has_no_length(self):
        outline = self.measure(svg('<path id="p" d="M5 5"/>'))["p"]
        self.assertEqual((outline["length"], outline["bounds"]), (0.0, [5, 5, 5, 5]))

    def test_id_selects_an_outline(self):
        file = self.write("in.svg", svg('<path id="a" d="M0 0H1"/><path id="b" d="M0 0H2"/>'))
        self.assertEqual(self.run_json("measure", file, "--id", "b")["totals"]["length"], 2)

    def test_infinite_length_is_null(self):
        outline = self.measure(svg('<path id="p" d="M-1e308 0H1e308"/>'))["p"]
        self.assertIsNone(outline["length"])

    def test_compact_path_text_is_read(self):
        outline = self.measure(svg('<path id="p" d="M.5.5-1 .5a1 1 0 00.5.5"/>'))["p"]
        self.assertTrue(outline["curves"])

    def test_the_glyphs_of_a_font_are_outlines(self):
        glyphs = self.measure(font_bytes(), "font.bin")  # the name tells nothing
        names = ["glyph0", "glyph2", "glyph3", "glyph4"]
        self.assertEqual(list(glyphs), names)
        self.assertEqual(glyphs["glyph2"]["length"], 2000)
        self.assertEqual(glyphs["glyph2"]["bounds"], [0, -500, 500, 0])
        self.assertEqual(glyphs["glyph2"]["elements"], 5)
        arch = glyphs["glyph3"]
        self.assertLess(abs(arch["length"] - arch_length()), 0.1)
        self.assertBox(arch["bounds"], [0, -500, 1000, 0], 0.002)
        # The quadratic's control point (500, 1000), two thirds of the way from each end.
        self.assertAlmostEqual(arch["controlBounds"][1], -2000 / 3, 9)
        self.assertEqual(glyphs["glyph4"]["bounds"], [0, -400, 400, 0])
        self.assertTrue(all(g["closed"] for g in glyphs.values()))

    def shown_on_a_terminal(self, *arguments):
        """What the tool shows on standard error, which is a terminal."""
        try:
            master, slave = pty.openpty()
        except OSError as error:
            self.skipTest(f"no terminal can be opened here: {error}")
        process = subprocess.Popen([PROGRAM, *arguments], stdout=subprocess.DEVNULL, stderr=slave)
        os.close(slave)
        shown = b""
        while True:
            try:
                data = os.read(master, 65536)
            except OSError:  # Linux tells the end of a terminal so
                break
            if not data:
                break
            shown += data
        os.close(master)
        self.assertEqual(process.wait(), 0)
        return shown

    def test_long_work_shows_progress_on_a_terminal_only(self):
        shown = b""
        curves = 500
        while not shown and curves < 1e6:  # work is long on slow machines first
            curves *= 4
            file = self.write("in.svg", svg('<path d="M0 0C0 4e6 4e6 4e6 4e6 0"/>' * curves))
            shown = self.shown_on_a_terminal("measure", *[file] * 20)
        self.assertIn(b"of 20", shown)
        self.assertTrue(shown.endswith(b"\x1b[K"))  # wiped at the end
        self.run_text("measure", file)  # and nothing in a pipe


if __name__ == "__main__":
    unittest.main()
