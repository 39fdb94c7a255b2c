#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of what the commands leave alone: the drawing stays the user's, byte by byte."""

import glob
import os
import re
import struct
import unittest
import xml.etree.ElementTree

from support import SVG, SQUARE, AppTest, svg

ICONS = "/usr/share/icons/breeze/actions/22"

DOCUMENT = """<?xml version="1.0" encoding="UTF-8" standalone="no"?>
<!-- drawn by hand -->
<!DOCTYPE svg [ <!ENTITY col "#ff8000"> ]>
<?keep this="too"?>
<svg xmlns="http://www.w3.org/2000/svg" xmlns:x="urn:x" viewBox="0 0 100 50" width="20cm" height="10cm" >
  <metadata><x:note   kind='a > b'>&lt;keep&gt;</x:note></metadata>
  <style><![CDATA[ rect { fill: blue; stroke: #0f0 } path { stroke-width: 7px } .k{opacity:.5} ]]></style>
  <defs>
    <linearGradient id="g"><stop offset="0.50000"/></linearGradient>
    <circle id="dot" r="1"/>
  </defs>
\t<g class='k' transform="translate(10 5)  scale(2)" style="stroke-width: .50px">
    <path   id = "curve"
       d = "M 0.000,0 C 0,10 10,10 10.00,0 z" fill='url(#g)' ><title>a curve</title></path>
    <rect id="box" class="k" x="1" y="1" width="4" height="3" rx="1"/><line id="l" x1="0" y1="0" x2="5" y2="5"></line>
  </g>
  <use id="one" href="#dot" x="20"/>
  <text x="5" y="40">words</text>
  <polygon points="60,10 70,10 65,20"   fill="&col;" id="tri" />
</svg>
<!-- the end -->
"""


