#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares docs/manual.md with the sentences that the program can say.

The code makes a sentence of texts with values in between: "✓ Listed at ", a value, "/websdr.html."
The manual quotes it in straight quotation marks with examples for the values, or "…" where it
leaves something out.
"""

import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = PROJECT / "src"
PAGE = PROJECT / "docs" / "manual.md"

# The files with the lines that say how the station is doing or what came of an action.
EXPLAINED_FILES = [
    "receivers/coverage.cpp", "receivers/find_devices.cpp",
    "receivers/linger.cpp", "receivers/receiver_list.cpp", "status/internet_texts.cpp",
    "status/listener_actions.cpp", "status/overview_texts.cpp", "status/refresh_status.cpp",
    "status/registration.cpp",
    "ui/field_rules.cpp", "ui/form.cpp"]

# Texts of those files that need no explanation.
NOT_EXPLAINED = {
    # names in a menu and beside a receiver
    "Airband, lower part", "Marine VHF", "AM broadcast", "HF direct sampling",
    "RTL-SDR dongle (experimental)", "SDRplay receiver",
    # a stand-in for a name
    "Your station",
    # states that the service reports
    "no key", "check-in failed",
    # what the program could not read, on stderr
    "an element of receivers", "following the station's state", "loading the settings",
    "looking for receivers", "registering the station", "saving the settings",
    "the list of devices", "the reply to a registration", "the reply to a save",
    # commands
    "loginctl show-user", "-p Linger --value", "loginctl enable-linger",
    "loginctl disable-linger"}

# What the manual quotes that is no text of the program: a router's menu, an owner's words.
NOT_OURS = {"WAN", "static lease", "reservation", "Antenna down until Sunday"}

# What the manual puts in the place of values.
EXAMPLES = r"list\.tarnwave\.example|https://|March|\d+(?:\.\d+)*(?::\d+)?|[NSEW]\b"


def texts(names):
    """The string literals of these sources, without markup; a printf conversion ends a text."""
    code = "".join((SOURCES / name).read_text(encoding="utf-8") for name in names)
    literals = re.findall(
        r"//[^\n]*|^\s*#[^\n]*|'(?:[^'\\]|\\.)'|R\"\w*\(.*?\)\w*\""
        r'|((?:"(?:[^"\\\n]|\\.)*"\s*)+)', code, re.DOTALL | re.MULTILINE)
    for literal in filter(None, literals):
        joined = re.sub(r'"\s*"', "", literal).strip()[1:-1]
        plain = re.sub(r"</?(b|span)\b[^>]*>", "", joined.replace('\\"', '"').replace("\\n", " "))
        for text in re.split(r"%[-.0-9]*[a-z*]+", plain):
            yield text.strip(" ·")


def is_line(text):
    """Two words or more: a text to read, not a key or a mark."""
    return len(re.findall(r"[^\W\d_]{2,}", text)) >= 2 and " " in text


def quotes():
    """The manual's texts in straight quotation marks, outside of code."""
    page = PAGE.read_text(encoding="utf-8")
    text = re.sub(r"`[^`]*`", "", re.sub(r"^```.*?^```$", "", page, flags=re.DOTALL | re.MULTILINE))
    found = []
    # A quotation ends in the cell or paragraph where it began.
    for part in re.split(r"\n\s*\n|\|", text):
        pieces = part.split('"')
        if len(pieces) % 2 == 0:
            raise ValueError("a quotation is not closed: " + part.strip())
        found += pieces[1::2]
    # A block quotation shows a text as the window does.
    for block in re.findall(r"(?:^> .*\n)+", text, re.MULTILINE):
        found.append(re.sub(r"^> |\*\*", "", block, flags=re.MULTILINE))
    return [re.sub(r"\s+", " ", each).strip() for each in found]


class TheManual(unittest.TestCase):
    maxDiff = None

    def test_explains_every_line_that_the_program_says(self):
        page = quotes()
        lines = set(filter(is_line, texts(EXPLAINED_FILES)))
        self.assertIn("✓ Listed at", set(texts(EXPLAINED_FILES)))
        unexplained = {line for line in lines if not any(line in quote for quote in page)}
        self.assertEqual(unexplained, NOT_EXPLAINED)

    def test_quotes_nothing_that_the_program_does_not_say(self):
        said = set(texts(path.relative_to(SOURCES) for path in SOURCES.rglob("*.cpp")))
        # A quotation is a row of texts, longer ones before those that they begin with.
        row = re.compile("(?:" + "|".join(
            [*map(re.escape, sorted(filter(None, said), key=len, reverse=True)), EXAMPLES,
             r"[\s·.,()]"]) + ")*")
        unsaid = {quote for quote in quotes() for piece in quote.split("…")
                  if not row.fullmatch(piece) and not any(piece.strip() in text for text in said)}
        self.assertEqual(unsaid, NOT_OURS)


if __name__ == "__main__":
    unittest.main()
