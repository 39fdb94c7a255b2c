#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of style: style sheets, style attributes and presentation attributes decide about outlines as
in a browser."""

import json
import unittest

from support import AppTest, svg


class Style(AppTest):
    def drawn(self, css, body, warnings=()):
        """The outlines of a drawing with a style sheet, by id, and their bounds."""
        file = self.write("in.svg", svg(f"<style>{css}</style>{body}"))
        result = self.execute("measure", "--json", file)
        self.assertEqual(result.returncode, 0)
        messages = result.stderr.decode("utf-8").splitlines()
        self.assertEqual(len(messages), len(warnings), messages)
        for message, words in zip(messages, warnings):
            self.assertIn(words, message)
        outlines = json.loads(result.stdout)["files"][0]["outlines"]
        return {o["id"]: o["bounds"] for o in outlines}

    def shown(self, css, body, warnings=()):
        return "".join(self.drawn(css, body, warnings))

    def test_selectors_choose_their_elements(self):
        body = ('<g id="g" class="box big"><rect id="a" width="1" height="1" data-x="one two"/>'
                '<path id="b" d="M0 0H1" lang="en-GB"/></g>'
                '<path id="c" class="thin" d="M0 0H1"/><circle id="d" class="thin red" r="1"/>')
        for selector, left in {
            "rect": "bcd", "*": "", "path": "ad", "#c": "abd", ".thin": "ab", "g path": "acd",
            "svg path": "ad", "svg > path": "abd", "g rect + path": "acd", "g ~ circle": "abc",
            "g + circle": "abcd", "g ~ .thin": "ab", ".thin.red": "abc", "path.thin": "abd",
            "[data-x]": "bcd", "[data-x~=two]": "bcd", "[data-x=two]": "abcd",
            "[data-x^='one ']": "bcd", '[data-x$="two"]': "bcd", "[data-x*=e]": "bcd",
            "[lang|=en]": "acd", "[lang='EN-gb' i]": "acd", "rect, circle": "bc",
            ".box rect, #none": "bcd", "g:first-child rect": "abcd", "rect:first-child": "bcd",
            "circle:last-child": "abc", "path:not(.thin)": "acd", ":is(rect, .red)": "bc",
            ":root > g > rect": "bcd", "g > path::before": "abcd", "path:hover": "abcd",
            "svg|rect": "bcd", "*|rect": "bcd", "\\72 ect": "bcd", "g /**/rect": "bcd",
            "svg g.box.big > path[d]": "acd",
        }.items():
            with self.subTest(selector):
                css = selector.replace(">", "&gt;") + "{display:none}"
                self.assertEqual(self.shown(css, body), left)

    def test_the_cascade_decides(self):
        for css, body, shown in [
            ("rect{display:none} rect{display:inline}", "", "a"),
            ("rect{display:inline} rect{display:none}", "", ""),
            (".k{display:inline} rect{display:none}", 'class="k"', "a"),
            ("#a{display:inline} .k.k.k{display:none}", 'class="k"', "a"),
            ("rect{display:none!important} #a{display:inline}", "", ""),
            ("rect{display:none ! important}", 'style="display:inline"', ""),
            ("rect{display:none}", 'style="display:inline"', "a"),
            ("rect{display:none!important}", 'style="display:inline!important"', "a"),
            ("rect{display:inline}", 'display="none"', "a"),
            ("rect{DISPLAY: NONE}", "", ""),
            (":where(#a){display:none} rect{display:inline}", "", "a"),
            ("rect{display:none;display:7}", "", ""),
        ]:
            with self.subTest((css, body)):
                warnings = ["'display: 7'"] if "7" in css else []
                self.assertEqual(self.shown(css, f'<rect id="a" width="1" height="1" {body}/>',
                                            warnings), shown)

    def test_visibility_is_inherited_and_can_return(self):
        body = ('<g class="h"><path id="a" d="M0 0H1"/><path id="b" visibility="visible" '
                'd="M0 0H1"/></g><path id="c" d="M0 0H1"/>')
        self.assertEqual(self.shown(".h{visibility:hidden}", body), "bc")
        self.assertEqual(self.shown(".h{visibility:collapse} path{visibility:inherit}", body), "c")
        self.assertEqual(self.shown("path{visibility:hidden}", body), "")

    def test_geometry_properties_have_units(self):
        body = ('<rect id="r" x="1" width="2" height="3"/><circle id="c" r="1"/>'
                '<ellipse id="e" rx="1" ry="2"/><path id="p" d="M0 0H1"/>')
        css = ("rect{x:2px;y:1mm;width:1in;height:50%} circle{r:2em;cx:50%;font-size:5px}"
               "ellipse{rx:auto;cy:0} path{d:path('M1 2L3 4')}")
        got = self.drawn(css, body)
        self.assertBox(got["r"], [2, 96 / 25.4, 98, 96 / 25.4 + 50])
        self.assertBox(got["c"], [40, -10, 60, 10])
        self.assertBox(got["e"], [-2, -2, 2, 2])
        self.assertBox(got["p"], [1, 2, 3, 4])
        # Only attributes may go without a unit.
        self.assertBox(self.drawn("rect{width:9}", body, ["'width: 9' is left out"])["r"],
                       [1, 0, 3, 3])
        self.assertEqual(self.shown("path{d:none}", body), "rce")

    def test_transforms_may_be_properties(self):
        body = '<path id="p" transform="scale(9)" d="M0 0H10"/>'
        for css, box in {"translate(5px, 1in)": [5, 96, 15, 96], "rotate(90deg)": [0, 0, 0, 10],
                         "rotate(.25turn) translateX(2px)": [0, 2, 0, 12], "none": [0, 0, 10, 0],
                         "scale(2) scaleX(3)": [0, 0, 60, 0],
                         "matrix(1, 0, 0, 1, 2, 3)": [2, 3, 12, 3]}.items():
            self.assertBox(self.drawn("path{transform:" + css + "}", body)["p"], box)
        self.assertBox(self.drawn("path{transform:rotate(180deg);transform-origin:5px 1px}",
                                  body)["p"], [0, 2, 10, 2])

    def test_what_has_a_mistake_is_left_out_alone(self):
        body = '<path id="a" d="M0 0H1"/><rect id="b" width="1" height="1"/>'
        for css, shown, warnings in [
            ("path{display none;display:none}", "b", ["line 2, <style>: 'display none'"]),
            ("path{;;display:none;}", "b", []),
            ("path{display:none", "b", []),
            ("path,{display:none} rect{display:none}", "a", ["'path,'"]),
            ("path{color:(;display:none);} rect{display:none}", "a", []),
            ("path{color:';\n} rect{display:none}", "a", ["is no declaration"]),
            ("path:nth-child(2){display:none} rect{display:none}", "a", [":nth-child()"]),
            ("@import 'x.css'; rect{display:none}", "a", ["@import"]),
            ("@media print{path{display:none}} @media screen, print{rect{display:none}}", "a", []),
            ("@media (width:1px){path{display:none}}", "ab", ["@media (width:1px)"]),
            ("@unknown {a{b:c}} rect{display:none}", "a", ["@unknown"]),
            ("@charset 'utf-8'; @font-face{font-family:x} rect{display:none}", "a", []),
            ("<![CDATA[ svg > path { display: none } ]]>", "b", []),
            ("path{display:none}}} rect{display:none}", "b", ["'}} rect'"]),
            ("/* path{display:none} */ rect{display:none /* } */}", "a", []),
        ]:
            with self.subTest(css):
                self.assertEqual(self.shown(css, body, warnings), shown)

    def test_style_elements_may_be_for_others(self):
        body = ('<style type="text/x">path{display:none}</style>'
                '<style media="print">path{display:none}</style><path id="a" d="M0 0H1"/>')
        self.assertEqual(self.shown("", body, ["'text/x'"]), "a")

    def test_conditions_choose_elements(self):
        body = ('<path id="a" systemLanguage="de" d="M0 0H1"/><path id="b" systemLanguage="de, '
                'en-US" d="M0 0H1"/><path id="c" requiredExtensions="x" d="M0 0H1"/><switch>'
                '<path id="d" systemLanguage="den" d="M0 0H1"/><path id="e" d="M0 0H1"/>'
                '<path id="f" d="M0 0H1"/></switch>')
        self.assertEqual(self.shown("", body), "be")

    def test_what_has_no_outline_is_named_once(self):
        body = ('<text display="none">no</text><defs><text>no</text></defs><text id="t">a</text>'
                '<g><text>b</text><image/></g><foreignObject/><path id="p" d="M0 0H1"/>')
        self.assertEqual(self.shown("", body, ["<foreignObject>", "<image>",
                                               '<text id="t">: has no outlines here, nor have 1']),
                         "p")

    def test_clip_paths_are_left_out(self):
        body = ('<clipPath id="c"><path d="M0 0H1V1Z"/></clipPath><path id="a" clip-path="none" '
                'd="M0 0H9"/><path id="b" class="k" d="M0 0H9"/>')
        self.assertEqual(self.drawn(".k{clip-path:url(#c)}", body,
                                    ['<path id="b">: its clip-path is left out'])["b"],
                         [0, 0, 9, 0])

    def test_uses_inherit_from_their_place(self):
        body = ('<defs><path id="p" d="M0 0H1"/><symbol id="s" visibility="visible"><path id="q" '
                'd="M0 0H1"/></symbol></defs><g visibility="hidden"><use id="u" href="#p"/>'
                '<use id="v" href="#s"/></g><use id="w" href="#p"/>')
        self.assertEqual(list(self.drawn("", body)), ["v/q", "w/p"])


if __name__ == "__main__":
    unittest.main()
