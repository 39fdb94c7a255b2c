#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of the commands that write outlines: `flatten`, `cut`, `transform`, `hatch`, `glyphs`."""

import math
import re
import struct
import unittest
import xml.etree.ElementTree as ElementTree

from support import AppTest, SQUARE, font_bytes, svg


class Shaping(AppTest):
    def setUp(self):
        super().setUp()
        self.square = self.write("square.svg", SQUARE)
        self.out = self.path("out.svg")

    def test_flatten_takes_more_points_for_less_error(self):
        file = self.write("in.svg", svg('<circle id="c" cx="50" cy="50" r="10"/>'))
        counts = []
        for error in ("1", "0.1", "0.01"):
            self.run_text("flatten", file, "--error", error, "-o", self.out)
            outline = self.measure_file("out.svg")["c"]
            self.assertTrue(outline["lines"] and outline["closed"] and not outline["curves"])
            self.assertBox(outline["bounds"], [40, 40, 60, 60], 1e-9)
            # Chords of a circle of radius 10 that leave it by at most e are shorter than it.
            self.assertLess(outline["length"], 20 * math.pi)
            self.assertGreater(outline["length"], 20 * math.pi * (1 - float(error) / 10))
            counts.append(outline["elements"])
        self.assertTrue(counts[0] <= counts[1] < counts[2], counts)

    def test_flatten_refuses_an_error_that_takes_millions_of_points(self):
        file = self.write("in.svg", svg('<circle id="sun" r="1e300"/>'))
        for classic in ([], ["--classic"]):
            self.fails("flatten", file, "--error", "0.1", "-o", self.path("out.svg"), *classic,
                       names=[file, "sun", "more than 4000000 points", "--error"])

    def test_flatten_takes_any_number_of_short_curves(self):
        # Ten curves of some 600 points, of which the drawing shows 6 million.
        curves = '<path id="p" d="M0 0' + "c0 50 50 50 50 0" * 10 + '"/>'
        file = self.write("in.svg", svg(f"<defs>{curves}</defs>" + '<use href="#p"/>' * 1000))
        self.run_text("flatten", file, "--error", "1e-4", "-o", self.out)
        self.assertEqual(list(self.path_data("out.svg")), ["p"])

    def test_flatten_leaves_lines_alone(self):
        self.run_text("flatten", self.square, "--error", "5", "-o", self.out)
        self.assertEqual(self.read("out.svg").decode(), SQUARE)

    def test_cut_writes_piece_and_rest(self):
        rest = self.path("rest.svg")
        self.run_text("cut", self.square, "--from", "0.25", "--to", "0.5", "-o", self.out,
                      "--rest", rest)
        self.assertEqual(self.path_data("out.svg"), {"sq": "M10 0V10"})
        self.assertEqual(self.path_data("rest.svg"), {"sq": "M10 10H0V0H10"})

    def test_an_open_outline_leaves_two_rests(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H100"/>'))
        self.run_text("cut", file, "--from", "0.25", "--to", "0.5", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        self.assertEqual(self.path_data("out.svg"), {"p": "M25 0H50"})
        self.assertEqual(self.path_data("rest.svg"), {"p": "M0 0H25M50 0h50"})

    def test_cutting_everything_leaves_no_rest(self):
        self.run_text("cut", self.square, "--from", "0", "--to", "1", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        self.assertEqual(self.path_data("out.svg"), {"sq": "M0 0H10V10H0Z"})
        self.assertEqual(self.path_data("rest.svg"), {"sq": ""})
        self.assertEqual(self.measure_file("rest.svg"), {})

    def test_cut_does_not_join_subpaths(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H10M50 0H60M90 0H110"/>'))
        self.run_text("cut", file, "--from", "0.125", "--to", "0.75", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        self.assertEqual(self.path_data("out.svg"), {"p": "M5 0h5M50 0H60M90 0h10"})
        self.assertEqual(self.path_data("rest.svg"), {"p": "M0 0H5m95 0h10"})

    def test_cut_pieces_of_curves_add_up(self):
        file = self.write("in.svg", svg('<circle id="c" cx="50" cy="50" r="10"/>'))
        whole = self.measure_file("in.svg")["c"]["length"]
        self.run_text("cut", file, "--from", "0.2", "--to", "0.55", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        piece = self.measure_file("out.svg")["c"]
        rest = self.measure_file("rest.svg")["c"]
        self.assertLess(abs(piece["length"] - 0.35 * whole), 0.02)
        self.assertLess(abs(piece["length"] + rest["length"] - whole), 0.01)
        self.assertFalse(piece["closed"] or rest["closed"])

    def test_transform_moves_outlines(self):
        for options, expected in {
            ("--rotate", "90"): "M0 0V10H-10V0Z",
            ("--rotate", "90,5,5"): "M10 0V10H0V0Z",
            ("--scale", "2"): "M0 0H20V20H0Z",
            ("--scale", "2,.5"): "M0 0H20V5H0Z",
            ("--translate", "-5,7"): "M-5 7H5V17H-5Z",
            ("--map", "100,100,120,110"): "M100 100h20v10H100Z",
            ("--translate", "1,0", "--scale", "2"): "M2 0H22V20H2Z",
            ("--scale", "2", "--translate", "1,0"): "M1 0H21V20H1Z",
            ("--translate", "1,0", "--scale", "2", "--translate", "1,0"): "M3 0H23V20H3Z",
            (): "M0 0H10V10H0Z",
        }.items():
            with self.subTest(options):
                self.run_text("transform", self.square, *options, "-o", self.out)
                got = self.read("out.svg")
                want = self.measure(svg(f'<path id="x" d="{expected}"/>'))["x"]["bounds"]
                self.assertEqual(self.measure_file("out.svg")["sq"]["bounds"], want)
                self.assertEqual(
                    self.run_json("point", self.out, "--at", "0,0.3")["outlines"][0]["points"],
                    self.run_json("point", self.path("in.svg"), "--at", "0,0.3")["outlines"][0]
                    ["points"], got)

    def test_map_fits_the_drawn_bounds(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0C0 40 40 40 40 0"/>'))
        self.run_text("transform", file, "--rotate", "30", "--map", "10,20,30,40", "-o", self.out)
        self.assertBox(self.measure_file("out.svg")["p"]["bounds"], [10, 20, 30, 40], 1e-4)

    def test_page_and_paper_size_are_kept(self):
        file = self.write("in.svg", svg('<rect width="10" height="10"/>',
                                        'viewBox="0 0 100 50" width="20mm" height="10mm"'))
        self.run_text("transform", file, "--translate", "1,1", "-o", self.out)
        root = ElementTree.parse(self.out).getroot()
        self.assertEqual((root.get("viewBox"), root.get("width"), root.get("height")),
                         ("0 0 100 50", "20mm", "10mm"))
        self.run_text("transform", file, "--translate", "190,0", "-o", self.out)
        root = ElementTree.parse(self.out).getroot()
        self.assertEqual((root.get("viewBox"), root.get("width"), root.get("height")),
                         ("0 0 100 50", "20mm", "10mm"))

    def test_hatch_fills_with_lines(self):
        self.run_text("hatch", self.square, "--angle", "0", "--spacing", "2", "-o", self.out)
        outline = self.measure_file("out.svg")["sq-hatch"]
        self.assertEqual((outline["length"], outline["subpaths"]), (50, 5))
        self.assertEqual(outline["bounds"], [0, 1, 10, 9])

    def test_hatch_leaves_holes(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H20V20H0zM5 5H15V15H5z"/>'))
        self.run_text("hatch", file, "--angle", "90", "--spacing", "4", "-o", self.out)
        # Lines at 2, 6, 10, 14, 18: the outer two are whole, the others miss 10 each.
        outline = self.measure_file("out.svg")["p-hatch"]
        self.assertAlmostEqual(outline["length"], 20 + 20 + 3 * 10, 9)
        self.assertEqual(outline["subpaths"], 2 + 3 * 2)

    def test_hatch_covers_the_area(self):
        """Length times spacing is the area; overlapping subpaths cancel."""
        file = self.write("in.svg", svg('<path id="p" d="M10 0 20 10 10 20 0 10zM12 8h4v4h-4z"/>'
                                        '<circle id="c" cx="50" cy="50" r="10"/>'))
        for angle in ("0", "17", "45", "90", "-30", "200"):
            with self.subTest(angle):
                self.run_text("hatch", file, "--angle", angle, "--spacing", "0.05", "-o", self.out)
                outlines = self.measure_file("out.svg")
                # To within one line more or less.
                self.assertLess(abs(outlines["p-hatch"]["length"] * 0.05 - (200 - 16)), 1.0)
                self.assertLess(abs(outlines["c-hatch"]["length"] * 0.05 - 100 * math.pi), 1.0)

    def test_hatch_works_far_from_the_origin(self):
        """Where neighbouring numbers are further apart than the lines, there still is an end."""
        file = self.write("in.svg", svg('<rect width="100" height="100" x="1e17" y="1e17"/>'))
        self.run_text("hatch", file, "--angle", "0", "--spacing", "1", "-o", self.out)

    def test_hatch_works_at_any_size(self):
        for size in ("1e-250", "1e-120", "1e120", "1e250"):
            with self.subTest(size):
                file = self.write("in.svg", svg(
                    f'<g transform="scale({size})"><rect id="r" width="10" height="10"/></g>'))
                self.run_text("hatch", file, "--angle", "0", "--spacing", f"5{size[1:]}",
                              "--stroke-width", f"2{size[1:]}", "-o", self.out)
                lines = re.findall("[-0-9.e]+", self.path_data("out.svg")["r-hatch"])
                for got, want in zip(lines, (0, 2.5, 10, 0, 7.5, 10)):
                    self.assertAlmostEqual(float(got), want, 12)
                self.assertEqual(len(lines), 6)
                width = re.search("stroke-width:(.*?);", self.read("out.svg").decode()).group(1)
                self.assertAlmostEqual(float(width), 2, 12)

    def test_hatch_may_keep_the_outlines(self):
        file = self.write("in.svg", svg('<path id="p" fill="red" d="M0 0H9V9H0Z"/>'))
        self.run_text("hatch", file, "--angle", "0", "--spacing", "3", "--outlines", "-o", self.out)
        self.assertIn(b'<path id="p" fill="red" d="M0 0H9V9H0Z"/>', self.read("out.svg"))
        self.run_text("hatch", file, "--angle", "0", "--spacing", "3", "-o", self.out)
        self.assertIn(b'<path id="p" fill="none" d="M0 0H9V9H0Z"/>', self.read("out.svg"))
        self.assertIn(b"stroke:red;", self.read("out.svg"))
        self.assertEqual(list(self.path_data("out.svg")), ["p", "p-hatch"])

    def test_a_png_is_written(self):
        self.run_text("flatten", self.square, "--error", "1", "-o", self.path("out.png"))
        data = self.read("out.png")
        self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">II", data[16:24]), (1200, 1200))
        self.assertTrue(data.endswith(b"IEND\xaeB`\x82"))

    def test_glyphs_can_be_shaped(self):
        font = self.write("font", font_bytes())
        self.run_text("flatten", font, "--id", "glyph2", "--error", "1", "-o", self.out)
        self.assertEqual(self.measure_file("out.svg")["glyph2"]["bounds"], [0, -500, 500, 0])


class Shapes(AppTest):
    def area(self, *arguments):
        self.run_text("shape", *arguments, "-o", self.path("shape.svg"))
        outline = self.run_json("area", self.path("shape.svg"))["outlines"][0]
        return outline["id"], outline["signedArea"]

    def test_shapes_have_their_areas(self):
        for arguments, expected in (
                (("circle", "50,60,10", "--tolerance", "1e-9"), 100 * math.pi),
                (("ellipse", "5,6,4,3,30", "--tolerance", "1e-9"), 12 * math.pi),
                (("rect", "1,2,11,22"), 200),
                (("rect", "0,0,10,20,2", "--tolerance", "1e-9"), 200 - 4 * (4 - math.pi)),
                (("polygon", "0,0,10,6"), 150 * math.sqrt(3)),
                (("star", "0,0,10,5,4,0"), 4 * 50 * math.sin(math.pi / 4))):
            with self.subTest(arguments):
                name, area = self.area(*arguments)
                self.assertEqual(name, arguments[0])
                self.assertAlmostEqual(area, expected, 5)

    def test_a_circle_keeps_its_tolerance(self):
        coarse = self.area("circle", "0,0,10", "--tolerance", "0.1", "--set-id", "ring")
        self.assertEqual(coarse[0], "ring")
        self.assertLess(abs(coarse[1] - 100 * math.pi), 20 * math.pi * 0.1)
        self.run_text("shape", "circle", "0,0,10", "--tolerance", "1e-9", "-o",
                      self.path("fine.svg"))
        self.assertGreater(self.measure_file("fine.svg")["circle"]["elements"], 20)

    def test_a_shape_is_added_to_a_drawing(self):
        head = '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9" transform="scale(2)"'
        for name, text, begin, end in (
                ("end tag", head + ">\n<rect width='1' height='1'/></svg>\n", -7, "</svg>\n"),
                ("empty", head + "/>", -2, "</svg>"),
                ("empty end", head + "></svg>", -6, "</svg>")):
            with self.subTest(name):
                file = self.write("in.svg", text)
                self.run_text("shape", "circle", "4,4,2", "--into", file, "--stroke-width", "0.5",
                              "--set-id", "o", "-o", self.path("out.svg"))
                got = self.read("out.svg").decode()
                self.assertTrue(got.startswith(text[:begin]) and got.endswith(end), got)
                self.assertIn('<path id="o" style="fill:none;stroke:#000000;stroke-width:0.25" d="',
                              got)
                self.assertBox(self.measure_file("out.svg")["o"]["bounds"], [2, 2, 6, 6])
        self.fails("shape", "circle", "4,4,2", "--into", file, "-o", self.path("out.png"),
                   names=["out.png", ".svg"])
        self.fails("shape", "circle", "4,4,2", "--into", self.write("f.ttf", font_bytes()), "-o",
                   self.path("out.svg"), names=["f.ttf", "no SVG drawing"])

    def test_reversing_keeps_the_drawing(self):
        body = ('<g class="k" ><!-- c --><path id="a"  d="M0 0H9V9z" fill=\'red\'/></g>'
                '<line id="l" x2="5"/>')
        file = self.write("in.svg", svg(body))
        self.run_text("reverse", file, "--id", "a", "-o", self.path("out.svg"))
        self.assertEqual(self.read("out.svg").decode(), svg(body.replace("M0 0H9V9z", "M9 9V0H0Z")))
        self.run_text("reverse", self.path("out.svg"), "-o", self.path("again.svg"))
        self.assertEqual(self.path_data("again.svg"), {"a": "M0 0H9V9Z", "l": "M5 0H0"})
        self.run_text("reverse", file, "--precision", "2", "--zoom", "2", "-o", self.path("out.png"))

    def test_a_transform_that_is_undone_leaves_no_noise_in_the_coordinates(self):
        body = ('<g transform="matrix(.99744 0 0 1 -962.49 -164)"><g transform="translate(-.041 -7)">'
                '<path id="a" d="m965.5 173.5h10l4 4h-10l-4-4z"/></g></g>')
        file = self.write("in.svg", svg(body))
        self.run_text("reverse", file, "-o", self.path("out.svg"))
        self.assertEqual(self.path_data("out.svg"), {"a": "M965.5 173.5l4 4h10l-4-4h-10Z"})

    def test_parts_of_transformed_paths_have_no_noise_in_their_coordinates(self):
        body = ('<g transform="matrix(.99744 0 0 1 -962.49 -164)"><g transform="translate(-.041 -7)">'
                '<path d="m965.5 173.5h10l4 4h-10z"/><path d="M967 170h2v6h-2z"/></g></g>')
        file = self.write("in.svg", svg(body))
        self.run_text("divide", file, "-o", self.path("out.svg"))
        self.assertEqual(sorted(re.findall(r' d="([^"]*)"', self.read("out.svg").decode())),
                         ["M965.5 173.5H967V175Z", "M967 173.5V170h2v3.5Z",
                          "M967 173.5h2V176h-1l-1-1Z", "M968 176h-1v-1Z",
                          "M969 173.5h6.5l4 4h-10L968 176h1Z"])

    MARKERS = ('<marker id="dot"/><marker id="tick" orient="45"/><marker id="to" orient="auto"/>'
               '<marker id="ends" orient="auto-start-reverse"/>')

    def markers_after_reverse(self, look, d="M0 0H9V5"):
        """The look of a path after it was reversed, and the warnings."""
        body = f'{self.MARKERS}<path id="p" d="{d}" {look}/>'
        file = self.write("in.svg", svg(body))
        result = self.execute("reverse", file, "-o", self.path("out.svg"))
        self.assertEqual(result.returncode, 0)
        got = re.search('<path id="p" d="[^"]*" (.*?)/>', self.read("out.svg").decode())
        told = [line for line in result.stderr.decode().splitlines() if "left out" not in line]
        return got.group(1), told

    def test_markers_that_look_the_same_change_places(self):
        for before, after in (
                ('marker-end="url(#dot)"', 'marker-end="none" marker-start="url(#dot)"'),
                ('marker-end="url(#ends)"', 'marker-end="none" marker-start="url(#ends)"'),
                ('marker-start="url(#tick)" marker-end="url(#ends)"',
                 'marker-start="url(#ends)" marker-end="url(#tick)"'),
                ('style="marker:url(#dot);marker-end:none"',
                 'style="marker:url(#dot);marker-end:none;marker-start:none;marker-end:url(#dot)"'),
                ('marker-start="url(#ends)" marker-end="url(#ends)"',) * 2,
                ('marker-mid="url(#tick)"',) * 2,
                ('marker-end="url(#missing)"',) * 2,
                ('style="marker:url(#dot)"',) * 2):
            with self.subTest(before):
                self.assertEqual(self.markers_after_reverse(before), (after, []))

    def test_inherited_markers_change_places(self):
        body = f'{self.MARKERS}<g marker-end="url(#dot)"><path id="p" d="M0 0H9"/></g>'
        self.run_text("reverse", "-q", self.write("in.svg", svg(body)), "-o", self.path("out.svg"))
        self.assertIn('<g marker-end="url(#dot)"><path id="p" d="M9 0H0" marker-end="none" '
                      'marker-start="url(#dot)"/></g>', self.read("out.svg").decode())

    def test_markers_that_cannot_look_the_same_are_told(self):
        for look in ('marker-end="url(#to)"', 'marker-start="url(#to)"', 'marker-mid="url(#to)"',
                     'marker-mid="url(#ends)"', 'style="marker:url(#ends)"'):
            with self.subTest(look):
                after, told = self.markers_after_reverse(look)
                self.assertEqual((after, len(told)), (look, 1))
                self.assertRegex(told[0], "p: its markers follow the new beginning and direction")
        for d in ("M0 0H9V5Z", "M0 0H9M5 5V9"):
            after, told = self.markers_after_reverse('marker-end="url(#dot)"', d=d)
            self.assertEqual((after, len(told)), ('marker-end="url(#dot)"', 1))

    def test_new_paths_get_ids_of_their_own(self):
        file = self.write("in.svg", svg('<path id="r" d="M0 0H9V9Z"/><g id="1-glyph2"/>'))
        font = self.write("font.ttf", font_bytes())
        out = self.path("out.svg")
        self.run_text("hatch", file, "--angle", "0", "--spacing", "3", "-o", out)
        self.run_text("hatch", out, "--id", "r", "--angle", "90", "--spacing", "3", "-o", out)
        self.run_text("text", font, "A", "--along", out, "--id", "r", "-o", out)
        for _ in range(2):
            self.run_text("shape", "circle", "5,5,2", "--into", out, "-o", out)
        self.assertEqual(list(self.path_data("out.svg")),
                         ["r", "1-glyph2-2", "r-hatch-2", "r-hatch", "circle", "circle-2"])
        self.fails("shape", "circle", "5,5,2", "--into", out, "--set-id", "r-hatch", "-o", out,
                   names=["--set-id: 'r-hatch': is an element of", "out.svg"], output="out.svg")

    def test_text_along_a_reversed_line_is_told(self):
        body = ('<path id="p" d="M0 0H9"/><path id="q" d="M0 5H9"/>'
                '<text><textPath href="#p">up</textPath></text>')
        result = self.execute("reverse", self.write("in.svg", svg(body)), "-o",
                              self.path("out.svg"))
        self.assertEqual([line.split("in.svg: ")[1] for line in result.stderr.decode().splitlines()
                          if "no outlines" not in line],
                         ["p: the text along it follows the new direction"])

    def test_a_shape_that_becomes_a_path_gets_no_markers(self):
        body = ('<style>svg{marker:url(#dot)}</style><marker id="dot"/>'
                '<rect id="r" width="2" height="2"/>')
        self.run_text("reverse", "-q", self.write("in.svg", svg(body)), "-o", self.path("out.svg"))
        self.assertRegex(self.read("out.svg").decode(), '<path id="r" [^>]*style="marker:none"')

    def test_wrong_shapes_are_named(self):
        out = self.path("out.svg")
        self.fails("shape", "blob", "1,2", "-o", out, names=["'blob'", "star"])
        self.fails("shape", "circle", "1,2", "-o", out, names=["circle", "1,2"])
        self.fails("shape", "polygon", "0,0,1,2", "-o", out, names=["3"])
        self.fails("shape", "polygon", "0,0,1,1e18", "-o", out, names=["1000000"])
        self.fails("shape", "circle", "0,0,1", "--tolerance", "0", "-o", out,
                   names=["--tolerance"])

    def test_reverse_draws_the_other_way(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H10V10H0z"/>'
                                        '<path id="s" d="M0 0C3 5 31 -5 61 0"/>'))
        self.run_text("reverse", file, "-o", self.path("out.svg"))
        areas = [{o["id"]: o["signedArea"] for o in
                  self.run_json("area", self.path(name))["outlines"]}
                 for name in ("in.svg", "out.svg")]
        self.assertEqual(areas[1]["p"], -areas[0]["p"])
        self.assertEqual(areas[1]["s"], -areas[0]["s"])
        point = self.run_json("point", self.path("out.svg"), "--id", "s", "--at", "0")
        self.assertEqual(point["outlines"][0]["points"][0]["point"], [61, 0])


if __name__ == "__main__":
    unittest.main()
