#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Gives the same outlines to the library and to others, and writes how they did into docs/outlines.md.

    run.py --native PROGRAM --judge PROGRAM --modules FOLDER [--into DOC] [--work FOLDER] [FILE.jsonl...]

script/bench calls it. The cases are those of tests/data/outline_cases.txt, strokes that the judge makes, and
those of each FILE (tests/judge/OutlineCases.cpp says how they are written).

Each participant is a process of its own. It reads a case a line, as JSON:

    name, op    union, intersection, difference, xor; stroke with width, join, cap and tolerance; offset with
                distance and tolerance; fit (of curves to points), simplify and map with tolerance
    a, b        operands with f (nonzero, evenodd) and d (SVG path text); without b overlaps are removed

and answers with one line, as JSON: us (processor time in microseconds), f and d (a list of segments, or path text), or
error, or skip where it has no such operation. One that gives no answer in time is stopped and begun anew.
The judge (Judge.cpp beside this file) reads the cases with their answers and says which are right.
"""

import argparse
import json
import os
import pathlib
import re
import select
import shutil
import statistics
import subprocess
import sys
import time

PATIENCE = 10.0  # seconds for a case
BEGIN = "<!-- begin: {}, written by script/bench -->"
END = "<!-- end: {}, written by script/bench -->"
TITLES = {
    "families": "the project's own families",
    "glyphs": "unions of neighbouring glyphs, every fourth pair",
    "rings": "union of two rings of 1,000 curves",
    "strokes": "hard strokes",
    "pen": "outlines of glyphs as lines of a pen, every fourth",
    "grown": "glyphs grown by a 50th of the em, every fourth",
    "shrunk": "glyphs shrunk by a 50th of the em, every fourth",
    "handwriting": "fit to 250 points of handwriting",
    "joints": "simplify glyphs with four times their curves, every fourth",
    "map": "simplify all countries together, at six tolerances",
    "skia_op": "Skia's path operations",
    "skia_simplify": "Skia's simplification",
    "paper": "paper.js' boolean operations",
}


class Process:
    """A participant that speaks the lines above."""

    def __init__(self, command):
        self.command = command
        self.process = None

    def begin(self):
        self.process = subprocess.Popen(
            self.command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL
        )
        self.left = b""

    def end(self):
        if self.process:
            self.process.kill()
            self.process.wait()
            self.process = None

    def line(self, until=b"\n"):
        """What it writes up to `until`; None where that takes too long, and "" where it ends."""
        stop = time.monotonic() + PATIENCE
        while until not in self.left:
            if not select.select([self.process.stdout], [], [], max(0.0, stop - time.monotonic()))[0]:
                return None
            read = os.read(self.process.stdout.fileno(), 1 << 16)
            if not read:
                return ""
            self.left += read
        line, self.left = self.left.split(until, 1)
        return line.decode("utf-8", "replace")

    def answer(self, case):
        if self.process is None:
            self.begin()
        try:
            self.process.stdin.write(json.dumps(case).encode() + b"\n")
            self.process.stdin.flush()
            line = self.line()
        except BrokenPipeError:
            line = ""
        if not line:
            self.end()
            return {"hung": True} if line is None else {"error": "its process ended"}
        return json.loads(line)


class Inkscape(Process):
    """Inkscape's shell. Its time is the time of the whole, less the time to open and write the same file."""

    OPS = {"union": "path-union", "intersection": "path-intersection", "difference": "path-difference",
           "xor": "path-exclusion", "stroke": "object-stroke-to-path", "offset": "object-to-path",
           "simplify": "path-simplify"}
    PROMPT = b"> "

    def __init__(self, work):
        super().__init__(["inkscape", "--shell"])
        self.work = work

    def used(self):
        """The processor time of its first thread, in microseconds."""
        return int(pathlib.Path(f"/proc/{self.process.pid}/schedstat").read_text("utf-8").split()[0]) / 1000

    def tell(self, actions):
        self.process.stdin.write(";".join(actions).encode() + b"\n")
        self.process.stdin.flush()
        return self.line(self.PROMPT)

    def pass_through(self, actions, file="in.svg"):
        """Opens the file, works on it and writes it. The shell may prompt before, so the file tells the end."""
        out = self.work / f"out{len(actions)}.svg"
        out.unlink(missing_ok=True)
        begin = self.used()
        said = self.tell([f"file-open:{self.work / file}", "select-all", *actions, f"export-filename:{out}",
                          "export-overwrite", "export-plain-svg", "export-do", "file-close"])
        stop = time.monotonic() + 1.0
        while said and time.monotonic() < stop:
            if out.is_file() and out.read_text("utf-8").rstrip().endswith("</svg>"):
                break
            time.sleep(0.002)
        return said, self.used() - begin if said else 0.0, out

    def write(self, name, body):
        (self.work / name).write_text(
            '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 100 100" width="100" height="100" '
            'xmlns:sodipodi="http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd" '
            'xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape">'
            f"{body}</svg>", encoding="utf-8"
        )

    def answer(self, case):
        op = case["op"] if case["b"] or case["op"] in ("stroke", "offset", "simplify", "fit", "map") else "union"
        if op not in self.OPS:
            return {"skip": "has no such operation"}
        style = "stroke:none"
        if case["op"] == "stroke":
            style = (f"fill:none;stroke:#000;stroke-width:{case['width']!r};stroke-miterlimit:4;"
                     f"stroke-linejoin:{case['join']};stroke-linecap:{case['cap']}")
        paths = "".join(
            f'<path style="fill-rule:{o.get("f", "nonzero")};{style}" d="{o["d"]}"/>'
            for o in (case["a"], case["b"]) if o
        )
        self.write("in.svg", paths)
        work = "in.svg"
        if op == "offset":  # an offset is made as the file is read
            work = "work.svg"
            self.write(work, f'<path style="{style}" sodipodi:type="inkscape:offset" '
                       f'inkscape:radius="{case["distance"]!r}" inkscape:original="{case["a"]["d"]}"/>')
        try:
            if self.process is None:
                self.begin()
                self.line(self.PROMPT)
            _, idle, _ = self.pass_through([])
            said, whole, out = self.pass_through([self.OPS[op]], work)
        except BrokenPipeError:
            said = ""
        if not said:
            self.end()
            return {"hung": True} if said is None else {"error": "its process ended"}
        if not out.is_file():
            return {"error": "no result"}
        found = re.findall(r'<path\b[^>]*?\sd="([^"]*)"', out.read_text("utf-8"), re.DOTALL)
        if len(found) > 1:
            return {"error": "more than one path is left"}
        rule = "evenodd" if "fill-rule:evenodd" in out.read_text("utf-8") else "nonzero"
        return {"us": max(whole - idle, 0.0), "f": rule, "d": " ".join(found)}


