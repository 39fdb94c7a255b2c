#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of style: style sheets, style attributes and presentation attributes decide about outlines as
in a browser."""

import json
import unittest

from support import AppTest, svg


class Style(AppTest):
    def drawn(self, css, body, warnings=()):
        """The outlines of a drawing with a style sheet, by id, and their bounds. Without `warnings`
        there may be any."""
        file = self.write("in.svg", svg(f"<style>{css}</style>{body}"))
        result = self.execute("measure", "--json", file)
        self.assertEqual(result.returncode, 0)
        messages = result.stderr.decode("utf-8").splitlines()
        if warnings is not None:
            self.assertEqual(len(messages), len(warnings), messages)
        for message, words in zip(messages, warnings or ()):
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

    def test_units_of_fonts_count(self):
        body = ('<g font-size="2em"><rect id="a" height="1"/><g font-size="50%">'
                '<rect id="b" height="1"/></g></g>')
        for width, sizes in {"1em": [20, 10], "1rem": [10, 10], "2ex": [20, 10], "3ch": [30, 15],
                             "1EM": [20, 10], "8Q": [8 * 96 / 101.6] * 2, "calc(1ex + 1ch)": [20, 10],
                             "8q": [8 * 96 / 101.6] * 2}.items():
            with self.subTest(width):
                got = self.drawn("svg{font-size:10px} rect{width:" + width + "}", body)
                self.assertBox([got["a"][2], got["b"][2]], sizes)
        # Without a size of its own an em has 16 px. Words are as large as in a browser.
        for size, em in {"": 16, "medium": 16, "large": 18, "x-small": 10, "larger": 19.2,
                         "smaller": 16 / 1.2, "initial": 16, "2ex": 16, "-3px": 16}.items():
            with self.subTest(size):
                got = self.drawn(f"rect{{width:1em;font-size:{size or 'inherit'}}}",
                                 '<rect id="a" height="1"/>')
                self.assertBox([got["a"][2]], [em])

    def test_units_of_the_window_are_those_of_the_page(self):
        body = ('<rect width="50vw" height="50vh" id="a"/><rect width="10vmin" height="10vmax" '
                'id="b"/>')
        for size in ('width="200" height="100"', 'width="12.5em" height="75pt"'):
            got = self.measure(svg(body, f'viewBox="0 0 400 400" {size}'))
            self.assertBox(got["a"]["bounds"], [0, 0, 100, 50])
            self.assertBox(got["b"]["bounds"], [0, 0, 10, 20])
        self.drawn("", body, ["'vw', but the drawing does not state its size",
                              "'vmin', but the drawing does not state its size"])

    def test_a_line_s_width_may_have_any_unit(self):
        for width, wide in {"4Q": 4 * 96 / 101.6, "1EX": 8, "1mm": 96 / 25.4}.items():
            file = self.write("in.svg", svg(f'<path id="p" d="M0 0H10" stroke="red" stroke-width='
                                            f'"{width}"/>'))
            self.run_text("stroke", file, "-o", self.path("out.svg"))
            box = self.measure_file("out.svg")["p"]["bounds"]
            self.assertBox([box[3] - box[1]], [wide], 1e-6)

    def test_transforms_may_be_properties(self):
        body = '<path id="p" transform="scale(9)" d="M0 0H10"/>'
        for css, box in {"translate(5px, 1in)": [5, 96, 15, 96], "rotate(90deg)": [0, 0, 0, 10],
                         "rotate(.25turn) translateX(2px)": [0, 2, 0, 12], "none": [0, 0, 10, 0],
                         "scale(2) scaleX(3)": [0, 0, 60, 0],
                         "matrix(1, 0, 0, 1, 2, 3)": [2, 3, 12, 3]}.items():
            self.assertBox(self.drawn("path{transform:" + css + "}", body)["p"], box)
        self.assertBox(self.drawn("path{transform:rotate(180deg);transform-origin:5px 1px}",
                                  body)["p"], [0, 2, 10, 2])

    def test_transforms_refer_to_boxes_and_fonts(self):
        # The places are those of a browser.
        body = '<path id="p" d="M10 20H40V30H10Z"/>'
        for css, box in {
                "transform:scale(2);transform-origin:center": [-30, -10, 30, 10],
                "transform:scale(2);transform-origin:left": [20, -10, 80, 10],
                "transform:scale(2);transform-origin:bottom right": [-80, -60, -20, -40],
                "transform:scale(2);transform-origin:top": [-30, 40, 30, 60],
                "transform:scale(2);transform-origin:10px": [10, -10, 70, 10],
                "transform:scale(2);transform-origin:25% top 3px": [-5, 40, 55, 60],
                "transform:scale(2);transform-origin:2em 1mm;font-size:5px":
                    [10, 40 - 96 / 25.4, 70, 60 - 96 / 25.4],
                "transform:scale(2);transform-box:fill-box": [10, 20, 70, 40],
                "transform:scale(2);transform-box:content-box;transform-origin:3px 4px":
                    [7, 16, 67, 36],
                "transform:scale(2);transform-box:fill-box;transform-origin:center":
                    [-5, 15, 55, 35],
                "transform:translate(50%,10%)": [60, 30, 90, 40],
                "transform:translate(50%,10%);transform-box:fill-box": [25, 21, 55, 31],
                "transform:translateY(1rem) translateX(2em);font-size:20px": [50, 36, 80, 46],
                "transform:translate(calc(10px + 50%), calc(1em*2))": [70, 52, 100, 62],
                "transform:translate(min(10px,20px), max(1px,2px,3%))": [20, 23, 50, 33],
                "transform:translate(clamp(1px,7px,3px))": [13, 20, 43, 30],
                "transform:rotate(calc(45deg + 0.125turn))": [-30, 10, -20, 40],
                "transform:scale(150%, 80%)": [15, 16, 60, 24],
                "transform:scale(calc(1 + 0.5))": [15, 30, 60, 45],
                "transform:TRANSLATE(5px,6px) Scale(2)": [25, 46, 85, 66],
                "transform:translate3d(5px,6px,7px) rotateZ(90deg) scale3d(2,3,4)":
                    [-85, 26, -55, 86],
                "transform:matrix3d(1,0,0,0,0,1,0,0,0,0,1,0,7,8,0,1)": [17, 28, 47, 38],
                "transform:scale(2);transform-origin:calc(50% + 3px) 1em": [-33, 24, 27, 44],
                "transform:scale(2);transform-origin:right": [-80, -10, -20, 10],
                "rotate:90deg": [-30, 10, -20, 40],
                "rotate:z 90deg;transform-origin:10px 20px": [0, 20, 10, 50],
                "translate:5px 20%": [15, 40, 45, 50],
                "scale:2 3": [20, 60, 80, 90],
                "scale:200%;translate:1px": [21, 40, 81, 60],
                "transform:translate(1px);scale:2;rotate:90deg;translate:5px":
                    [-55, 22, -35, 82],
                "transform:scale(3);transform:scale(1, 2)": [10, 40, 40, 60],
        }.items():
            with self.subTest(css):
                self.assertBox(self.drawn("path{" + css + "}", body)["p"], box, 1e-6)
                for more in ([], ["--id", "p"]):
                    self.run_text("transform", self.path("in.svg"), "--translate", "1,2", *more,
                                  "-o", self.path("out.svg"))
                    moved = self.measure_file("out.svg")["p"]["bounds"]
                    self.assertBox(moved, [box[0] + 1, box[1] + 2, box[2] + 1, box[3] + 2], 1e-6)
        for css, box, warnings in (
                ("transform:scale(2);transform-origin:5 5", [20, 40, 80, 60],
                 ["'transform-origin: 5 5' is left out"]),
                ("transform:scale(2);transform-origin:left left", [20, 40, 80, 60],
                 ["'transform-origin: left left' is left out"]),
                ("transform:scale(2);transform:scale(2px)", [20, 40, 80, 60],
                 ["'transform: scale(2px)' is left out"]),
                ("rotate:x 30deg", [10, 20, 40, 30], ["'rotate: x 30deg' is left out"]),
                ("transform:scale(2);transform-box:margin-box", [20, 40, 80, 60],
                 ["'transform-box: margin-box' is left out"])):
            self.assertBox(self.drawn("path{" + css + "}", body, warnings=warnings)["p"], box)

    def test_transforms_refer_to_boxes_of_groups_and_lines(self):
        # The places are those of a browser.
        line = 'stroke="red" stroke-width="4"'
        bodies = {
            f'<path id="p" class="k" d="M10 20H40V30H10Z" {line}/>': {
                "transform:scale(2);transform-box:stroke-box": [12, 22, 72, 42],
                "transform:scale(2);transform-box:border-box;transform-origin:right":
                    [-22, 15, 38, 35],
                "translate:50% 100%;transform-box:stroke-box": [27, 34, 57, 44],
                "transform:scale(2);transform-box:fill-box": [10, 20, 70, 40],
            },
            f'<g class="k"><path id="p" d="M10 20H40V30H10Z" {line}/><g transform="scale(2)">'
            '<rect width="35" height="10" visibility="hidden"/></g></g>': {
                "transform:scale(2);transform-box:fill-box": [20, 40, 80, 60],
                "transform:scale(2);transform-box:fill-box;transform-origin:center":
                    [-15, 25, 45, 45],
                "transform:scale(2);transform-box:stroke-box;transform-origin:bottom":
                    [-15, 8, 45, 28],
            },
            '<g class="k" transform-origin="100%"><g class="k"><path id="p" d="M10 20H40V30H10Z"/>'
            '</g></g>': {
                "transform:scale(2);transform-box:fill-box": [-50, 10, 70, 50],
            },
            '<path id="q" d="M10 20H40V30H10Z"/><use class="k" x="5" href="#q"/>': {
                "transform:scale(2);transform-box:fill-box": [15, 20, 75, 40],
            },
        }
        for body, cases in bodies.items():
            for css, box in cases.items():
                with self.subTest((body, css)):
                    drawn = self.drawn(".k{" + css + "}", body)
                    self.assertBox(drawn.get("p", list(drawn.values())[-1]), box)
        deep = ('<g style="rotate:1deg;transform-box:fill-box">' * 40 + '<path d="M0 0H1V1"/>'
                + "</g>" * 40)
        self.drawn("", deep, warnings=["transform-box: 'fill-box' is not read here"] * 20
                   + ["more mistakes of this kind"])
        self.drawn(".k{scale:2;transform-box:fill-box}",
                   '<g class="k"><path d="M0 0H9V9"/><text>a</text></g>',
                   warnings=["does not count in the box of the transform around it",
                             "has no outlines here"])

    def test_viewports_have_places_sizes_and_ratios(self):
        # The places are those of a browser.
        rect = '<rect id="r" width="5" height="4"/>'
        for body, box in {
                f'<symbol id="s" x="5" y="7" viewBox="0 0 20 20">{rect}</symbol><use href="#s" '
                'width="40" height="20"/>': [15, 7, 20, 11],
                f'<defs><svg id="s" x="10%" y="7" viewBox="0 0 20 20">{rect}</svg></defs>'
                '<use href="#s" y="1" width="20" height="20"/>': [10, 8, 15, 12],
                f'<svg width="20" height="40" viewBox="0 0 20 20">{rect}</svg>': [0, 10, 5, 14],
                f'<svg width="20" height="40" viewBox="0 0 20 20" preserveAspectRatio=" xMinYMin '
                f'meet ">{rect}</svg>': [0, 0, 5, 4],
                f'<svg width="20" height="40" viewBox="0 0 20 20" preserveAspectRatio="none">{rect}'
                '</svg>': [0, 0, 5, 8],
        }.items():
            with self.subTest(body):
                self.assertBox(list(self.drawn("", body).values())[0], box)
        for size in ('width="0"', 'height="0"'):
            self.assertEqual(self.drawn("", f'<svg {size} viewBox="0 0 9 9">{rect}</svg>'), {})
        for ratio in ("defer xMinYMin", "xMinYMin foo", "xminymin", "xMinYMinmeet", "none none"):
            with self.subTest(ratio):
                got = self.drawn("", '<svg width="20" height="40" viewBox="0 0 20 20" '
                                 f'preserveAspectRatio="{ratio}">{rect}</svg>',
                                 warnings=["attribute preserveAspectRatio"])
                self.assertBox(got["r"], [0, 10, 5, 14])

    def test_what_has_a_mistake_is_left_out_alone(self):
        body = '<path id="a" d="M0 0H1"/><rect id="b" width="1" height="1"/>'
        for css, shown, warnings in [
            ("path{display none;display:none}", "b", ["line 2, <style>: 'display none'"]),
            ("path{;;display:none;}", "b", []),
            ("path{display:none", "b", []),
            ("path,{display:none} rect{display:none}", "a", ["'path,'"]),
            ("path{color:(;display:none);} rect{display:none}", "a", []),
            ("path{color:';\n} rect{display:none}", "a", ["is no declaration"]),
            ("path:nth-col(2){display:none} rect{display:none}", "a", [":nth-col()"]),
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

    def test_children_are_counted(self):
        body = ('<g><path id="a" d="M0 0H1"/><rect id="b" width="1" height="1"/><path id="c" '
                'd="M0 0H1"/><path id="d" d="M0 0H1"/><rect id="e" width="1" height="1"/></g>')
        for selector, hidden in {
            "path:nth-child(3)": "c", "g>:nth-child(odd)": "ace", "g>:nth-child(2N + 1)": "ace",
            "g>:nth-child(even)": "bd", "g>:nth-child(-n+2)": "ab", "g>:nth-child(n+4)": "de",
            "g>:nth-child(3n-1)": "be", "g>:nth-child(+3)": "c", "g>:nth-child(0n+4)": "d",
            "g>:nth-child(-3)": "", "g>:nth-last-child(2)": "d", "path:nth-of-type(2)": "c",
            "rect:nth-last-of-type(2n+1)": "e", "path:first-of-type": "a",
            "rect:last-of-type": "e", "g>:first-child": "a", "g>:last-child": "e",
            "g>:only-child": "", "g:only-of-type path": "acd", "path:not(:nth-child(1))": "cd",
            "path:empty": "acd", "g:empty path": "", "g>:nth-child(n)": "abcde",
        }.items():
            with self.subTest(selector):
                self.assertEqual(self.shown(selector + "{display:none}", body),
                                 "".join(c for c in "abcde" if c not in hidden))
        for selector in (":nth-child(x)", ":nth-child()", ":nth-child(2n3)", ":nth-child(2 of a)",
                         ":nth-child(1.5)"):
            with self.subTest(selector):
                self.shown(f"path{selector}{{display:none}}", body, ["nth-child"])
        many = "".join(f'<path id="m{i}" d="M0 0H1"/>' for i in range(4000))
        self.assertEqual(len(self.drawn("path:nth-last-child(n+11){display:none}", many)), 10)

    def test_custom_properties_stand_for_values(self):
        body = ('<g style="--side: 7"><rect id="a" width="1" height="1"/></g>'
                '<rect id="b" width="1" height="1" style="--Side:3px"/>')
        for css, sizes in {
            "rect{width:var(--side, 5px)}": [0, 5],
            "rect{width:calc(var(--side, 5) * 1px)}": [7, 5],
            "rect{width:var( --Side , 4px )}": [4, 3],
            ":root{--w:8px} rect{width:var(--w)}": [8, 8],
            ":root{--w:var(--v);--v:6px} rect{width:var(--w)}": [6, 6],
            ":root{--v:2px} rect{width:var(--w, var(--v))}": [2, 2],
            "rect{--w:9px;--w:4px;width:var(--w)}": [4, 4],
            "rect{--w:9px!important;width:var(--w)} #a{--w:1px}": [9, 9],
        }.items():
            with self.subTest(css):
                got = self.drawn(css, body, None)
                self.assertEqual([(got[i][2] - got[i][0]) if i in got else 0 for i in "ab"], sizes)
        for css in ("rect{width:var(--none)}", ":root{--w:var(--w)} rect{width:var(--w)}",
                    ":root{--w:red} rect{width:var(--w)}"):
            with self.subTest(css):  # as if nothing was declared
                self.assertEqual(self.drawn(css, body, None), {})

    def test_lengths_are_computed(self):
        body = '<rect id="a" height="1" font-size="10"/>'
        for value, width in {
            "calc(1px + 2px)": 3, "calc(50% - 10px)": 40, "calc(2 * (3px + 1em))": 26,
            "calc( ( 10px - 4px ) / 3 )": 2, "calc(10px / 4 * 2)": 5, "calc(-1px - -3px)": 2,
            "calc(1in + 0px)": 96, "calc(calc(1px + 1px) * 2)": 4, "min(3px, 50%)": 3,
            "MAX(1px, calc(1px + 1em), 2px)": 11, "clamp(2px, 1px, 3px)": 2,
        }.items():
            with self.subTest(value):
                self.assertEqual(self.drawn(f"rect{{width:{value}}}", body)["a"], [0, 0, width, 1])
        for value in ("calc(1px + 2)", "calc(2 + 3)", "calc(1px * 2px)", "calc(1 / 2px)", "calc(1px",
                      "calc()", "calc(1px 2px)", "calc(1px -2px)", "clamp(1px, 2px)", "min(1px, 2)", "min()",
                      "calc(10deg)", "calc(" + "(" * 99 + "1px" + ")" * 99 + ")"):
            with self.subTest(value):
                self.assertEqual(self.drawn(f"rect{{width:{value}}}", body, None), {})

        self.assertEqual(self.drawn("rect{font-size:calc(50% + 2px);width:1em}", body)["a"],
                         [0, 0, 10, 1])

    def test_masks_and_markers_are_named_once(self):
        body = ('<mask id="m"/><path id="a" mask="url(#m)" d="M0 0H9"/><path id="b" d="M0 0H9" '
                'style="mask:url(#m)"/><path id="c" marker-end="url(#x)" d="M0 0H9"/>')
        self.assertEqual(self.shown("", body, ['<path id="a">: has a mask, left out of this and of 1 '
                                               'more', '<path id="c">: has markers, left out']),
                         "abc")

    def test_uses_inherit_from_their_place(self):
        body = ('<defs><path id="p" d="M0 0H1"/><symbol id="s" visibility="visible"><path id="q" '
                'd="M0 0H1"/></symbol></defs><g visibility="hidden"><use id="u" href="#p"/>'
                '<use id="v" href="#s"/></g><use id="w" href="#p"/>')
        self.assertEqual(list(self.drawn("", body)), ["v/q", "w/p"])


if __name__ == "__main__":
    unittest.main()
