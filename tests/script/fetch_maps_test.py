#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of script/fetch-maps, against a registry of this program's own; no network is needed."""

import base64
import hashlib
import http.server
import importlib.machinery
import importlib.util
import io
import json
import os
import pathlib
import subprocess
import sys
import tarfile
import tempfile
import threading
import unittest
import unittest.mock

sys.dont_write_bytecode = True
SCRIPT = pathlib.Path(__file__).resolve().parent.parent.parent / "script/fetch-maps"
loader = importlib.machinery.SourceFileLoader("fetch_maps", str(SCRIPT))
fetch_maps = importlib.util.module_from_spec(importlib.util.spec_from_loader("fetch_maps", loader))
loader.exec_module(fetch_maps)

CONTENTS = {"countries-110m.json": b"{}", "countries-50m.json": b"[]", "LICENSE": b"free"}


def packed(members):
    """A package of (name, content); a content of None makes a link out of the package."""
    data = io.BytesIO()
    with tarfile.open(fileobj=data, mode="w:gz") as tar:
        for name, content in members:
            member = tarfile.TarInfo(name)
            if content is None:
                member.type, member.linkname = tarfile.SYMTYPE, "/etc/passwd"
                tar.addfile(member)
            else:
                member.size = len(content)
                tar.addfile(member, io.BytesIO(content))
    return data.getvalue()


def whole(changes=None):
    members = {**{f"package/{name}": content for name, content in CONTENTS.items()}, **(changes or {})}
    return packed(members.items())


def integrity(data):
    return "sha512-" + base64.b64encode(hashlib.sha512(data).digest()).decode()


class Registry(http.server.BaseHTTPRequestHandler):
    answers = {}

    def do_GET(self):
        answer = self.answers.get(self.path)
        self.send_response(404 if answer is None else 200)
        self.end_headers()
        self.wfile.write(answer or b"")

    def log_message(self, *_):
        pass


class FetchMaps(unittest.TestCase):
    def setUp(self):
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Registry)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.base = f"http://127.0.0.1:{self.server.server_port}"
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.addCleanup(self.server.server_close)
        self.addCleanup(self.server.shutdown)
        self.folder = pathlib.Path(scratch.name, "data/maps")
        for name in list(os.environ):
            if name.lower().endswith("_proxy"):
                self.addCleanup(os.environ.__setitem__, name, os.environ.pop(name))

    def serve(self, data, tarball="/the/package.tgz"):
        Registry.answers = {
            f"/{fetch_maps.NAME}/1.2.3": json.dumps({"dist": {"tarball": tarball}}).encode(),
            "/the/package.tgz": data,
        }

    def fetch(self, expected):
        fetch_maps.fetch(self.base, self.folder, "1.2.3", expected)

    def fails(self, expected, about):
        with self.assertRaises(fetch_maps.Failure) as caught:
            self.fetch(expected)
        self.assertIn(about, str(caught.exception))
        self.assertFalse(self.folder.exists())

    def test_the_files_are_there_afterwards_and_nothing_else(self):
        data = whole({"package/other.json": b"1", "../outside": b"2"})
        self.serve(data, self.base + "/the/package.tgz")
        self.fetch(integrity(data))
        found = {path.name: path.read_bytes() for path in self.folder.iterdir()}
        self.assertEqual(found, CONTENTS)
        self.assertEqual([path.name for path in self.folder.parent.iterdir()], ["maps"])

    def test_another_package_is_refused(self):
        data = whole()
        self.serve(whole({"package/LICENSE": b"changed"}))
        self.fails(integrity(data), "not the package")

    def test_a_package_without_the_files_is_refused(self):
        data = packed([("package/LICENSE", b"free")])
        self.serve(data)
        self.fails(integrity(data), "unpacked")

    def test_links_are_not_followed(self):
        data = whole({"package/LICENSE": None})
        self.serve(data)
        self.fails(integrity(data), "LICENSE")

    def test_what_is_no_package_is_refused(self):
        self.serve(b"no archive")
        self.fails(integrity(b"no archive"), "unpacked")

    def test_an_address_that_is_not_of_the_web_is_refused(self):
        self.serve(whole(), "file:///etc/passwd")
        self.fails(integrity(whole()), "no web address")

    def test_an_endless_answer_is_cut_off(self):
        self.serve(bytes(fetch_maps.MOST_BYTES + 1))
        self.fails("", "longer")

    def test_a_registry_without_the_package_is_told(self):
        Registry.answers = {}
        self.fails("", "404")
        for answer in (b"", b"[]", b"{}", b'{"dist": 1}', b'{"dist": {"tarball": 7}}', b"\xff"):
            Registry.answers = {f"/{fetch_maps.NAME}/1.2.3": answer}
            self.fails("", "does not describe")

    def test_the_environment_names_the_registry(self):
        with unittest.mock.patch.dict(os.environ, npm_config_registry="https://registry.example"):
            self.assertEqual(fetch_maps.registry(), "https://registry.example")

    def test_what_cannot_be_had_is_one_line(self):
        # The script beside an empty folder, so that it looks for no maps of ours.
        script = self.folder.parent.parent / "script" / "fetch-maps"
        script.parent.mkdir(parents=True)
        script.write_bytes(SCRIPT.read_bytes())
        self.server.shutdown()
        self.server.server_close()
        result = subprocess.run([sys.executable, script], capture_output=True, text=True, timeout=60,
                                env={**os.environ, "npm_config_registry": self.base})
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertRegex(result.stderr, r"\Afetch-maps: no map data, [^\n]+\n\Z")


if __name__ == "__main__":
    unittest.main()
