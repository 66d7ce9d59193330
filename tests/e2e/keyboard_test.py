# SPDX-License-Identifier: MIT
"""The window under real keys: typing, saving, and the question about edits."""

import unittest

from accessible import Role, extents, label_of, text_in, wait_for
from display import type_keys
from harness import Case


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


if __name__ == "__main__":
    unittest.main()
