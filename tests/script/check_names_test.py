#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of script/check-names: which structures of one name it finds in two files."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parent.parent.parent / "script/check-names"


class Clashes(unittest.TestCase):
    def names(self, *texts):
        """The names that stand in more than one file, where each text is a file."""
        with tempfile.TemporaryDirectory() as folder:
            paths = [pathlib.Path(folder) / f"{number}.cpp" for number in range(len(texts))]
            for path, text in zip(paths, texts):
                path.write_text(text, encoding="utf-8")
            done = subprocess.run([sys.executable, SCRIPT, *paths], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1 if done.stderr else 0)
        return [line.split(": defined")[0] for line in done.stderr.splitlines() if ": defined" in line]

    def test_finds_what_two_files_define_in_one_namespace(self):
        one = "namespace trammel {\nstruct A { int a; };\nvoid f() { struct L {}; }\nclass B;\n} // namespace trammel"
        other = "namespace trammel { template <class T>\nclass alignas(16) A final : public C<T> {}; class B {}; }"
        self.assertEqual(self.names(one, other), ["trammel::A"])

    def test_finds_enumerations_unions_and_specializations(self):
        text = "namespace a { namespace b { enum class E : char { kOne }; } union U { int i; }; }"
        self.assertEqual(self.names(text, text.replace("int", "char")), ["a::U", "a::b::E"])
        text = "template <> struct S<int> {}; extern \"C\" { struct TRAMMEL_API P { int i; }; }"
        self.assertEqual(self.names(text, text), ["P", "S<int>"])

    def test_tells_namespaces_apart(self):
        text = "namespace a::b { struct A {}; }"
        self.assertEqual(self.names(text, text), ["a::b::A"])
        self.assertEqual(self.names(text, "namespace a { struct A {}; }"), [])
        self.assertEqual(self.names("struct A {};", "struct B { struct A {}; };"), [])

    def test_leaves_alone_what_one_file_keeps_to_itself(self):
        text = "namespace trammel {\nnamespace {\nstruct A {};\n} // namespace\nint f() { return '{'; }\n}"
        self.assertEqual(self.names(text, text), [])
        text = "#define OPEN {\n// struct {\nstruct A; enum B : int; auto const s = \"struct C {\"; struct D f() { return {}; }"
        self.assertEqual(self.names(text, text), [])

    def test_reads_one_branch_of_a_condition(self):
        text = "#if A\nenum E : int {\n#else\nenum E {\n#endif\n};\nstruct S {};"
        self.assertEqual(self.names(text, "struct S { int i; };"), ["S"])


if __name__ == "__main__":
    unittest.main()