def text(segments):
    """The SVG path text of a list of segments."""
    return " ".join(" ".join([s[0], *(repr(float(x)) for x in s[1:])]) for s in segments)


def own_families():
    lines = pathlib.Path("tests/data/outline_cases.txt").read_text("utf-8").splitlines()
    lines = [line for line in lines if not line.startswith("#")]
    for head, rules, a, b in zip(*[iter(lines)] * 4):
        name, op = head.split()
        rule = rules.split()
        yield {"name": name, "op": op, "a": {"f": rule[0], "d": a}, "b": {"f": rule[1], "d": b}}


def of_file(name):
    """The cases of a file, without those of inverse rules and conics."""
    for line in pathlib.Path(name).read_text("utf-8").splitlines():
        case = json.loads(line)
        operands = [case["a"]] + ([case["b"]] if case.get("b") else [])
        if any(o["f"] not in ("nonzero", "evenodd") or any(s[0] == "K" for s in o["d"]) for o in operands):
            continue
        made = [{"f": o["f"], "d": text(o["d"])} for o in operands]
        if case["op"] == "reverse":
            made.reverse()
            case["op"] = "difference"
        yield {"name": case["name"], "op": case["op"], "a": made[0], "b": made[1] if len(made) > 1 else None}


def map_cases(file):
    """The borders of all countries in one TopoJSON file, as rings of one path."""
    if not file.is_file():
        return
    topology = json.loads(file.read_text("utf-8"))
    scale, move = (topology["transform"][key] for key in ("scale", "translate"))
    arcs = []
    for arc in topology["arcs"]:
        h = v = 0
        arcs.append([])
        for dh, dv in arc:
            h, v = h + dh, v + dv
            arcs[-1].append((h * scale[0] + move[0], v * scale[1] + move[1]))
    rings = []
    for geometry in topology["objects"]["countries"]["geometries"]:
        polygons = geometry.get("arcs", [])
        for polygon in polygons if geometry["type"] == "MultiPolygon" else [polygons]:
            for ring in polygon:
                parts = [arcs[i] if i >= 0 else arcs[~i][::-1] for i in ring]
                rings.append([p for part in parts for p in part[:-1]])
    rings = [ring for ring in rings if len(set(ring)) > 2]
    d = " ".join("M" + " L".join(f"{h!r} {v!r}" for h, v in ring) + "Z" for ring in rings)
    for tolerance in (0.05, 0.1, 0.2, 0.5, 1.0, 2.0):
        yield {"name": f"within{tolerance}", "op": "map", "tolerance": tolerance,
               "a": {"f": "nonzero", "d": d}, "b": None}


