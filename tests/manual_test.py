#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares docs/manual.md with the sentences that the program can say.

A sentence of the code is a chain of string literals with values in between: "✓ Listed at ", a
value, "/websdr.html." The manual quotes it in straight quotation marks with examples for the
values, or "…" where it leaves something out. Both are cut into their fixed pieces and laid over
each other.
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
    "ui/field_rules.cpp", "ui/form.cpp", "ui/station_link.cpp"]

# Texts of those files that need no explanation.
NOT_EXPLAINED = {
    # names in a menu and beside a receiver
    "80 m to 40 m", "40 m to 20 m", "20 m to 15 m", "Airband, lower part", "Marine VHF",
    "AM broadcast", "HF direct sampling", "RTL-SDR dongle (experimental)", "SDRplay receiver",
    "serial",
    # a stand-in for a name
    "Your station", "the station",
    # what the program could not read, on stderr
    "an element of receivers", "following the station's state", "loading the settings",
    "looking for receivers", "registering the station", "saving the settings",
    "the list of devices", "the reply to a registration", "the reply to a save", "the state document",
    # commands
    "loginctl show-user", "-p Linger --value", "loginctl enable-linger",
    "loginctl disable-linger"}

# What the manual quotes that is no text of the program: a router's menu, an owner's words.
NOT_OURS = {"WAN", "static lease", "reservation", "Antenna down until Sunday"}

# What the manual puts in the place of values.
EXAMPLES = re.compile(
    r"list\.tarnwave\.example|https://|March|\d+(\.\d+)*(:\d+)?|[NSEW]\b", re.ASCII)

VALUE = "\0"


def tokens(code):
    """The literals ('"', text) and the punctuation or words of C++ code, without comments."""
    pattern = re.compile(
        r'//[^\n]*|/\*.*?\*/|^\s*#[^\n]*|R"(\w*)\((?P<raw>.*?)\)\1"|"(?P<text>(?:[^"\\\n]|\\.)*)"'
        r"|'(?:[^'\\]|\\.)*'|(?P<word>[A-Za-z_]\w*|\d[\w.]*)|(?P<sign>::|->|==|\S)",
        re.DOTALL | re.MULTILINE)
    for match in pattern.finditer(code):
        if match["text"] is not None:
            yield '"', re.sub(r"\\(.)", lambda each: {"n": "\n"}.get(each[1], each[1]),
                              match["text"])
        elif match["word"] or match["sign"]:
            yield match["word"] or match["sign"], None


def sentences(code):
    """The chains of literals in C++ code, values as VALUE; those in brackets stand alone."""
    found = []

    def close(chain):
        pieces = re.sub(VALUE + "+", VALUE, "".join(chain))
        if pieces.strip(VALUE):
            found.append(pieces)
        chain.clear()

    chains = [[]]
    appended = []  # for each open bracket, whether append() adds its content to the chain
    constants = {}  # the chains that have a name: const std::string NAME = …;
    constant = False
    named = None
    before = None
    for token, text in tokens(code):
        if token == '"' and before == "==":
            chains[-1].append(VALUE)  # what something is compared with
        elif token == '"':
            # A printf conversion is a value.
            chains[-1].append(re.sub(r"%[-.0-9]*[a-z*]+", VALUE, text))
        elif token in "([{":
            appended.append(before == "append")
            chains.append([])
        elif token in ")]}":
            inner = chains.pop()
            if appended.pop():
                chains[-1] += inner
            else:
                close(inner)
                chains[-1].append(VALUE)
        elif token in (",", ";", "?", ":", "=", "return"):
            if token == "=" and constant:
                named = before
            elif token == "?":
                named = None  # two texts
            elif token == ";" and named:
                constants[named] = list(chains[-1])
                named = None
            constant = False
            close(chains[-1])
        elif token == "const":
            constant = True
        elif token in constants:
            chains[-1] += constants[token]
        elif token not in ("+", ".", "append"):
            chains[-1].append(VALUE)
        before = token
    close(chains[0])
    return found


def plain(sentence):
    """The sentence without markup, line ends and separators at its ends."""
    return re.sub(r"\s+", " ", re.sub(r"</?(b|span)\b[^>]*>", "", sentence)).strip(" ·")


def text_of(sentence):
    """The plain sentence without the values at its ends."""
    return plain(sentence).strip(VALUE + " ·")


def is_line(sentence):
    """Two words or more: a text to read, not a key or a mark."""
    return len(re.findall(r"[^\W\d_]{2,}", sentence)) >= 2 and " " in text_of(sentence)


