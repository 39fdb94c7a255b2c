#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of the commands that give outlines new forms: `overlap`, `divide`, `stroke`, `offset`, `simplify`,
`fit`."""

import json
import math
import re
import unittest

from support import AppTest, font_bytes, svg


class Outlines(AppTest):
    def setUp(self):
        super().setUp()
        self.out = self.path("out.svg")

    def areas(self, *options, name="out.svg"):
        """The areas of the outlines of a drawing, by id and the rule."""
        found = {}
        for rule in ("nonzero", "evenodd"):
            data = self.run_json("area", self.path(name), "--rule", rule, *options)
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

    def test_lines_with_a_stroke_stay_though_they_have_the_default_fill(self):
        line = '<line id="l" x2="9" y2="9" stroke="red"/>'
        body = '<path id="s" d="M0 0H4V4H0Z"/>' + line
        file = self.write("in.svg", svg(body))
        for command in (("overlap",), ("offset", "--by", "1"), ("offset", "--by", "-1"), ("divide",)):
            self.run_text(*command, file, "-o", self.out)
            self.assertIn(line, self.read("out.svg").decode(), command)

    def test_an_element_pressed_into_a_line_stays(self):
        pressed = '<path id="p" transform="scale(0)" d="M0 0H9V9Z"/>'
        file = self.write("in.svg", svg('<path id="s" d="M0 0H4V4H0Z"/>' + pressed))
        for command in (("overlap",), ("reverse",), ("simplify",)):
            self.run_text(*command, file, "-o", self.out)
            self.assertIn(pressed, self.read("out.svg").decode(), command)

    def test_stroke_warns_of_copies_with_other_strokes(self):
        shape = '<defs><path id="p" fill="none" d="M0 0H9"/></defs>'
        for second, warnings in (("red", 0), ("blue", 1)):
            uses = '<use href="#p" stroke="red"/><use href="#p" y="5" stroke="%s"/>' % second
            file = self.write("in.svg", svg(shape + uses))
            result = self.execute("stroke", file, "-o", self.out)
            self.assertEqual(result.returncode, 0)
            self.assertEqual(result.stderr.count(b"with other strokes"), warnings, result.stderr)

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

    def test_divide_gives_each_part_to_the_shape_on_top(self):
        # A square, a circle over its right side, and a stripe through both. A line stays.
        body = ('<rect id="r" class="k" fill="red" width="40" height="40"/>'
                '<circle id="c" style="fill:#00f" cx="40" cy="20" r="10"/>'
                '<path d="M0 18H60V22H0Z" fill="green"/>'
                '<path id="l" fill="none" stroke="red" d="M0 0L60 40"/>')
        file = self.write("in.svg", svg(body))
        self.run_text("divide", file, "--tolerance", "1e-6", "-o", self.out)
        text = self.read("out.svg").decode()
        half = math.asin(0.2)  # of the angle of the stripe's edge on the circle
        stripe = 2 * (100 * half + 2 * math.sqrt(96))
        cap = (100 * math.pi - stripe) / 2
        areas = {id: area[0] for id, area in self.areas().items()}
        stripes = sorted(area for id, area in areas.items() if id.startswith("path#"))
        for got, want in ((areas["r"], 720 - cap / 2), (areas["r-2"], 720 - cap / 2)):
            self.assertAlmostEqual(got, want, delta=1e-4)
        circle = sorted(areas[f"c{n}"] for n in ("", "-2", "-3", "-4"))
        self.assertBox(circle, [cap / 2] * 4, 1e-4)
        self.assertBox(stripes, sorted([stripe / 2, stripe / 2, 160 - stripe / 2,
                                        80 - stripe / 2]), 1e-4)
        self.assertEqual(len(areas), 2 + 4 + 4 + 1)
        self.assertEqual(text.count('class="k" fill="red"'), 2)
        self.assertEqual(text.count('style="fill:#00f"'), 4)
        self.assertEqual(text.count('fill="green"'), 4)
        self.assertIn(body[body.index('<path id="l"'):], text)
        self.assertAlmostEqual(sum(areas.values()),
                               1600 + 50 * math.pi + 80 - stripe / 2, delta=1e-3)

    def test_divide_tells_what_shows_through(self):
        def told(top, around="", behind="", more=""):
            file = self.write("in.svg", svg(
                '<linearGradient id="clear"><stop offset="0" stop-color="red"/><stop offset="1" '
                'style="stop-opacity:.5"/></linearGradient><linearGradient id="solid" '
                'href="#none"><stop stop-color="#f00f"/></linearGradient><linearGradient '
                'id="like" href="#clear"/><pattern id="dots"/>'
                '<path id="low" d="M0 0H10V10H0Z"/>' + around +
                f'<path id="top" d="M5 5H15V15H5Z" {top}/>' + behind + more))
            result = self.execute("divide", file, "-o", self.out)
            self.assertEqual(result.returncode, 0)
            lines = [line for line in result.stderr.decode().splitlines() if "pattern" not in line]
            return [line.split("in.svg: ")[1] for line in lines]
        one = ["top: is translucent, and what shows through it goes"]
        for look in ('opacity=".5"', 'fill-opacity="50%"', 'fill="#f008"', 'fill="#ff000080"',
                     'fill="rgba(9,9,9,.5)"', 'fill="rgb(9 9 9 / 50%)"', 'fill="transparent"',
                     'fill="url(#clear)"', 'fill="url(#like)"', 'fill="url(#dots)"'):
            self.assertEqual(told(look), one, look)
        for look in ("", 'opacity="1"', 'fill="#f00f"', 'fill="rgb(9,9,9)"', 'fill="url(#solid)"',
                     'fill="rgba(9,9,9,1)"', 'fill="#00f" stroke="none"',
                     'opacity=".5" transform="translate(20)"'):
            self.assertEqual(told(look), [], look)
        # A group covers what lies below it, and not its own.
        self.assertEqual(told("", '<g opacity=".5"><g>', "</g></g>"), one)
        self.assertEqual(told('transform="translate(20)"', '<g opacity=".5">',
                              '<path d="M28 8H30V30H28Z"/></g>'), [])
        self.assertEqual(told('opacity=".5"', more='<path d="M0 0H9V9Z" opacity="0.1"/>'),
                         [one[0] + "; so does what shows through 1 more"])

    def test_divide_tells_of_lines_on_new_borders(self):
        def told(low, top):
            file = self.write("in.svg", svg(f'<path id="low" {low} d="M0 0H10V10H0Z"/>'
                                            f'<path id="top" {top} d="M5 5H15V15H5Z"/>'))
            result = self.execute("divide", file, "-o", self.out)
            return [line.split("in.svg: ")[1] for line in result.stderr.decode().splitlines()]
        line = ": has a line, which the new borders of its parts get, too"
        self.assertEqual(told('stroke="red"', ""), ["low" + line])
        self.assertEqual(told("", 'stroke="red"'), ["top" + line])
        self.assertEqual(told('stroke="red"', 'stroke="red"'), ["low" + line + "; so do those of 1 more"])
        self.assertEqual(told('stroke="red" stroke-width="0"', 'stroke="none"'), [])
        self.assertEqual(told('stroke="red" transform="translate(9 20)"', 'stroke="red"'), [])

    def test_divide_keeps_the_tolerance_that_it_has_by_itself(self):
        for size in range(1, 60, 7):
            file = self.write("in.svg", svg(
                f'<circle r="{size / 3}"/><circle cx="{size / 7}" r="{size / 5}"/>'
                f'<circle cx="{size / 9}" cy="{size / 9}" r="{size / 11}"/>'))
            self.run_text("divide", file, "-o", self.out)

    def test_divide_removes_what_is_covered(self):
        body = ('<path id="below" d="M1 1H9V9H1Z"/>\n<g fill="blue">\n  <path id="top" d="M0 0H10V10H0Z">'
                '<title>t</title></path>\n</g>')
        self.run_text("divide", self.write("in.svg", svg(body)), "-o", self.out)
        text = self.read("out.svg").decode()
        self.assertNotIn("below", text)
        # The edges of the shape below divide the one on top: a square, and a ring around it. The
        # larger part keeps the element.
        self.assertEqual(self.areas(), {"top": [64, 64], "top-2": [36, 36]})
        self.assertIn('  <path id="top" d="M1 1H9V9H1Z"><title>', text)
        self.assertEqual(text.count("<title>"), 1)

    def test_divide_keeps_style_by_id_and_takes_copies_apart(self):
        sheet = '<style>#a{stroke:lime} .k{fill:red}</style>'
        body = (sheet + '<path id="a" class="k" d="M0 0H10V10H0Z"/>'
                '<path id="b" d="M4 -1H6V11H4Z" fill="blue"/>')
        self.run_text("divide", "-q", self.write("in.svg", svg(body)), "-o", self.out)
        text = self.read("out.svg").decode()
        self.assertRegex(text, r'id="a-2"[^>]*class="k"[^>]*style="[^"]*stroke:lime')
        used = ('<defs><path id="s" d="M0 0H10V10H0Z"/></defs><use id="u" href="#s" fill="red"/>'
                '<use id="v" href="#s" x="5" transform="scale(2)" fill="blue"/>')
        self.run_text("divide", self.write("in.svg", svg(used)), "-o", self.out)
        text = self.read("out.svg").decode()
        self.assertNotIn("<use", text)
        self.assertIn("<defs>", text)
        areas = self.areas()
        self.assertEqual({id: a[0] for id, a in areas.items()}, {"u-s": 100, "v-s": 400})
        look = ('<defs><path id="s" opacity="50%" d="M0 0H10V10H0Z"/></defs><use id="u" href="#s" class="k" '
                'opacity=".5" fill-opacity=".3" stroke="red" stroke-dasharray="2 1" stroke-linejoin="round" '
                'transform="scale(2)"/>')
        self.run_text("divide", self.write("look.svg", svg(look)), "-o", self.out)
        path = re.search(r'<path id="u-s"[^>]*>', self.read("out.svg").decode()).group()
        for part in ('class="k"', "opacity:0.25", "fill-opacity:.3", "stroke-dasharray:4,2", "stroke-linejoin:round",
                     "stroke-width:2"):
            self.assertIn(part, path)
        self.run_text("divide", self.path("in.svg"), "--id", "u/s", "-o", self.out)
        self.assertEqual(self.read("out.svg").decode().count("<use"), 1)

    GRADIENTS = ('<defs><linearGradient id="g"><stop offset="0" stop-color="red"/><stop offset="1"/></linearGradient>'
                 '<radialGradient id="r" href="#g" fx="20%" gradientTransform="scale(2)"/>'
                 '<linearGradient id="u" href="#g" gradientUnits="userSpaceOnUse" x2="10"/>'
                 '<pattern id="p" width=".5" height=".5"><rect width="1" height="1"/></pattern></defs>')

    def test_stroke_keeps_gradients_in_their_places(self):
        body = (self.GRADIENTS + '<rect id="a" x="5" width="40" height="20" fill="none" stroke="url(#g) red"/>'
                '<path id="flat" d="M0 50H40" fill="none" stroke="url(#g) lime"/>'
                '<path id="none" d="M0 60H40" fill="none" stroke="url(#g)"/>'
                '<rect id="own" y="70" width="40" height="20" fill="none" stroke="url(#u)"/>')
        self.run_text("stroke", self.write("in.svg", svg(body)), "-o", self.out)
        text = self.read("out.svg").decode()
        # The gradient runs over the rectangle, which is narrower than its line.
        self.assertIn('<linearGradient id="g-kept" xlink:href="#g" gradientUnits="userSpaceOnUse" '
                      'gradientTransform="matrix(40,0,0,20,5,0)" x1="0" y1="0" x2="1" y2="0"/>', text)
        for name, fill in (("a", "url(#g-kept) red"), ("flat", "lime"), ("none", "none"), ("own", "url(#u)")):
            self.assertIn(f'fill="{fill}"', re.search(f'<path id="{name}"[^>]*>', text).group())

    def test_divide_keeps_paints_and_dashes_of_the_whole(self):
        body = (self.GRADIENTS +
                '<rect id="a" width="40" height="20" fill="url(#r)" stroke="url(#u)" stroke-dasharray="2 1" '
                'pathLength="60"/><rect id="b" x="10" y="-5" width="10" height="30"/>')
        self.run_text("divide", "-q", self.write("in.svg", svg(body)), "-o", self.out)
        text = self.read("out.svg").decode()
        self.assertIn('gradientTransform="matrix(80,0,0,40,0,0)" cx="0.5" cy="0.5" r="0.5" fx="0.2"/>', text)
        for name in ("a", "a-2"):
            part = re.search(f'<path id="{name}"[^>]*>', text).group()
            for kept in ('fill="url(#r-kept)"', 'stroke="url(#u)"', 'stroke-dasharray="4,2"'):
                self.assertIn(kept, part)
            self.assertNotIn("pathLength", part)
        file = self.write("pattern.svg", svg(body.replace("#r", "#p")))
        warned = self.execute("divide", file, "-o", self.out).stderr.decode()
        self.assertIn("line 2, column", warned)
        self.assertIn('<rect id="a">: its pattern \'#p\' is placed anew', warned)
        self.assertIn("a: has a line, which the new borders of its parts get, too", warned)
        self.assertEqual(warned.count("\n"), 2)

    def test_commands_keep_the_length_of_dashes_that_path_length_scales(self):
        # 80 long, which counts as 160: dashes of 4 are 2 long.
        body = ('<path id="a" d="M0 0H20V20H0Z" stroke="red" stroke-dasharray="4 2" pathLength="160"/>'
                '<path id="line" d="M0 40H40" fill="none" stroke="red" stroke-dasharray="4 2" pathLength="160"/>')
        file = self.write("in.svg", svg(body))
        for arguments, name, length in (
                (["offset", "--id", "a", "--by", "5", "--join", "miter", file], "a", 240),
                (["cut", "--id", "line", "--from", "0.25", "--to", "0.5", file], "line", 40),
                (["transform", "--id", "line", "--scale", "2", "--coordinates", file], "line", 320),
                (["overlap", "--id", "a", file], "a", 160)):
            self.run_text(*arguments, "-o", self.out)
            path = re.search(f'<path id="{name}"[^>]*>', self.read("out.svg").decode()).group()
            self.assertAlmostEqual(float(re.search('pathLength="([^"]*)"', path).group(1)), length, 9)
            self.assertIn('stroke-dasharray="4 2"', path)
        # One dash for the whole line is one on any form.
        whole = self.write("whole.svg", svg(body.replace('"4 2"', '"160"')))
        self.run_text("offset", "--id", "a", "--by", "5", whole, "-o", self.out)
        self.assertIn('pathLength="160"', re.search('<path id="a"[^>]*>', self.read("out.svg").decode()).group())

    def test_divided_copies_get_nothing_from_sheets_that_the_use_did_not_have(self):
        sheet = ('<style>path.k{opacity:.5;display:none;fill:blue!important} .k{transform:translate(5px,0);mask:url(#m)}'
                 ' #v{filter:url(#f)}</style>')
        body = (sheet + '<defs><rect id="q" width="10" height="10"/></defs>'
                '<use id="v" class="k" href="#q" fill="red"/><rect id="over" x="10" width="5" height="50"/>')
        done = self.execute("divide", self.write("in.svg", svg(body)), "-o", self.out)
        warned = done.stderr.decode()
        for name in ("filter", "mask"):
            self.assertIn(f'<use id="v">: its {name} is left out, as it is divided', warned)
        part = re.search('<path id="v-q"[^>]*>', self.read("out.svg").decode()).group()
        for kept in ('class="k"', "fill:red!important", "opacity:1", "display:inline", "transform:none", "mask:none"):
            self.assertIn(kept, part)
        self.assertIn('d="M5 0', part)
        self.assertIn("h5", part)

    def test_divided_copies_get_neither_a_form_nor_markers_from_sheets(self):
        over = '<rect id="over" x="4" y="-1" width="2" height="12"/>'
        form = 'path("M0 0H10V10H0Z")'
        for sheet in (f"path{{d:{form};marker-end:url(#m)}}", f"#q{{d:{form}!important;marker:url(#m)!important}}"
                      f"path{{d:{form}!important;marker:url(#m)!important}}", f".k{{d:{form};marker:url(#m)}}"):
            for body in ('<path id="q" class="k" d="M0 0H10V10H0Z"/>',
                         '<defs><path id="q" class="k" d="M0 0H10V10H0Z"/></defs><use id="v" class="k" href="#q"/>'):
                with self.subTest((sheet, body)):
                    self.execute("divide", self.write("in.svg", svg(f"<style>{sheet}</style>{body}{over}")),
                                 "-o", self.out)
                    areas = [a[0] for name, a in self.areas("-q").items() if "over" not in name]
                    self.assertEqual([round(a, 6) for a in areas], [40, 40])
                    copy = re.search('<path id="(q-2|v-q-2)"[^>]*>', self.read("out.svg").decode()).group()
                    self.assertRegex(copy, "marker:none ?!important" if "!" in sheet else "marker:none")

    def test_new_paths_get_nothing_from_sheets_for_paths(self):
        sheet = "<style>path{d:path('M0 0H90');display:none;marker-mid:url(#m)} svg > path{opacity:0!important}</style>"
        file = self.write("in.svg", svg(sheet + '<rect id="r" width="8" height="8"/>'))
        for arguments in (["hatch", file, "--angle", "0", "--spacing", "3"],
                          ["shape", "rect", "1,1,4,2", "--into", file]):
            self.run_text(*arguments, "-o", self.out)
            path = re.search("<path [^>]*>", self.read("out.svg").decode()).group()
            for shield in ("display:inline", "marker:none", "opacity:1!important", "d:path(&quot;M"):
                self.assertIn(shield, path)
            data = self.run_json("measure", "-q", self.out)
            self.assertEqual([o["bounds"][2] <= 8 for o in data["files"][0]["outlines"]], [True, True])

    def test_divided_copies_keep_the_look_of_sheets_gradients_and_dashes(self):
        body = ('<style>.half{opacity:50%} #v{opacity:.5}</style>' + self.GRADIENTS +
                '<defs><g id="s" opacity=".5"><path id="q" class="half" d="M0 0H10V10H0Z" fill="url(#g)"/></g></defs>'
                '<use id="v" href="#s" transform="translate(5,0) scale(2)" stroke="url(#u)" '
                'style="stroke-dasharray:1;paint-order:stroke"/>'
                '<rect id="over" x="10" y="5" width="5" height="50"/>')
        self.run_text("divide", "-q", self.write("in.svg", svg(body)), "-o", self.out)
        text = self.read("out.svg").decode()
        part = re.search('<path id="v-q"[^>]*>', text).group()
        for kept in ("fill:url(#g-kept)", "stroke:url(#u-kept)", "opacity:0.125", "stroke-width:2",
                     "stroke-dasharray:2", "paint-order:stroke"):
            self.assertIn(kept, part)
        self.assertIn('id="g-kept" xlink:href="#g" gradientUnits="userSpaceOnUse" '
                      'gradientTransform="matrix(20,0,0,20,5,0)"', text)
        self.assertIn('id="u-kept" xlink:href="#u" gradientUnits="userSpaceOnUse" '
                      'gradientTransform="matrix(2,0,0,2,5,0)"/>', text)
        # A transform that is not even cannot be kept in a line, and is named.
        uneven = self.write("uneven.svg", svg(body.replace("scale(2)", "scale(2,1)")))
        warned = self.execute("divide", uneven, "-o", self.out).stderr.decode()
        self.assertRegex(warned, 'line 2, column [0-9]+, <use id="v">: its line is drawn with an even pen')

    def test_divide_shows_what_clips_show(self):
        body = ('<clipPath id="p"><rect width="5" height="10"/></clipPath>'
                '<path id="a" fill="red" d="M0 0H10V10H0Z"/>'
                '<path id="b" clip-path="url(#p)" d="M0 0H10V10H0Z"/>')
        self.run_text("divide", self.write("in.svg", svg(body)), "-o", self.out)
        areas = self.areas()
        self.assertEqual((areas["a"][0], areas["b"][0]), (50, 50))

    def test_stroke_takes_the_pen_of_the_style(self):
        cases = {
            # width, caps and joins by attribute, sheet, inheritance; units and per cent
            '<path id="p" fill="none" stroke="red" stroke-width="4" d="M10 10H30"/>': 80,
            '<g stroke="red" style="stroke-width:1em;font-size:4px"><path id="p" fill="none" '
            'stroke-linecap="square" d="M10 10H30"/></g>': 96,
            '<style>path{stroke-linejoin:bevel;stroke-width:4}</style>'
            '<path id="p" fill="none" stroke="red" d="M10 50H30V70"/>': 158,
            '<path id="p" fill="none" stroke="red" stroke-width="4%" d="M10 50H30V70"/>': 160,
            '<path id="p" fill="none" stroke="red" style="stroke-width:4;stroke-miterlimit:1" '
            'd="M10 50H30V70"/>': 158,
            '<path id="p" fill="none" stroke="red" stroke-width="4" stroke-dasharray="3 2" '
            'd="M10 10H30"/>': 48,
            '<path id="p" fill="none" stroke="red" stroke-width="4" stroke-dasharray="3" '
            'stroke-dashoffset="-3" d="M10 10H30"/>': 36,
            '<path id="p" fill="none" stroke="red" stroke-width="4" stroke-dasharray="30 20" '
            'pathLength="200" d="M10 10H30"/>': 48,
            '<path id="p" fill="none" stroke="red" style="stroke-width:calc(2px + 2px)" '
            'd="M10 10H30"/>': 80,
            # the pen is transformed with the line, or keeps its width
            '<path id="p" fill="none" stroke="red" stroke-width="4" transform="scale(1,3)" '
            'd="M10 10H30"/>': 240,
            '<path id="p" fill="none" stroke="red" stroke-width="4" transform="scale(1,3)" '
            'vector-effect="non-scaling-stroke" d="M10 10H30"/>': 80,
        }
        for body, area in cases.items():
            with self.subTest(body):
                file = self.write("in.svg", svg(body))
                self.run_text("stroke", file, "--tolerance", "1e-5", "-o", self.out)
                self.assertAlmostEqual(self.areas()["p"][0], area, delta=0.01)
        # Words and numbers that a property cannot have do not count.
        wrong = self.write("wrong.svg", svg(
            '<path id="p" fill="none" stroke="red" style="stroke-width:4;stroke-width:-3;'
            'stroke-linejoin:arcs;stroke-dasharray:1,-1" d="M10 10H30"/>'))
        self.run_text("stroke", wrong, "-q", "--tolerance", "1e-5", "-o", self.out)
        area = self.run_json("area", self.out, "-q")["outlines"][0]["area"]
        self.assertAlmostEqual(area, 80, delta=0.01)
        # An option takes the place of a part of the style.
        self.run_text("stroke", file, "--cap", "square", "--tolerance", "1e-5", "-o", self.out)
        self.assertAlmostEqual(self.areas()["p"][0], 96, delta=0.01)

    def test_outlines_without_extent_stay(self):
        body = ('<path stroke="red" transform="scale(0)" d="M0 0H5V5Z"/>'
                '<path id="p" stroke="red" d="M0 0H5V5Z"/>')
        file = self.write("in.svg", svg(body))
        for command in ("stroke", "divide"):
            self.run_text(command, file, "-o", self.out)
            self.assertIn(body[: body.index('<path id="p"')], self.read("out.svg").decode())

    def test_stroke_paints_dots_where_browsers_do(self):
        forms = {"line": "M60 30h0", "close": "M60 30z", "curve": "M60 30c0 0 0 0 0 0",
                 "both": "M60 30h0z", "beside": "M0 0h20M60 30h0", "move": "M0 0h20M60 30"}
        body = "".join(f'<path id="{name}" fill="none" stroke="red" stroke-width="10" d="{data}"/>'
                       for name, data in forms.items())
        file = self.write("in.svg", svg(body))
        for cap, dot, line in (("round", math.pi * 25, 200 + math.pi * 25),
                               ("square", 100, 300), ("butt", 0, 200)):
            with self.subTest(cap):
                self.run_text("stroke", file, "--cap", cap, "--tolerance", "1e-5", "-o", self.out)
                areas = {name: area[0] for name, area in self.areas().items()}
                for name in ("line", "close", "curve", "both"):
                    self.assertAlmostEqual(areas.get(name, 0), dot, delta=1e-2)
                self.assertAlmostEqual(areas["beside"], line + dot, delta=1e-2)
                self.assertAlmostEqual(areas["move"], line, delta=1e-2)
        # The other shapes that lines paint.
        forms = {"line": '<line x1="60" y1="30" x2="60" y2="30"',
                 "lines": '<polyline points="60,30 60,30 60,30"',
                 "polygon": '<polygon points="60,30 60,30"', "corner": '<polygon points="60,30"',
                 "point": '<polyline points="60,30"', "flat": '<rect width="9" height="0"',
                 "circle": '<circle cx="60" cy="30" r="0"'}
        shapes = self.write("shapes.svg", svg("".join(
            f'{form} id="{name}" fill="none" stroke="red" stroke-width="10"/>'
            for name, form in forms.items()) + '<path id="square" d="M0 0H9V9H0"/>'))
        for cap, dot in (("round", math.pi * 25), ("square", 100), ("butt", 0)):
            with self.subTest(cap):
                self.run_text("stroke", shapes, "--cap", cap, "-o", self.out)
                areas = {name: area[0] for name, area in self.areas().items()}
                for name in forms:
                    painted = name in ("line", "lines", "polygon", "corner")
                    self.assertAlmostEqual(areas.get(name, 0), dot if painted else 0, delta=1e-2)
        # A drawing keeps its dots.
        self.run_text("reverse", file, "--id", "curve", "-o", self.out)
        self.assertIn('d="M60 30h0"', self.read("out.svg").decode().split('id="curve"')[1])

    def test_stroke_keeps_the_fill_below(self):
        body = ('<rect id="r" class="k" fill="red" stroke="blue" stroke-opacity=".5" '
                'stroke-width="2" width="10" height="10"/>\n'
                '<path id="s" d="M0 0H9V9"/>\n'
                '<path id="o" stroke="lime" style="paint-order:stroke" d="M0 0H9V9"/>')
        file = self.write("in.svg", svg(body))
        self.run_text("stroke", file, "-o", self.out)
        text = self.read("out.svg").decode()
        fill = ('<rect id="r-fill" class="k" fill="red" stroke="none" stroke-opacity=".5" '
                'stroke-width="2" width="10" height="10"/>')
        area = '<path id="r" class="k" fill="blue" stroke="none" stroke-opacity=".5"'
        self.assertIn(fill + "\n" + area, text)
        self.assertRegex(text, 'id="r"[^>]* fill-opacity=".5"')
        self.assertIn('<path id="s" d="M0 0H9V9"/>', text)
        self.assertLess(text.index('id="o"'), text.index('id="o-fill"'))
        areas = self.areas()
        self.assertAlmostEqual(areas["r"][0], 144 - 64, delta=1e-3)
        self.assertEqual(areas["r-fill"][0], 100)
        # A pen paints all, and no fill is kept.
        self.run_text("stroke", file, "--pen", "2", "-o", self.out)
        self.assertEqual(sorted(self.areas()), ["o", "r", "s"])
        self.run_text("stroke", file, "-o", self.path("out.png"))
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

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

    def test_simplify_lets_nothing_cross_anew(self):
        # Two neighbours whose border is a bay of 0.072, and an island in it.
        heights = [0, 0.0315, 0.054, 0.0675, 0.072, 0.0675, 0.054, 0.0315, 0]
        bay = [f"{10 * i} {50 + h}" for i, h in enumerate(heights)]
        file = self.write("in.svg", svg(
            f'<path id="n" d="M{"L".join(bay)}V0H0z"/><g transform="translate(0,16)">'
            f'<path id="s" transform="translate(0,-16)" d="M{"L".join(bay[::-1])}V99H80z"/></g>'
            '<path id="i" d="M39.99 50.03h.02v.01h-.02Z"/>'))
        for options, north in (((), False), (("--no-new-crossings",), True)):
            with self.subTest(options):
                self.run_text("simplify", file, "--tolerance", "2", *options, "-o", self.out)
                hits = self.run_json("hit", self.out, "--at", "40,50.035", "--id", "n", "--id", "s")
                inside = {hit["id"]: hit["inside"] for hit in hits["points"][0]["hits"]}
                self.assertEqual(inside.get("n", False), north)
                self.assertEqual(inside.get("s", False), not north)
        # The border is still common: what both cover makes the whole.
        areas = self.areas()
        self.assertAlmostEqual(areas["n"][0] + areas["s"][0], 80 * 99, delta=1e-9)
        elements = {name: self.measure_file("out.svg")[name]["elements"] for name in "ns"}
        self.assertEqual(elements["n"], elements["s"])
        self.assertLess(elements["n"], 9)
        # A map is simplified as a whole, and each glyph of a font for itself.
        rings = [[[i, h] for i, h in enumerate(heights)] + [[8, 5], [0, 5], [0, 0]]]
        world = self.write("map.json", json.dumps({"type": "Polygon", "coordinates": rings}))
        for name in (world, self.write("font", font_bytes())):
            self.run_text("simplify", name, "--no-new-crossings", "--tolerance", "1", "-o", self.out)
            self.assertTrue(self.measure_file("out.svg"))

    def test_simplify_tells_once_that_other_copies_may_cross(self):
        file = self.write("in.svg", svg(
            '<path id="a" d="M0 0H9V9"/><use href="#a" x="20"/><use href="#a" x="40"/>'
            '<path id="b" d="M0 20H9V29"/><use href="#b" x="20"/><path id="c" d="M0 40H9V49"/>'))
        told = self.execute("simplify", file, "--no-new-crossings", "-o", self.out)
        self.assertEqual((told.returncode, told.stderr.count(b"\n")), (0, 1))
        self.assertIn(b"a: is drawn 3 times; copies other than the largest one may cross others, "
                      b"as may those of 1 more element\n", told.stderr)
        self.fails("simplify", file, "--no-new-crossings", "--strict", "-o", self.out, names=["3 times"])
        # Nothing is told where each copy is an outline of its own, or only elements without copies
        # take part.
        self.run_text("simplify", file, "--no-new-crossings", "-o", self.path("out.png"))
        self.run_text("simplify", file, "--no-new-crossings", "--id", "c", "-o", self.out)
        self.run_text("simplify", file, "-o", self.out)

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
        self.assertEqual((data["k"], data["r"]), ("M0 0C1 2 3 4 5 0", "M0 0H10V10H0Z"))

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
                (("stroke", file, "--strict"), ["in.svg", "no strokes", "--pen"]),
                (("stroke", self.write("font.ttf", font_bytes())), ["font.ttf", "no strokes"]),
                (("fit", file, "--corner", "0"), ["--corner", "'0'"]),
                (("overlap", file, "--tolerance", "0"), ["--tolerance", "'0'"]),
                (("overlap", file, "--strict", "--tolerance", "1e-99"), ["in.svg", "p", "1e-99"])):
            with self.subTest(arguments):
                self.fails(*arguments, "-o", self.out, names=names)


if __name__ == "__main__":
    unittest.main()