def measure(people, sets, judge):
    """{(set, who): [verdict of each case]}."""
    rows = {}
    for name, cases in sets.items():
        for who, process in people.items():
            asked = []
            for index, case in enumerate(cases):
                reply = process.answer(case)
                if "skip" not in reply:
                    asked.append({"index": index, "case": case, "result": reply})
            if not asked:
                continue
            lines = "".join(json.dumps(entry) + "\n" for entry in asked)
            done = subprocess.run([judge], input=lines, capture_output=True, text=True, check=True)
            verdicts = [json.loads(line) for line in done.stdout.splitlines()]
            for entry, verdict in zip(asked, verdicts):
                verdict.update(index=entry["index"], name=entry["case"]["name"],
                               us=entry["result"].get("us"), hung="hung" in entry["result"],
                               error=entry["result"].get("error"))
            rows[name, who] = verdicts
            print(f"{name}: {who}: {sum(v['right'][0] for v in verdicts)} of {len(verdicts)}", file=sys.stderr)
    for process in people.values():
        process.end()
    return rows


def number(value):
    return f"{value:,.0f}" if value >= 99.5 else f"{value:.1f}" if value >= 9.95 else f"{value:.2f}"


def table(rows, chosen, names, units):
    """One table of the sets `chosen`, with a line for each participant."""
    for name in chosen:
        ours = {v["index"]: v for v in rows[name, "trammel"]}
        yield (f"| {TITLES.get(name, name)} | asked | right, {units[0]} | right, {units[1]} | failed | hung "
               "| elements | median, µs | time |")
        yield "|---|--:|--:|--:|--:|--:|--:|--:|--:|"
        for who, title in names.items():
            if (name, who) not in rows:
                continue
            verdicts = rows[name, who]
            us = [v["us"] for v in verdicts if v["us"] is not None]
            both = [(v, ours[v["index"]]) for v in verdicts if v["right"][0] and v["us"]]
            share = sum(v["elements"] for v, _ in both) / max(1, sum(o["elements"] for _, o in both))
            times = [v["us"] / ours[v["index"]]["us"] for v in verdicts if v["us"]]
            cells = [
                title, str(len(verdicts)), *(str(sum(v["right"][i] for v in verdicts)) for i in (0, 1)),
                str(sum(v["error"] is not None for v in verdicts)), str(sum(v["hung"] for v in verdicts)),
                f"{share:.2f}" if both else "–",
                *(number(statistics.median(values)) if values else "–" for values in (us, times)),
            ]
            yield "| " + " | ".join(cells) + " |"
        yield ""


def into(document, name, lines):
    path = pathlib.Path(document)
    old = path.read_text("utf-8").splitlines()
    begin, end = old.index(BEGIN.format(name)), old.index(END.format(name))
    old[begin + 1 : end] = ["", *"\n".join(lines).strip().split("\n"), ""]
    path.write_text("\n".join(old) + "\n", "utf-8")