def quotes(page):
    """The texts in straight quotation marks on the page, outside of code."""
    text = re.sub(r"`[^`]*`", "", re.sub(r"^```.*?^```$", "", page, flags=re.DOTALL | re.MULTILINE))
    found = []
    # A quotation ends in the cell or paragraph where it began.
    for part in re.split(r"\n\s*\n|\|", text):
        pieces = part.split('"')
        if len(pieces) % 2 == 0:
            raise ValueError("a quotation is not closed: " + part.strip())
        found += [re.sub(r"\s+", " ", piece) for piece in pieces[1::2]]
    # A block quotation shows a text as the window does.
    for block in re.findall(r"(?:^> .*\n)+", text, re.MULTILINE):
        plain = re.sub(r"^> |\*\*", "", block, flags=re.MULTILINE)
        found.append(re.sub(r"\s+", " ", plain).strip())
    return found


def pieces_of(text, mark):
    return [piece for piece in re.split("[" + mark + "]", text) if piece]


def explains(quote, sentence):
    """The quotation holds every fixed piece of the sentence, in order."""
    return re.search(".*?".join(map(re.escape, pieces_of(text_of(sentence), VALUE))), quote)


def is_said(quote, sentence, words):
    """The quotation can be that sentence: in the place of the values stand examples, "…" or words
    that the program says elsewhere."""
    sentence = plain(sentence)
    if quote == text_of(sentence) or f"“{quote}”" in sentence:
        return True
    pattern = "(.*)".join(map(re.escape, sentence.split(VALUE)))
    match = re.fullmatch(pattern, quote)
    if match and (not match.groups() or re.search(r"[^\W\d_]{2,}", sentence)):
        values = EXAMPLES.sub("", " ".join(match.groups()))
        return set(re.findall(r"[^\W\d_]{2,}", values)) <= words
    # The manual leaves out more than values: then what it keeps must be there in order.
    if "…" not in quote:
        return False
    kept = [EXAMPLES.sub(VALUE, piece) for piece in pieces_of(quote, "…")]
    kept = [piece.strip() for each in kept for piece in pieces_of(each, VALUE) if piece.strip()]
    return bool(kept) and bool(re.search(".*".join(map(re.escape, kept)), sentence, re.DOTALL))


def words_of(all_sentences):
    return {word for each in all_sentences for word in re.findall(r"[^\W\d_]{2,}", plain(each))}


def not_explained(all_quotes, all_sentences):
    return [text_of(each) for each in all_sentences if is_line(each) and
            text_of(each) not in NOT_EXPLAINED and
            not any(explains(quote, each) for quote in all_quotes)]


def not_said(all_quotes, all_sentences):
    words = words_of(each for each in all_sentences if is_line(each) or each[0] == " ")
    return [quote for quote in all_quotes if quote not in NOT_OURS and
            not any(is_said(quote, each, words) for each in all_sentences)]


def code_of(names):
    return [sentence for name in names
            for sentence in sentences((SOURCES / name).read_text(encoding="utf-8"))]


class TheManual(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.quotes = quotes(PAGE.read_text(encoding="utf-8"))

    def test_explains_every_line_that_the_program_says(self):
        lines = code_of(EXPLAINED_FILES)
        self.assertIn("✓ Listed at \0/websdr.html.", map(text_of, lines))
        self.assertEqual(not_explained(self.quotes, lines), [])

    def test_quotes_nothing_that_the_program_does_not_say(self):
        everything = code_of(path.relative_to(SOURCES) for path in sorted(SOURCES.rglob("*.cpp")))
        self.assertIn("Save changes", self.quotes)
        self.assertEqual(not_said(self.quotes, everything), [])

    def test_lets_nothing_pass_that_is_gone(self):
        lines = set(map(text_of, code_of(EXPLAINED_FILES)))
        self.assertEqual(sorted(NOT_EXPLAINED - lines), [])
        self.assertEqual(sorted(NOT_OURS - set(self.quotes)), [])


class TheChecks(unittest.TestCase):
    """A program of one function, and one fault at a time."""

    code = '''
        const std::string found = std::to_string(count) + " found";  // "not a text"
        if (state == "no key" || count < 0)
            return {"✗ No: " + error + (again ? "" : " Trying again."), StatusClass::error};
        text.append("via ").append(host).append(" · ");
        return found + format_text(", %.2f MHz in \\"all\\".", mhz);
        '''

    def setUp(self):
        self.sentences = sentences(self.code)

    def test_notice_a_sentence_that_is_not_explained(self):
        page = ["✗ No: …", "found, 1.50 MHz in \"all\"."]
        self.assertEqual(not_explained(page, self.sentences), ["Trying again."])

    def test_notice_a_quotation_that_nobody_says(self):
        page = ["✗ No: dogs Trying again.", "✗ No: …", "✗ Nothing: …", "2 lost"]
        self.assertEqual(not_said(page, self.sentences),
                         ["✗ No: dogs Trying again.", "✗ Nothing: …", "2 lost"])


if __name__ == "__main__":
    unittest.main()
