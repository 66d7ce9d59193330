# SPDX-License-Identifier: MIT
"""What a screen reader finds: a name for every control, descriptions, announcements, an order."""

import unittest

from accessible import (Announcements, Atspi, Relation, Role, State, description_of, extents,
                        label_of, related, wait_for, walk)
from harness import HOST, Case
from program import PAGES


def nameless(window):
    """The controls of a window that the keyboard reaches and nobody has named."""
    return [f"{a.get_role_name()} in {a.get_parent().get_role_name()}" for a in walk(window)
            if a.get_state_set().contains(State.FOCUSABLE) and not label_of(a).strip()]


class Names(Case):
    def assert_all_named(self, window, where):
        self.assertEqual(nameless(window), [], f"controls without a name, {where}")

    def test_every_control_of_every_page_has_a_name(self):
        # Beside long texts there are a relay and a receiver that has failed.
        for scenario in ("quiet", "first-run", "long-texts"):
            with self.subTest(scenario):
                station = self.station(scenario, "--speed", "0")
                program = self.open()
                for page in PAGES:
                    program.page(page)
                    self.assert_all_named(program.frame(), f"page {page}")
                program.page("receivers").press("Find devices")
                wait_for(lambda: any("found" in label for label in program.labels()), "devices")
                self.assert_all_named(program.frame(), "receivers after a search")
                program.quit()
                station.stop()

    def test_the_question_about_edits_and_the_overlay_have_names(self):
        self.station("quiet")
        program = self.open("station")
        program.type_into("Operator", "Sam").keys("ctrl+w")
        self.assert_all_named(program.dialog(), "the question about unsaved changes")
        program.answer("Cancel")
        program.keys("ctrl+question")
        self.assert_all_named(program.overlay(), "the shortcuts overlay")
        program.keys("Escape")
        wait_for(lambda: len(program.windows()) == 1, "the overlay to go")

    def test_no_two_fields_of_a_page_share_a_name(self):
        self.station("quiet")
        program = self.open()
        for page in PAGES:
            program.page(page)
            names = [(a.get_role_name(), label_of(a)) for a in walk(program.body())
                     if a.get_role() in (Role.TEXT, Role.SPIN_BUTTON, Role.TOGGLE_BUTTON,
                                         Role.CHECK_BOX, Role.COMBO_BOX)]
            self.assertEqual(len(names), len(set(names)), names)


class Relations(Case):
    # One field of each kind, and the hint that stands under its label.
    HINTS = [
        ("overview", Role.PUSH_BUTTON, "Go there →", "Share at least one receiver"),
        ("station", Role.TEXT, "Callsign", "Leave empty if you do not have one."),
        ("station", Role.TEXT, "Grid square", "On the map at about 35.5° N, 81.0° W."),
        ("receivers", Role.TOGGLE_BUTTON, "Share Dialhouse's receivers too",
         "Receivers Dialhouse runs on this computer stay as they are; listeners tune inside what "
         "they cover."),
        ("receivers", Role.TOGGLE_BUTTON, "Share RSPdx with listeners",
         "SDRplay receiver · serial 2305012345"),
        ("listeners", Role.SPIN_BUTTON, "Listeners at once",
         "Uses about 480 kbit/s of your upload when every place is taken."),
        ("listeners", Role.SPIN_BUTTON, "Session length",
         "Minutes before a session ends. 0 means no limit."),
        ("internet", Role.TOGGLE_BUTTON, f"List this station on {HOST}",
         f"Listeners find stations at {HOST}/websdr.html."),
    ]

    def test_hints_describe_their_fields(self):
        document = self.state_document()
        document["status"]["receivers"] = []
        self.scripted_service(document)
        program = self.open()
        for page, role, label, hint in self.HINTS:
            with self.subTest(label=label):
                field = program.page(page).field(role, label)
                wait_for(lambda: description_of(field) == hint,
                         lambda: f"“{hint}”; it is “{description_of(field)}”")

    def test_labels_know_their_fields(self):
        self.station("quiet")
        program = self.open("station")
        label = next(a for a in walk(program.body()) if a.get_name() == "Operator")
        wait_for(lambda: [a.get_role() for a in related(label, Relation.LABEL_FOR)] == [Role.TEXT],
                 "the label's field")