def version(command, pattern):
    try:
        done = subprocess.run(command, capture_output=True, text=True, check=False)
    except OSError:
        return ""
    found = re.search(pattern, done.stdout)
    return found.group(1) if found else ""


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--native", required=True)
    parser.add_argument("--judge", required=True)
    parser.add_argument("--modules", required=True)
    parser.add_argument("--into", default="docs/outlines.md")
    parser.add_argument("--work", default="build/bench/outlines")
    maps = os.environ.get("TRAMMEL_MAP_DATA", "build/data/world-atlas")
    parser.add_argument("--map", default=f"{maps}/countries-110m.json")
    parser.add_argument("--without", nargs="*", default=[], metavar="SET")
    parser.add_argument("files", nargs="*")
    wanted = parser.parse_args()
    work = pathlib.Path(wanted.work).resolve()
    work.mkdir(parents=True, exist_ok=True)
    modules = pathlib.Path(wanted.modules).resolve()

    names = {"trammel": "**Trammel**"}
    people = {"trammel": Process([wanted.native, "trammel"])}
    peers = pathlib.Path(__file__).with_name("peer.cjs")
    for who, package, title in (
        ("skia", "@napi-rs/canvas", "Skia, native"),
        ("canvaskit", "canvaskit-wasm", "Skia, WebAssembly"),
        ("paper", "paper", "paper.js"),
    ):
        if shutil.which("node") and (modules / package).is_dir():
            told = json.loads((modules / package / "package.json").read_text("utf-8"))["version"]
            names[who] = f"{title} ({package} {told})"
            people[who] = Process(["node", str(peers), who, str(modules)])
    if shutil.which("inkscape"):
        names["inkscape"] = "Inkscape " + version(["inkscape", "--version"], r"Inkscape (\S+)")
        people["inkscape"] = Inkscape(work)
    packages = {"qt": ("Qt", "qt6-base-dev"), "2geom": ("2geom", "lib2geom-dev"), "geos": ("GEOS", "libgeos-dev"),
                "polyclipping": ("Clipper (polyclipping)", "libpolyclipping-dev")}
    for who, (title, package) in packages.items():
        if subprocess.run([wanted.native, who], stdin=subprocess.DEVNULL, check=False).returncode == 0:
            names[who] = f"{title} " + version(["dpkg-query", "-W", "-f", "${Version}", package], r"^([\d.]+)")
            people[who] = Process([wanted.native, who])

    sets = {"families": list(own_families())}
    for name in wanted.files:
        if pathlib.Path(name).stem != "gen":  # the project's own families again
            sets[pathlib.Path(name).stem] = list(of_file(name))
    for name in ("glyphs", "rings", "strokes", "pen", "grown", "shrunk", "handwriting", "joints"):
        made = subprocess.run([wanted.judge, "--cases", name], capture_output=True, text=True, check=True)
        lines = made.stdout.splitlines()
        if name not in ("rings", "strokes", "handwriting"):
            lines = lines[::4]
        sets[name] = [json.loads(line) for line in lines]
    sets["map"] = list(map_cases(pathlib.Path(wanted.map)))
    sets = {name: cases for name, cases in sets.items() if cases and name not in wanted.without}

    rows = measure(people, sets, wanted.judge)
    (work / "rows.json").write_text(json.dumps([[*key, value] for key, value in rows.items()]), "utf-8")
    tables = {
        "strokes": (("strokes", "pen"), ("1e-2", "1e-3")),
        "offsets": (("grown", "shrunk"), ("1e-2", "1e-3")),
        "fits": (("handwriting", "joints"), ("the tolerance", "twice")),
        "maps": (("map",), ("the tolerance", "and no new crossing")),
    }
    others = {name for chosen, _ in tables.values() for name in chosen}
    tables["regions"] = ([name for name in sets if name not in others], ("1e-3", "1e-6"))
    for title, (chosen, units) in tables.items():
        into(wanted.into, title, table(rows, [name for name in chosen if name in sets], names, units))


main()
