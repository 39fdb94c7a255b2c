#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of clip paths and viewports: what of an outline shows. Expected figures are worked out by hand."""

import math
import unittest

from support import AppTest, svg

SQUARE = '<path id="p" d="M0 0H20V20H0z" %s/>'


class Clips(AppTest):
    def areas(self, body, *more):
        file = self.write("in.svg", svg(body))
        data = self.run_json("area", file, *more)
        return {o["id"]: o for o in data["outlines"]}

    def assertArea(self, body, area, name="p"):
        outline = self.areas(body)[name]
        self.assertLessEqual(outline["accuracy"], 1e-5)
        self.assertLessEqual(abs(outline["area"] - area), outline["accuracy"])

    def test_a_clip_cuts_the_outline(self):
        clip = '<clipPath id="c"><rect x="5" y="-5" width="30" height="10"/></clipPath>'
        self.assertArea(clip + SQUARE % 'clip-path="url(#c)"', 75)
        self.assertArea(clip + SQUARE % "style=\"clip-path:url('#c')\"", 75)
        self.assertArea("<style>path{clip-path:url(#c)}</style>" + clip + SQUARE % "", 75)
        self.assertArea(clip + SQUARE % 'clip-path="none"', 400)
        got = self.measure(svg(clip + SQUARE % 'clip-path="url(#c)"'))["p"]
        self.assertBox(got["bounds"], [5, 0, 20, 5], got["accuracy"])
        self.assertLessEqual(abs(got["length"] - 40), got["accuracy"])
        hits = [bool(self.run_json("hit", self.path("in.svg"), "--at", at)["points"][0]["hits"])
                for at in ("6,4", "4,4", "6,6")]
        self.assertEqual(hits, [True, False, False])

    def test_curves_stay_curves(self):
        clip = '<clipPath id="c"><circle cx="10" cy="10" r="10"/></clipPath>'
        self.assertArea(clip + SQUARE % 'clip-path="url(#c)"', 100 * math.pi)
        half = '<clipPath id="c"><rect width="10" height="20"/></clipPath>'
        self.assertArea(half + '<circle id="p" cx="10" cy="10" r="10" clip-path="url(#c)"/>',
                        50 * math.pi)
        self.assertTrue(self.measure(svg(half + '<circle id="p" cx="10" cy="10" r="10" '
                                         'clip-path="url(#c)"/>'))["p"]["curves"])

    def test_shapes_of_a_clip_are_united_each_by_its_rule(self):
        ring = "M0 0H20V20H0zM5 5H15V15H5z"
        self.assertArea(f'<clipPath id="c"><path d="{ring}"/></clipPath>' +
                        SQUARE % 'clip-path="url(#c)"', 400)
        self.assertArea(f'<clipPath id="c"><path clip-rule="evenodd" d="{ring}"/></clipPath>' +
                        SQUARE % 'clip-path="url(#c)"', 300)
        # fill-rule does not matter, and clip-rule is inherited.
        self.assertArea(f'<clipPath id="c" clip-rule="evenodd"><path fill-rule="nonzero" d="{ring}"/>'
                        '<rect x="5" y="5" width="5" height="5"/><rect width="9" height="9"/>'
                        '<rect width="99" height="99" visibility="hidden"/>'
                        '<rect width="99" height="99" display="none"/></clipPath>' +
                        SQUARE % 'clip-path="url(#c)"', 325)
        self.assertArea('<clipPath id="c"><rect width="4" height="4"/>'
                        '<rect x="2" width="4" height="4"/></clipPath>' +
                        SQUARE % 'clip-path="url(#c)"', 24)

    def test_a_clip_without_shapes_hides_everything(self):
        self.assertEqual(self.measure(svg('<clipPath id="c"/>' + SQUARE % 'clip-path="url(#c)"')), {})
        self.assertEqual(self.measure(svg('<clipPath id="c"><rect x="50" width="1" height="1"/>'
                                          '</clipPath>' + SQUARE % 'clip-path="url(#c)"')), {})

    def test_units_and_transforms_of_a_clip(self):
        clip = '<clipPath id="c" %s><rect width="0.5" height="0.25" %s/></clipPath>'
        box = 'clipPathUnits="objectBoundingBox"'
        self.assertArea(clip % (box, "") + SQUARE % 'clip-path="url(#c)"', 50)
        self.assertArea(clip % (box, "") + SQUARE % 'transform="translate(9 9)scale(3)" '
                        'clip-path="url(#c)"', 450)
        self.assertArea(clip % (box, 'transform="scale(2)"') + SQUARE % 'clip-path="url(#c)"', 200)
        self.assertArea(clip % (box + ' transform="translate(.75)"', "") +
                        SQUARE % 'clip-path="url(#c)"', 25)
        self.assertArea(clip % ('transform="scale(8)"', "") + SQUARE % 'clip-path="url(#c)"', 8)
        self.assertArea(clip % ("", "") + SQUARE % 'transform="scale(2)" clip-path="url(#c)"', 0.5)
        # The box of a group is that of all in it.
        self.assertArea(clip % (box, "") + '<g clip-path="url(#c)">' + SQUARE % "" +
                        '<rect x="20" width="20" height="40"/></g>', 200)
        self.assertArea(clip % (box, 'x="50%" y="50%"') + SQUARE % 'clip-path="url(#c)"', 50)

    def test_clips_nest(self):
        left = '<clipPath id="l" clip-path="url(#t)"><rect width="10" height="99"/></clipPath>'
        top = '<clipPath id="t"><rect width="99" height="10"/></clipPath>'
        self.assertArea(left + top + SQUARE % 'clip-path="url(#l)"', 100)
        self.assertArea(left.replace(' clip-path="url(#t)"', "") + top +
                        '<g clip-path="url(#t)"><g clip-path="url(#l)">' + SQUARE % "" + "</g></g>", 100)
        self.assertArea('<clipPath id="c"><rect width="10" height="99" clip-path="url(#t)"/>'
                        '<rect x="18" y="18" width="9" height="9"/></clipPath>' + top +
                        SQUARE % 'clip-path="url(#c)"', 104)
        self.assertArea('<clipPath id="c"><use href="#s" x="2"/></clipPath><defs><rect id="s" '
                        'width="3" height="3"/></defs>' + SQUARE % 'clip-path="url(#c)"', 9)
        self.assertArea(left + top + '<defs>' + SQUARE % "" + '</defs><use id="u" href="#p" '
                        'clip-path="url(#l)"/>', 100, "u/p")

    def test_a_line_without_a_fill_is_cut(self):
        clip = '<clipPath id="c"><circle r="5"/></clipPath>'
        body = clip + '<path id="p" fill="none" stroke="red" d="M-10 0H10M-10 3H10M-10 9H10" %s/>'
        got = self.measure(svg(body % 'clip-path="url(#c)"'))["p"]
        self.assertEqual(got["subpaths"], 2)
        self.assertLessEqual(abs(got["length"] - 18), 1e-5)
        self.assertFalse(got["curves"])
        got = self.measure(svg(clip + '<path id="p" fill="none" d="M-8 0C-8 6 8 6 8 0" '
                               'clip-path="url(#c)"/>'))["p"]
        whole = self.measure(svg('<path id="p" fill="none" d="M-8 0C-8 6 8 6 8 0"/>'))["p"]
        self.assertTrue(0 < got["length"] < whole["length"] and got["curves"])
        self.assertAlmostEqual(math.hypot(got["bounds"][0], got["bounds"][1]), 5, 5)

    def test_clips_that_cannot_be_taken_are_told(self):
        for clip, told in {'<g id="c"/>': "no clipPath", "": "no clipPath",
                           '<clipPath id="c" clip-path="url(#c)"><rect width="9" height="9"/>'
                           '</clipPath>': "refers to itself"}.items():
            file = self.write("in.svg", svg(clip + SQUARE % 'clip-path="url(#c)"'))
            result = self.execute("measure", file)
            self.assertEqual(result.returncode, 0)
            self.assertIn(told, result.stderr.decode())
            self.assertEqual(result.stderr.count(b"\n"), 1)

    def test_an_inner_viewport_clips(self):
        inner = '<svg x="2" y="3" width="10" height="5" %s>' + SQUARE % "" + "</svg>"
        self.assertArea(inner % "", 50)
        self.assertArea(inner % 'viewBox="0 0 20 10"', 50)
        self.assertArea(inner % 'overflow="visible"', 400)
        self.assertArea(inner % 'viewBox="0 0 20 20" preserveAspectRatio="xMinYMin"', 25)
        self.assertArea('<symbol id="s" viewBox="0 0 10 10">' + SQUARE % "" + '</symbol><use id="u" '
                        'href="#s" width="40" height="40"/>', 1600, "u/p")

    def test_the_drawing_keeps_its_clips(self):
        body = ('<clipPath id="c"><circle r="5"/></clipPath>\n' +
                '<path id="p" d="M0 0C0 9 9 9 9 0z" clip-path="url(#c)"/>')
        file = self.write("in.svg", svg(body))
        self.run_text("reverse", file, "-o", self.path("out.svg"))
        self.assertEqual(self.read("out.svg").decode(),
                         svg(body.replace("M0 0C0 9 9 9 9 0z", self.path_data("out.svg")["p"])))
        self.assertEqual(self.areas(body)["p"]["area"],
                         self.run_json("area", self.path("out.svg"))["outlines"][0]["area"])
        # Only the visible part is combined, so the result needs the clip no more.
        other = self.write("b.svg", svg('<rect x="30" width="2" height="2"/>'))
        result = self.execute("combine", "union", file, other, "-o", self.path("out.svg"))
        self.assertIn(b"gives up its own clip", result.stderr)
        got = self.run_json("area", self.path("out.svg"))["outlines"][0]
        self.assertAlmostEqual(got["area"], self.areas(body)["p"]["area"] + 4, 1)


if __name__ == "__main__":
    unittest.main()
