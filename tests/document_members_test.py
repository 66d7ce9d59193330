#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares the table of the documents' members (document_members.json) with what is described.

Every member that docs/service-api.yaml describes in a document the program reads is in it, with its
kind, and nothing else is; and so is every name that the sources look up in a document.
"""
import glob
import json
import os
import re
import unittest

import yaml

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCES = os.path.join(HERE, "..", "src")

with open(os.path.join(HERE, "support", "document_members.json"), encoding="utf-8") as file:
    TABLE = json.load(file)
with open(os.path.join(HERE, "..", "docs", "service-api.yaml"), encoding="utf-8") as file:
    API = yaml.safe_load(file)

# The other schemas of the description are of documents that the program sends or does not read.
SCHEMA_OF = {"state": "StateDocument", "devices": "Devices", "saved": "SettingsSaved",
             "save refusal": "Refusal", "registration refusal": "Refusal"}

# Functions that look up a member by name, or bind a field to a settings key.
LOOKUPS = re.compile(
    r"\b(?:required_(?:member|object|array|bool|group|place)|optional_bool|member_(?:string|number)"
    r"|if_contains|contains|at|find_path|setting_(?:string|number)|number_at|object_or_empty"
    r"|bind_(?:field|entry)|add_(?:entry|switch|number)_row)\(")


def resolved(node):
    while "$ref" in node:
        target = API
        for step in node["$ref"].split("/")[1:]:
            target = target[step]
        node = target
    return node


def kind_of(node):
    if "type" not in node:
        return {str: "string"}[type(node["enum"][0])]
    return {"integer": "number"}.get(node["type"], node["type"])


def described(node, path=""):
    """All paths below a schema with their kinds; an array's elements are its element 0."""
    node = resolved(node)
    found = {path: kind_of(node)}
    for name, member in node.get("properties", {}).items():
        found.update(described(member, f"{path}.{name}".lstrip(".")))
    if "items" in node:
        found.update(described(node["items"], f"{path}.0".lstrip(".")))
    return found


def member_at(node, path):
    """What is written about a member; a reference is followed, what stands beside it counts too."""
    for step in path.split("."):
        node = resolved(node)
        node = node["items"] if step == "0" else node["properties"][step]
    return node


def arguments(text, start):
    """The arguments of a call whose parenthesis opens before `start`, split at its own commas."""
    depth, begin, result = 0, start, []
    for match in re.finditer(r'"(?:[^"\\]|\\.)*"|[()\[\]{},]', text[start:]):
        token, at = match.group(), start + match.start()
        if token in "([{":
            depth += 1
        elif token in ")]}" and depth > 0:
            depth -= 1
        elif depth == 0 and token in ",)":
            result.append(text[begin:at].strip())
            begin = at + 1
            if token == ")":
                return result
    return result


def looked_up():
    """Every literal name that the sources look up, with the place."""
    found = {}
    for name in glob.glob(os.path.join(SOURCES, "*", "*.cpp")):
        with open(name, encoding="utf-8") as source:
            text = source.read()
        for call in LOOKUPS.finditer(text):
            for argument in arguments(text, call.end()):
                literal = re.fullmatch(r'"([a-z_]+(?:\.[a-z_]+)*)"', argument)
                if literal:
                    found[literal.group(1)] = os.path.relpath(name, SOURCES)
    return found


class DocumentMembers(unittest.TestCase):
    def test_every_described_member_is_in_the_table_and_nothing_else(self):
        for document, schema in SCHEMA_OF.items():
            with self.subTest(document):
                rows = {row["path"]: row["kind"] for row in TABLE if row["document"] == document}
                self.assertEqual(rows, described(API["components"]["schemas"][schema]))

    def test_the_description_says_what_the_window_does_without_a_member(self):
        members = [row for row in TABLE if row["path"].rsplit(".", 1)[-1] not in ("", "0")]
        for row in members:
            with self.subTest(row["document"] + ": " + row["path"]):
                member = member_at(API["components"]["schemas"][SCHEMA_OF[row["document"]]],
                                   row["path"])
                words = member.get("x-when-missing")
                self.assertNotEqual(words is None, "default" not in member, "one of both")
                self.assertEqual((words or "").startswith("the window ends"), row["missing"] == "ends")
                if "default" in member:
                    self.assertEqual(row["missing"], {"like": member["default"]})

    def test_no_member_is_there_twice(self):
        places = [(row["document"], row["path"]) for row in TABLE]
        self.assertEqual(len(places), len(set(places)))

    def test_every_name_that_the_sources_look_up_is_in_the_table(self):
        settings = {row["path"] for row in TABLE if row["document"] == "state"}
        names = {row["path"].split(".")[-1] for row in TABLE}
        lookups = looked_up()
        self.assertGreater(len(lookups), 55)
        for name, place in sorted(lookups.items()):
            with self.subTest(name):
                if "." in name:
                    self.assertIn("settings." + name, settings, place)
                else:
                    self.assertIn(name, names, place)

    def test_every_text_says_whether_it_is_shown(self):
        for row in TABLE:
            self.assertEqual("shown" in row, row["kind"] == "string", row["path"])


if __name__ == "__main__":
    unittest.main()
