#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares src/ with the layers that docs/architecture.md lists.

A "unit" is a header and its source together, named like "ui/window"; a name with an ending, like
"app/main.cpp", is a file that stands alone. Quoted includes are those of the project.
"""

import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = PROJECT / "src"
PAGE = PROJECT / "docs" / "architecture.md"

ENTRY_POINT = "app/main.cpp"


def unit_of(path):
    """"ui/window.cpp" is part of "ui/window"; build_constants.h is made from a template."""
    return re.sub(r"\.(cpp|h|h\.in)$", "", path)


def read_layers(page):
    """The number of each unit's layer, the lowest 0, from the page's block marked "layers"."""
    block = re.search(r"^```layers\n(.*?)^```", page, re.MULTILINE | re.DOTALL).group(1)
    layers = []
    for line in block.splitlines():
        words = line.split()
        if not line.startswith(" "):
            layers.append([])
            del words[0]
        layers[-1] += [unit_of(name) for name in words]
    numbers = {}
    for number, units in enumerate(reversed(layers)):
        for unit in units:
            if unit in numbers:
                raise ValueError(unit + " is in two layers")
            numbers[unit] = number
    return numbers


def read_includes(sources):
    """The project's includes of every file, both as paths below `sources`."""
    includes = {}
    for path in sorted(sources.rglob("*")):
        if path.name.endswith((".cpp", ".h", ".h.in")):
            text = path.read_text(encoding="utf-8")
            includes[path.relative_to(sources).as_posix()] = re.findall(
                r'^\s*#\s*include\s*"([^"]+)"', text, re.MULTILINE)
    return includes


def files_not_listed(layers, includes):
    return sorted(file for file in includes if unit_of(file) not in layers)


def listed_without_file(layers, includes):
    return sorted(set(layers) - {unit_of(file) for file in includes})


def strange_includes(layers, includes):
    """Includes that name no file of the tree by its path from src/."""
    return [(file, included) for file, all_of_it in includes.items()
            for included in all_of_it if unit_of(included) not in layers]


def includes_of_higher_layers(layers, includes):
    return [(file, included) for file, all_of_it in includes.items() for included in all_of_it
            if layers.get(unit_of(included), 0) > layers.get(unit_of(file), 0)]


def cycle(includes):
    """One cycle of units, in order, or nothing."""
    below = {}
    for file, all_of_it in includes.items():
        unit = unit_of(file)
        below.setdefault(unit, set()).update(unit_of(each) for each in all_of_it)
        below[unit].discard(unit)
    done = set()

    def walk(unit, way):
        if unit in way:
            return way[way.index(unit):] + [unit]
        if unit in done:
            return None
        for each in sorted(below.get(unit, ())):
            found = walk(each, way + [unit])
            if found:
                return found
        done.add(unit)
        return None

    for unit in sorted(below):
        found = walk(unit, [])
        if found:
            return found
    return None


def includes_of_app(includes):
    return sorted({(file, unit_of(included)) for file, all_of_it in includes.items()
                   for included in all_of_it
                   if included.startswith("app/") and not file.startswith("app/")})


def read_libraries(build_file):
    """The sources of each library of a CMake file."""
    return {name: set(re.findall(r"\S+\.cpp", sources)) for name, sources in re.findall(
        r"add_library\((\w+) STATIC\s(.*?)\)", build_file, re.DOTALL)}


def expected_libraries(layers, includes):
    """The sources of the libraries: up to the layer of the decisions, and above it."""
    sources = [file for file in includes if file.endswith(".cpp") and file != ENTRY_POINT]
    core = {file for file in sources if layers.get(unit_of(file), 0) <= 1}
    return {"settings_core": core, "settings_window": set(sources) - core}


def drawn_functions(page):
    """The names with an underscore in the page's unmarked code blocks, which are drawings."""
    blocks = re.findall(r"^```(\w*)\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
    drawings = "\n".join(text for mark, text in blocks if not mark)
    return sorted(set(re.findall(r"\b[a-z]+(?:_[a-z]+)+\b", drawings)))


class TheTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.page = PAGE.read_text(encoding="utf-8")
        cls.layers = read_layers(cls.page)
        cls.includes = read_includes(SOURCES)

    def test_lists_every_file(self):
        self.assertEqual(files_not_listed(self.layers, self.includes), [])

    def test_has_every_file_that_is_listed(self):
        self.assertEqual(listed_without_file(self.layers, self.includes), [])

    def test_names_its_own_files_from_the_top(self):
        self.assertEqual(strange_includes(self.layers, self.includes), [])

    def test_never_includes_a_higher_layer(self):
        self.assertEqual(includes_of_higher_layers(self.layers, self.includes), [])

    def test_has_no_cycle(self):
        self.assertIsNone(cycle(self.includes))

    def test_includes_app_from_no_other_folder(self):
        self.assertEqual(includes_of_app(self.includes), [])

    def test_builds_its_libraries_by_layer(self):
        build_file = (SOURCES / "CMakeLists.txt").read_text(encoding="utf-8")
        self.assertEqual(read_libraries(build_file),
                         expected_libraries(self.layers, self.includes))

    def test_has_the_functions_that_the_page_draws(self):
        code = "\n".join(path.read_text(encoding="utf-8") for path in SOURCES.rglob("*.h"))
        names = drawn_functions(self.page)
        self.assertIn("render_state", names)
        self.assertEqual([name for name in names if not re.search(rf"\b{name}\b", code)], [])


class TheChecks(unittest.TestCase):
    """A small tree with two layers, and one fault at a time."""

    page = ("text\n```layers\nupper   ui/window  app/poll\n        app/main.cpp\n"
            "lower   link/json\n```\n")
    sound = {"link/json.h": [], "link/json.cpp": ["link/json.h"], "app/poll.h": [],
             "ui/window.h": ["link/json.h"], "ui/window.cpp": ["ui/window.h", "link/json.h"],
             "app/main.cpp": ["ui/window.h", "app/poll.h"]}

    def test_notice_each_fault(self):
        layers = read_layers(self.page)
        for check, file, included in (
                (strange_includes, "ui/window.cpp", "window.h"),
                (includes_of_higher_layers, "link/json.cpp", "ui/window.h")):
            self.assertEqual(check(layers, self.sound), [])
            tree = {**self.sound, file: self.sound[file] + [included]}
            self.assertEqual(check(layers, tree), [(file, included)])

    def test_notice_a_cycle_within_a_layer(self):
        self.assertIsNone(cycle(self.sound))
        tree = {**self.sound, "ui/window.cpp": ["app/poll.h"], "app/poll.cpp": ["ui/window.h"]}
        self.assertEqual(cycle(tree), ["app/poll", "ui/window", "app/poll"])
        self.assertEqual(includes_of_app(tree), [("ui/window.cpp", "app/poll")])


if __name__ == "__main__":
    unittest.main()