class Spoken(Case):
    def setUp(self):
        super().setUp()
        self.said = Announcements()
        self.addCleanup(self.said.stop)

    def wait_until_said(self, text, times=1):
        wait_for(lambda: self.said.texts.count(text) >= times,
                 lambda: f"“{text}” to be announced; said was {self.said.texts}")

    def test_the_header_line_is_announced_when_it_changes(self):
        service = self.scripted_service()
        program = self.open()
        self.wait_until_said(f"On the air · 2 receivers · 2 of 8 listening · listed on {HOST}")
        service.answers("GET /api/state", 500, {"error": "Oops."})
        program.poll()
        self.wait_until_said("The Tarnwave service is not answering")

    def test_the_footer_is_announced_each_time(self):
        self.station("quiet")
        program = self.open("station")
        program.type_into("Operator", "Sam").save()
        self.wait_until_said("Saved.")
        program.type_into("Operator", "Pat").save()
        self.wait_until_said("Saved.", times=2)

    def test_the_coverage_line_is_announced_when_it_changes_and_only_then(self):
        self.station("quiet")
        program = self.open("receivers")
        Atspi.Value.set_current_value(
            program.spin("Highest frequency of SDRplay RSP1 in MHz"), 20)
        self.wait_until_said("13.00 MHz is too wide: this receiver covers up to 8 MHz at once.")
        self.assertEqual([text for text in self.said.texts if text.startswith("Covers")], [])


class ReadingOrder(Case):
    def controls(self, program):
        """The controls of the page that Tab should reach, in reading order."""
        # The button inside a combo box gets the focus. A scrolled window is left out: the focus
        # goes to its content.
        left = [a for a in walk(program.body())
                if a.get_state_set().contains(State.SENSITIVE) and a.get_role() != Role.SCROLL_PANE
                and (a.get_state_set().contains(State.FOCUSABLE) or
                     a.get_role() == Role.COMBO_BOX)]
        mirrored = extents(program.get(Role.LIST_BOX)).x > extents(program.body()).x

        def middle(accessible):
            at = extents(accessible)
            return at.y + at.height / 2

        ordered = []
        while left:
            # All controls on one line with the topmost one.
            top = min(left, key=middle)
            line = [a for a in left if abs(middle(a) - middle(top)) < 10]
            ordered += sorted(line, key=lambda a: extents(a).x, reverse=mirrored)
            left = [a for a in left if a not in line]
        return ordered

    def describe(self, accessible):
        # When a combo box has the focus, GTK reports no widget as focused.
        if accessible is None or accessible.get_role() == Role.COMBO_BOX:
            return "menu"
        words = f"{accessible.get_role_name()} “{label_of(accessible)}”"
        # Buttons of the same name differ in their descriptions.
        return words + (description_of(accessible) if words.endswith("→”") else "")

    def test_tab_follows_the_reading_order_on_every_page_and_leaves_the_text_boxes(self):
        document = self.state_document()
        document["status"]["listeners"] = [{"number": 1, "address": "203.0.113.7", "seconds": 1}]
        document["settings"]["directory"].update(id="", email="")
        document["status"]["directory"] = {"state": "not registered"}
        self.scripted_service(document)
        program = self.open()
        # The whole page is in view, since a control outside has no position on the screen.
        program.resize(1000, 1700)
        for page in PAGES:
            with self.subTest(page=page):
                program.page(page)
                if page == "overview":  # the buttons below the table need a selection
                    wait_for(lambda: Atspi.Table.add_row_selection(program.get(Role.TABLE), 0),
                             "a selection")
                expected = [self.describe(a) for a in self.controls(program)]
                self.assertGreater(len(expected), 2)
                # First comes the list of pages, with one stop; last the button we came from.
                button = program.get(Role.PUSH_BUTTON, "Open station page")
                start = self.describe(button)
                stops = [f"list item “{page.capitalize()}”"] + expected + [start]
                program.focus(button)
                for before, stop in zip([start] + stops, stops):
                    # Between two controls no widget has the focus for a moment.
                    program.keys("Tab")
                    wait_for(lambda: self.describe(program.focused()) == stop,
                             lambda: f"Tab to go from {before} to {stop}; it went to "
                                     f"{self.describe(program.focused())}")


if __name__ == "__main__":
    unittest.main()