class Documents(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("in.svg", DOCUMENT)
        self.out = self.path("out.svg")

    def quiet(self, *arguments):
        """Runs a command on a drawing with words, which it tells of."""
        self.run_text(*arguments, "-q")

    def outlines(self, file):
        data = self.run_json("measure", "-q", file)
        return {o["id"]: o for o in data["files"][0]["outlines"]}

    def text(self):
        return self.read("out.svg").decode("utf-8")

    def assertChanged(self, changes):
        """The output is the document with these pieces replaced and nothing else."""
        expected = DOCUMENT
        for old, new in changes:
            self.assertEqual(expected.count(old), 1, old)
            expected = expected.replace(old, new)
        self.assertEqual(self.text(), expected)

    def d(self, name):
        return re.search(r'id *= *"' + name + r'"[^>]*?\bd ?= ?"([^"]*)"', self.text(), re.S)[1]

    def test_nothing_to_do_changes_nothing(self):
        for options in (["transform", self.file, "--scale", "1"],
                        ["transform", self.file, "--rotate", "0"],
                        ["flatten", self.file, "--id", "tri", "--error", "1"],
                        ["flatten", self.file, "--id", "l", "--error", "1"]):
            self.quiet(*options, "-o", self.out)
            self.assertEqual(self.text(), DOCUMENT)

    def test_flatten_changes_only_the_form(self):
        self.quiet("flatten", self.file, "--id", "curve", "--error", "0.5", "-o", self.out)
        self.assertChanged([("M 0.000,0 C 0,10 10,10 10.00,0 z", self.d("curve"))])
        self.assertNotIn("C", self.d("curve").upper())
        got = self.outlines(self.out)["curve"]
        self.assertEqual((got["bounds"][0], got["bounds"][1]), (10, 5))
        self.assertTrue(got["closed"] and not got["curves"])

    def test_a_shape_becomes_a_path_and_keeps_its_style(self):
        self.quiet("flatten", self.file, "--id", "box", "--error", "0.01", "-o", self.out)
        # Rules for rectangles no longer match, and rules for paths do.
        self.assertChanged([('<rect id="box" class="k" x="1" y="1" width="4" height="3" rx="1"/>',
                             f'<path id="box" class="k" d="{self.d("box")}" '
                             'style="fill:blue;stroke:#0f0;stroke-width:unset"/>')])
        self.assertBox(self.outlines(self.out)["box"]["bounds"], [12, 7, 20, 13])

    def test_a_shape_gets_its_outline_whatever_its_style_says(self):
        # A line has no use for "d", and a style attribute may end within a string, an address, a
        # comment or brackets.
        for style in ("d:path('M0 0H9') !important", "color:{[", "color:rgb(1", "--a:'x", "--a:url(x",
                      "/* x", "color:a\\", "d:path('M0 0') !important;color:({x)"):
            file = self.write("in.svg", svg(f'<line id="l" x2="5" y2="5" style="{style}"/>'))
            self.quiet("cut", file, "--id", "l", "--from", "0.2", "--to", "1", "-o", self.out)
            self.assertBox(self.outlines(self.out)["l"]["bounds"], [1, 1, 5, 5])

    def test_a_shape_with_an_attribute_of_paths_gets_it_once(self):
        # Some editors leave the path of a circle in the circle.
        for rest in ('r="5" d="m 5,0 z"', 'd="m 5,0 z" r="5"'):
            file = self.write("in.svg", svg(f'<circle id="c" {rest} cx="9"/>'))
            self.run_text("reverse", file, "-o", self.out)
            self.assertEqual(self.text().count('d="M14 0'), 1)
            self.assertBox(self.measure_file("out.svg")["c"]["bounds"], [4, -5, 14, 5])

    def test_cut_writes_two_documents(self):
        self.quiet("cut", self.file, "--id", "l", "--from", "0.2", "--to", "1", "-o", self.out,
                   "--rest", self.path("rest.svg"))
        line = '<line id="l" x1="0" y1="0" x2="5" y2="5"></line>'
        style = ' style="stroke-width:unset"'
        self.assertChanged([(line, f'<path id="l" d="M1 1 5 5"{style}></path>')])
        self.assertEqual(self.read("rest.svg").decode(),
                         DOCUMENT.replace(line, f'<path id="l" d="M0 0 1 1"{style}></path>'))

    def test_cut_keeps_an_outline_without_length_and_tells_of_it(self):
        dot = '<path id="dot" d="M5 5z"/>'
        file = self.write("in.svg", svg(f'{dot}<path id="l" d="M0 0H8"/>'))
        result = self.execute("cut", file, "--from", "0.25", "--to", "0.5", "-o", self.out,
                              "--rest", self.path("rest.svg"))
        self.assertEqual((result.returncode, result.stderr.decode()), (0, (
            f'trammel: warning: {file}: line 2, column 1, <path id="dot">: the outline has no length, and '
            "stays as it is\n")))
        self.assertIn(f'{dot}<path id="l" d="M2 0H4"/>', self.text())
        self.assertIn(f'{dot}<path id="l" d="M0 0H2M4 0H8"/>', self.read("rest.svg").decode())
        self.fails("cut", "--strict", file, "--from", "0", "--to", "0.5", "-o", self.path("o.svg"),
                   names=[file, "dot", "no length"])

    def test_transform_moves_everything_that_is_shown(self):
        before = self.outlines(self.file)
        self.quiet("transform", self.file, "--rotate", "90", "--translate", "60,1", "-o", self.out)
        matrices = re.findall(r'transform="(matrix\([^"]*\))"', self.text())
        self.assertEqual(len(matrices), 4)
        self.assertChanged([('"translate(10 5)  scale(2)"', f'"{matrices[0]}"'),
                            ('x="20"/>', f'x="20" transform="{matrices[1]}"/>'),
                            ('y="40">', f'y="40" transform="{matrices[2]}">'),
                            ('id="tri" />', f'id="tri" transform="{matrices[3]}" />')])
        for name, outline in self.outlines(self.out).items():
            left, top, right, bottom = before[name]["bounds"]
            self.assertBox(outline["bounds"], [60 - bottom, 1 + left, 60 - top, 1 + right], 1e-9)
            self.assertLess(abs(outline["length"] - before[name]["length"]), 1e-9)

    def test_transform_of_one_outline_is_in_the_drawing_s_coordinates(self):
        before = self.outlines(self.file)
        self.quiet("transform", self.file, "--id", "box", "--translate", "3,4", "-o", self.out)
        self.assertChanged([('rx="1"/>', 'rx="1" transform="matrix(1,0,0,1,1.5,2)"/>')])
        after = self.outlines(self.out)
        for name, outline in before.items():
            shift = [3, 4, 3, 4] if name == "box" else [0] * 4
            self.assertBox(after[name]["bounds"],
                           [a + b for a, b in zip(outline["bounds"], shift)])

    def test_transform_may_write_coordinates(self):
        self.quiet("transform", self.file, "--id", "curve", "--translate", "3,4", "--coordinates",
                   "-o", self.out)
        self.assertChanged([("M 0.000,0 C 0,10 10,10 10.00,0 z", self.d("curve"))])
        self.assertBox(self.outlines(self.out)["curve"]["bounds"][:2], [13, 9])

    def test_a_transform_in_the_style_stays_there(self):
        file = self.write("in.svg", svg('<style>g{transform:scale(2)!important}</style><g id="g" '
                                        'style="color:red;"><path id="p" d="M0 0H1"/></g>'))
        self.run_text("transform", file, "--translate", "4,0", "-o", self.out)
        self.assertEqual(self.measure_file("out.svg")["p"]["bounds"], [4, 0, 6, 0])
        self.assertIn(b'style="color:red;transform:matrix(2,0,0,2,4,0) !important"',
                      self.read("out.svg"))

    def test_copies_follow_the_element_that_they_show(self):
        """`use` shows one element many times. Its form changes once, and a transform moves the use."""
        file = self.write("in.svg", svg('<defs><circle id="c" r="4"/></defs><use id="u" href="#c"/>'
                                        '<use id="v" href="#c" transform="scale(3)"/>'))
        result = self.execute("flatten", file, "--id", "u/c", "--error", "0.001", "-o", self.out)
        self.assertEqual(result.returncode, 0)
        self.assertIn(b"u/c: is drawn 2 times; every copy changes", result.stderr)
        self.fails("flatten", "--strict", file, "--id", "u/c", "--error", "1", "-o", self.out,
                   names=["2 times"])
        got = self.measure_file("out.svg")
        self.assertEqual((got["u/c"]["curves"], got["v/c"]["curves"]), (False, False))
        # The error holds for the largest copy.
        self.run_text("flatten", file, "--error", "0.001", "-o", self.out)
        self.assertGreater(self.measure_file("out.svg")["v/c"]["elements"], got["u/c"]["elements"])
        self.run_text("transform", file, "--translate", "9,0", "-o", self.out)
        got = self.measure_file("out.svg")
        self.assertBox(got["u/c"]["bounds"], [5, -4, 13, 4])
        self.assertBox(got["v/c"]["bounds"], [-3, -12, 21, 12])
        self.assertIn(b'<defs><circle id="c" r="4"/></defs>', self.read("out.svg"))

    def test_hatch_adds_lines_in_the_drawing_s_scale(self):
        self.quiet("hatch", self.file, "--id", "box", "--angle", "0", "--spacing", "1.5",
                   "--stroke-width", "0.5", "-o", self.out)
        text = self.text()
        added = re.search(r'\n    <path id="box-hatch"[^>]*/>', text)[0]
        self.assertIn('style="fill:none;stroke:blue;stroke-width:0.25;', added)
        self.assertEqual(text.replace(added, "").replace(' style="fill:none"', ""), DOCUMENT)
        self.assertAlmostEqual(self.outlines(self.out)["box-hatch"]["bounds"][1], 8.25)

    def test_precision_rounds_what_is_new(self):
        self.quiet("flatten", self.file, "--id", "curve", "--error", "0.1", "--precision", "1",
                   "-o", self.out)
        self.assertChanged([("M 0.000,0 C 0,10 10,10 10.00,0 z", self.d("curve"))])
        self.assertIsNone(re.search(r"\.\d\d", self.d("curve")))
        self.fails("flatten", self.file, "--error", "1", "--precision", "1.5", "-o", self.out,
                   names=["--precision"])

    def test_other_encodings_stay(self):
        text = '<?xml version="1.0" encoding="ISO-8859-1"?>\n' + svg(
            '<path id="p\u00e9" d="M0 0H1"/><!-- \u00fc -->')
        file = self.write("in.svg", text.encode("latin-1"))
        self.run_text("transform", file, "--translate", "1,2", "-o", self.out)
        new = text.replace('H1"', 'H1" transform="matrix(1,0,0,1,1,2)"')
        self.assertEqual(self.read("out.svg"), new.encode("latin-1"))
        for encoding in ("utf-16-le", "utf-16-be", "utf-32-le", "utf-32-be"):
            for first in ("\ufeff", "", " \r\n"):
                with self.subTest((encoding, first)):
                    text = first + svg('<path id="p\u00e9\U0001f600" d="M0 0H1"/>')
                    file = self.write("in.svg", text.encode(encoding))
                    self.run_text("transform", file, "--translate", "1,2", "-o", self.out)
                    new = text.replace('H1"', 'H1" transform="matrix(1,0,0,1,1,2)"')
                    self.assertEqual(self.read("out.svg"), new.encode(encoding))

    def test_text_that_is_damaged_is_told_with_its_place(self):
        text = svg('<path id="\ud800" d="M0 0H1"/>')
        place = text.index("\ud800")
        for encoding, size in (("utf-16-le", 2), ("utf-16-be", 2), ("utf-32-le", 4),
                               ("utf-32-be", 4)):
            for first in ("\ufeff", ""):
                with self.subTest((encoding, first)):
                    name = encoding[:6].upper()
                    bad = self.write("bad.svg", (first + text).encode(encoding, "surrogatepass"))
                    self.fails("measure", bad, names=[
                        f"bad.svg: byte {size * (place + len(first))}: is not valid {name}"])
                    whole = (first + SQUARE).encode(encoding)
                    cut = self.write("cut.svg", whole + b"\n")
                    self.fails("measure", cut, names=[
                        f"cut.svg: byte {len(whole)}: is not valid {name}"])

    def test_pngs_have_the_size_that_is_asked_for(self):
        file = self.write("in.svg", svg('<rect width="10" height="10"/>', 'viewBox="0 0 100 50"'))

        def size(*options):
            self.run_text("flatten", file, "--error", "1", *options, "-o", self.path("out.png"))
            return struct.unpack(">II", self.read("out.png")[16:24])
        self.assertEqual(size(), (1200, 600))
        self.assertEqual(size("--width", "300"), (300, 150))
        self.assertEqual(size("--height", "300"), (600, 300))
        self.assertEqual(size("--width", "100", "--height", "100"), (100, 50))
        self.assertEqual(size("--zoom", "0.5"), (50, 25))
        white = self.read("out.png")
        size("--zoom", "0.5", "--background", "none")
        self.assertNotEqual(self.read("out.png"), white)
        size("--zoom", "0.5", "--background", "#fff")
        self.assertEqual(self.read("out.png"), white)
        for options in (["--width", "0"], ["--zoom", "1e9"], ["--background", "pink"],
                        ["--width", "5", "--zoom", "2"]):
            self.fails("flatten", file, "--error", "1", *options, "-o", self.path("new.png"))
        self.fails("flatten", file, "--error", "1", "--width", "5", "-o", self.out,
                   names=["--width", ".png"])

    @unittest.skipUnless(os.path.isdir(ICONS), "no icons: apt-get install breeze-icon-theme")
    def test_real_icons_stay_but_for_what_changes(self):
        """Without its new parts, each icon is what it was; and its outlines are where they belong."""
        files = sorted(f for f in glob.glob(ICONS + "/*.svg") if not os.path.islink(f))[::40]
        for file in files:
            with self.subTest(file):
                with open(file, encoding="utf-8", newline="") as stream:
                    old = stream.read()
                before = self.outlines(file)
                self.quiet("transform", file, "--translate", "2,1", "-o", self.out)
                matrix = r'transform="matrix\([^"]*\)"'
                stripped = re.sub(r" ?" + matrix, "", re.sub(r' ?transform="[^"]*"', "", self.text()))
                self.assertEqual(stripped, re.sub(r' ?transform="[^"]*"', "", old))
                after = self.outlines(self.out)
                self.assertEqual(list(after), list(before))
                for name, outline in before.items():
                    self.assertBox(after[name]["bounds"],
                                   [a + b for a, b in zip(outline["bounds"], [2, 1, 2, 1])], 1e-6)
                self.quiet("flatten", file, "--error", "0.01", "-o", self.out)
                data = r'\bd="[^"]*"'
                if not re.search(r"<(circle|ellipse|rect|use)\b", old):
                    self.assertEqual(re.sub(data, "", self.text()), re.sub(data, "", old))
                for name, outline in self.outlines(self.out).items():
                    self.assertFalse(outline["curves"])
                    self.assertBox(outline["bounds"], before[name]["bounds"], 0.02)


class StrangeDocuments(AppTest):
    """Documents that are valid and seldom seen: nothing but the element asked for changes."""

    HEAD = '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 50 50">\n'
    BODY = '<path id="p" d="M1 1h8v8c0 9 -8 9 -8 0z"/>'

    def documents(self):
        """Pairs of the text before the element and the text behind it, with the element."""
        head, body = self.HEAD, self.BODY
        yield "plain", head, body, "\n</svg>\n"
        yield "last in its parent", head + "<g>", body, "</g></svg>"
        yield "empty beside", head + "<g><g/>", body, "<g/></g></svg>"
        yield "byte order mark", "\ufeff" + head, body, "</svg>"
        yield "carriage returns", (head + "<g>\n  ").replace("\n", "\r\n"), body, "\r\n</g>\r\n</svg>\r\n"
        yield "single quotes", head.replace('"', "'"), body.replace('"', "'"), "</svg>"
        yield ("blanks in tags", head, '<path\n\tid = "p"\n  d\t=\t\n"M1 1h8v8c0 9 -8 9 -8 0z"\n/>',
               "</svg >")
        yield ("content", head, body.replace("/>", "><title>a</title><!-- </path> --></path >"),
               "</svg>")
        yield ("signs in values", head, body.replace("<path", "<path a='x > \"y\" /> z'"),
               "<desc a=\"b > c '/>' d\"/></svg>")
        yield ("character data", head + "<desc><![CDATA[ <path id=\"p\"> </svg> ]]></desc>", body,
               "<desc><![CDATA[</g>]]></desc></svg>")
        yield ("comments", "<!-- <!DOCTYPE x> <svg> -->\n" + head + '<!-- <path id="p"/> --><g>', body,
               "<!-- > --></g><!----></svg><!-- end -->")
        yield ("instructions", '<?xml version="1.0"?><?a <b c="d> ?>' + head + "<?p <path> ?><g>", body,
               "<?q > </g> ?></g></svg><?r?>")
        yield ("prefix", '<svg:svg xmlns:svg="http://www.w3.org/2000/svg" xmlns:o="urn:o">'
               '<o:path id="x"/>', body.replace("<path", "<svg:path o:d='no' "),
               '<o:rect width="3"/></svg:svg>')
        yield ("document type", '<!DOCTYPE svg PUBLIC "-//W3C//DTD SVG 1.1//EN" "a>b.dtd" [\n'
               '<!-- <!ENTITY no "]>"> -->\n<!ELEMENT path EMPTY>\n<!ATTLIST path d CDATA #IMPLIED>\n'
               '<!ENTITY e "1 1h8">\n<?in side?>]>\n' + head + "<text>&e;&#65;&lt;</text>",
               body.replace("1 1h8", "&e;"), "</svg>")
        yield ("space kept", head + '<g xml:space="preserve">  \n\t', body, " \t</g></svg>")
        yield "letters", head + "<desc>\u00e9\u4e2d\U0001f600</desc>", body, "<desc>\u00fc</desc></svg>"

    COMMANDS = (["flatten", "--error", "0.1"], ["reverse"], ["transform", "--rotate", "30"],
                ["cut", "--from", "0.1", "--to", "0.6"], ["hatch", "--angle", "0", "--spacing", "3"])

    def check(self, name, before, element, behind, encode):
        file = self.write("in.svg", encode(before + element + behind))
        for command in self.COMMANDS:
            with self.subTest((name, command[0])):
                self.run_text(command[0], file, "--id", "p", *command[1:], "-q", "-o",
                              self.path("out.svg"))
                got = self.read("out.svg")
                first, last = encode(before), encode(behind)
                if encode != str.encode:
                    last = last[2:]
                self.assertEqual(got[:len(first)], first)
                self.assertEqual(got[-len(last):], last)
                self.assertNotEqual(got, self.read("in.svg"))
                ids = [e.get("id") for e in xml.etree.ElementTree.fromstring(got).iter(SVG + "path")]
                self.assertEqual(ids, ["p", "p-hatch"] if command[0] == "hatch" else ["p"])

    def test_nothing_else_changes_in_a_strange_document(self):
        for document in self.documents():
            self.check(*document, str.encode)

    def test_nothing_else_changes_in_another_encoding(self):
        documents = {name: parts for name, *parts in self.documents()}
        for mark, encoding in ((b"\xff\xfe", "utf-16-le"), (b"\xfe\xff", "utf-16-be")):
            for name in ("carriage returns", "content", "letters"):
                self.check(encoding, *documents[name],
                           lambda text, mark=mark, encoding=encoding: mark + text.encode(encoding))

    def test_a_union_in_a_strange_document_takes_its_place(self):
        other = self.write("other.svg", svg('<rect x="3" y="3" width="20" height="2"/>'))
        for name, before, element, behind in self.documents():
            file = self.write("in.svg", before + element + behind)
            with self.subTest(name):
                self.run_text("combine", "union", file, other, "-q", "-o", self.path("out.svg"))
                got = self.read("out.svg").decode("utf-8")
                self.assertTrue(got.startswith(before) and got.endswith(behind))
                root = xml.etree.ElementTree.fromstring(got.encode("utf-8"))
                self.assertEqual(len([e for e in root.iter(SVG + "path")]), 1)

    def test_an_element_without_content_goes_alone(self):
        file = self.write("in.svg", self.HEAD.strip() + "<g>" + self.BODY +
                          '<rect width="2" height="2"/></g></svg>')
        other = self.write("other.svg", svg('<rect x="3" y="3" width="20" height="2"/>'))
        self.run_text("combine", "union", file, other, "-o", self.path("out.svg"))
        self.assertRegex(self.read("out.svg").decode(),
                         r'^<svg [^>]*><g><path id="p" d="[^"]*"/></g></svg>$')

    def test_carriage_returns_stay_with_their_lines(self):
        text = (self.HEAD + "  " + self.BODY + '\n  <rect width="2" height="2"/>\n</svg>\n')
        file = self.write("in.svg", text.replace("\n", "\r\n"))
        other = self.write("other.svg", svg('<rect x="3" y="3" width="20" height="2"/>'))
        for command in (["combine", "union", file, other], ["hatch", file, "--angle", "0",
                                                            "--spacing", "3"]):
            self.run_text(*command, "-o", self.path("out.svg"))
            got = self.read("out.svg")
            self.assertEqual(got.count(b"\n"), got.count(b"\r\n"))
            self.assertEqual(got.count(b"\r"), got.count(b"\n"))


if __name__ == "__main__":
    unittest.main()
