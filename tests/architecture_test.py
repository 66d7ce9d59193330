#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares src/ with the layers that docs/architecture.md lists.

A "unit" is a header and its source together, named like "ui/window"; a name with an ending, like
"app/main.cpp", is a file that stands alone. Quoted includes are those of the project.
"""

import graphlib
import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = PROJECT / "src"
PAGE = (PROJECT / "docs" / "architecture.md").read_text(encoding="utf-8")

ENTRY_POINT = "app/main.cpp"


def unit_of(path):
    """"ui/window.cpp" is part of "ui/window"; build_constants.h is made from a template."""
    return re.sub(r"\.(cpp|h|h\.in)$", "", path)


def read_layers():
    """The units of each layer, the lowest first, from the page's block marked "layers"."""
    block = re.search(r"^```layers\n(.*?)^```", PAGE, re.MULTILINE | re.DOTALL).group(1)
    # A layer begins with its name; a line of more units is indented.
    lines = re.split(r"^(?=\S)", block, flags=re.MULTILINE)[1:]
    return [[unit_of(name) for name in line.split()[1:]] for line in reversed(lines)]


def read_includes():
    """The project's includes of every file, both as paths below src/."""
    return {path.relative_to(SOURCES).as_posix():
            re.findall(r'^\s*#\s*include\s*"([^"]+)"', path.read_text(encoding="utf-8"),
                       re.MULTILINE)
            for path in SOURCES.rglob("*") if path.name.endswith((".cpp", ".h", ".h.in"))}


class TheTree(unittest.TestCase):
    def setUp(self):
        self.layers = read_layers()
        self.layer_of = {unit: number for number, units in enumerate(self.layers)
                         for unit in units}
        self.includes = read_includes()

    def test_is_what_the_page_lists(self):
        self.assertEqual(sorted(sum(self.layers, [])),
                         sorted({unit_of(file) for file in self.includes}))

    def test_never_includes_a_higher_layer_or_a_file_of_app_from_another_folder(self):
        for file, all_of_it in self.includes.items():
            for included in all_of_it:
                with self.subTest(file, includes=included):
                    self.assertIn(unit_of(included), self.layer_of, "named from src/")
                    self.assertLessEqual(self.layer_of[unit_of(included)],
                                         self.layer_of[unit_of(file)])
                    self.assertTrue(file.startswith("app/") or not included.startswith("app/"))

    def test_has_no_cycle(self):
        below = {}
        for file, all_of_it in self.includes.items():
            below.setdefault(unit_of(file), set()).update(map(unit_of, all_of_it))
        for unit, units in below.items():
            units.discard(unit)
        graphlib.TopologicalSorter(below).prepare()  # throws the cycle

    def test_builds_its_libraries_by_layer(self):
        build_file = (SOURCES / "CMakeLists.txt").read_text(encoding="utf-8")
        libraries = {name: set(re.findall(r"\S+\.cpp", sources)) for name, sources in re.findall(
            r"add_library\((\w+) STATIC\s(.*?)\)", build_file, re.DOTALL)}
        sources = {file for file in self.includes if file.endswith(".cpp")} - {ENTRY_POINT}
        core = {file for file in sources if self.layer_of[unit_of(file)] <= 1}
        self.assertEqual(libraries, {"settings_core": core, "settings_window": sources - core})

    def test_has_the_functions_that_the_page_draws(self):
        # The drawings are the page's unmarked code blocks, the functions the names with an
        # underscore in them.
        blocks = re.findall(r"^```(\w*)\n(.*?)^```$", PAGE, re.MULTILINE | re.DOTALL)
        drawings = "\n".join(text for mark, text in blocks if not mark)
        names = set(re.findall(r"\b[a-z]+(?:_[a-z]+)+\b", drawings))
        code = "\n".join(path.read_text(encoding="utf-8") for path in SOURCES.rglob("*.h"))
        self.assertIn("render_state", names)
        self.assertEqual([name for name in names if not re.search(rf"\b{name}\b", code)], [])


if __name__ == "__main__":
    unittest.main()
