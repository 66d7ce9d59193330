#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares the table of the documents' members (document_members.json) with what is described.

Every member that docs/service-api.yaml describes in a document the program reads is in it, with its
kind, and nothing else is; and so is every name that the sources look up in a document.
"""
import json
import pathlib
import re
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE.parent / "src"
sys.path.insert(0, str(HERE / "support"))
from service_api import SCHEMAS, described

TABLE = json.loads((HERE / "support" / "document_members.json").read_text(encoding="utf-8"))

# The other schemas of the description are of documents that the program sends or does not read.
SCHEMA_OF = {"state": "StateDocument", "devices": "Devices", "saved": "SettingsSaved",
             "save refusal": "Refusal", "registration refusal": "Refusal"}

# The rest of a statement, or of one side of a choice, that looks up members by name or binds a field
# to a settings key.
LOOKUPS = re.compile(
    r"\b(?:required_(?:member|object|array|bool|place)|optional_bool|member_(?:string|number)"
    r"|if_contains|contains|at|find_path|setting_(?:string|number)|number_at|object_or_empty"
    r"|bind_(?:field|entry))\((?=([^;:]*))")


def kind_of(schema):
    kind = schema.get("type", "string")  # a choice of texts has no type of its own
    return "number" if kind == "integer" else kind


def looked_up():
    """Every literal name that the sources look up, with the place."""
    found = {}
    for path in SOURCES.rglob("*.cpp"):
        for statement in LOOKUPS.findall(path.read_text(encoding="utf-8")):
            for name in re.findall(r'"([a-z_.]+)"', statement):
                found[name] = path.name
    return found


class DocumentMembers(unittest.TestCase):
    def test_every_described_member_is_in_the_table_and_nothing_else(self):
        for document, schema in SCHEMA_OF.items():
            with self.subTest(document):
                rows = {row["path"]: row["kind"] for row in TABLE if row["document"] == document}
                self.assertEqual(rows, {path: kind_of(member) for path, member in
                                        described(SCHEMAS[schema]).items()})

    def test_the_description_says_what_the_window_does_without_a_member(self):
        for row in TABLE:
            if row["path"].rpartition(".")[2] in ("", "0"):
                continue  # no member
            with self.subTest(row["document"] + ": " + row["path"]):
                member = described(SCHEMAS[SCHEMA_OF[row["document"]]])[row["path"]]
                words = member.get("x-when-missing")
                self.assertNotEqual(words is None, "default" not in member, "one of both")
                self.assertEqual((words or "").startswith("the window ends"),
                                 row["missing"] == "ends")
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
