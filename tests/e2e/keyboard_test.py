# SPDX-License-Identifier: MIT
"""The window under real keys: turning pages, typing, saving, and the question about edits."""

import unittest

from accessible import Atspi, Role, extents, label_of, text_in, wait_for
from display import type_keys
from harness import Case
from program import PAGES


class Pages(Case):
    def test_keys_turn_pages_and_stay_at_the_ends(self):
        self.station("quiet")
        program = self.open()
        for number in (5, 2, 4, 1, 3):
            program.keys(f"ctrl+{number}")
            wait_for(lambda: program.shown_page() == PAGES[number - 1], PAGES[number - 1])
        program.keys("ctrl+Next", "ctrl+Next", "ctrl+Next", "ctrl+Prior")
        wait_for(lambda: program.shown_page() == PAGES[-2], "one page back from the last")
        program.keys("ctrl+1", "ctrl+Prior", "ctrl+Prior", "ctrl+Next")
        wait_for(lambda: program.shown_page() == PAGES[1], "one page on from the first")

    def test_ctrl_question_mark_shows_the_shortcuts_and_escape_hides_them(self):
        self.station("quiet")
        program = self.open()
        program.keys("ctrl+question")
        overlay = program.overlay()
        # The overlay gets its texts one after the other.
        for title in ("Save changes", "Ask the service for news at once", "Close the window",
                      "Show a page by its place", "Next page", "Previous page"):
            program.get(Role.LABEL, title, inside=overlay)
        program.keys("Escape")
        wait_for(lambda: len(program.windows()) == 1, "the overlay to go")


class Saving(Case):
    def test_the_button_leaves_the_page_where_it_is_and_no_field_open_to_the_next_key(self):
        self.station("quiet")
        program = self.open("station")
        program.resize(800, 480)
        entry = program.focus(program.entry("Message on the station page"))
        type_keys("Back on Sunday")
        wait_for(program.is_unsaved, "the form to be unsaved")
        place = extents(entry).y
        program.focus(program.find(Role.PUSH_BUTTON, "Save changes"))
        program.keys("space").wait_for_footer("Saved.")
        row = wait_for(program.focused, "the focus to find a place")
        self.assertEqual((row.get_role(), label_of(row)), (Role.LIST_ITEM, "Station"))
        self.assertEqual(extents(entry).y, place)

    def test_who_saves_while_typing_goes_on_typing_at_the_same_place(self):
        self.station("quiet")
        program = self.open("station")
        program.type_over(program.entry("Callsign"), "w1a")
        wait_for(program.is_unsaved, "the form to be unsaved")
        program.save()
        self.assertEqual(program.text_of("Callsign"), "W1A")
        type_keys("w")
        wait_for(lambda: program.text_of("Callsign") == "W1Aw",
                 lambda: f"the letter at the end; there is {program.text_of('Callsign')}")


class Table(Case):
    def test_the_table_stays_at_its_end_over_a_poll(self):
        document = self.state_document()
        everybody = [{"number": n, "address": f"203.0.113.{n}", "seconds": 75}
                     for n in range(1, 41)]
        document["status"]["listeners"] = everybody
        service = self.scripted_service(document)
        program = self.open()
        table = program.focus(program.get(Role.TABLE))
        program.keys("End")
        last = Atspi.Table.get_accessible_at(table, 39, 1)
        # A cell that is out of view has no place on the screen.
        wait_for(lambda: extents(last).y > 0, "the last row in view")
        before = extents(last).y
        document["status"]["listeners"] = [dict(one, seconds=80) for one in everybody]
        service.answers("GET /api/state", 200, document)
        program.poll()
        wait_for(lambda: Atspi.Table.get_accessible_at(table, 39, 3).get_name() == "1:20", "news")
        self.assertEqual(extents(Atspi.Table.get_accessible_at(table, 39, 1)).y, before)


class UnsavedQuestion(Case):
    def edited(self):
        self.running = self.station("quiet")
        program = self.open("listeners")
        program.type_over(program.spin("Session length"), "45")
        return program

    def saved(self):
        return [body["listeners"]["session_minutes"]
                for body in self.running.bodies("PUT-settings")]

    def test_enter_saves_what_is_typed_and_closes(self):
        program = self.edited()
        program.keys("ctrl+q")
        self.assertEqual(program.dialog_buttons(), ["Discard", "Cancel", "Save"])
        program.keys("Return")
        self.assertEqual((program.wait_for_end(), program.errors()), (0, ""))
        self.assertEqual(self.saved(), [45])

    def test_escape_stays_and_keeps_the_edits(self):
        program = self.edited()
        program.keys("ctrl+w").dialog()
        program.keys("Escape")
        wait_for(lambda: not program.find_dialog(), "the question to go")
        self.assertIsNone(program.process.poll())
        self.assertEqual(text_in(program.spin("Session length")), "45")
        self.assertEqual(self.saved(), [])

    def test_discard_closes_without_saving(self):
        program = self.edited()
        program.keys("ctrl+w").answer("Discard")
        self.assertEqual((program.wait_for_end(), program.errors()), (0, ""))
        self.assertEqual(self.saved(), [])


if __name__ == "__main__":
    unittest.main()
