# SPDX-License-Identifier: MIT
"""Editing and saving with the keyboard: what is sent, what is asked, what is kept."""

import time
import unittest

from harness import (Case, PAGES, Role, extents, has_state, is_sensitive, label_of, State,
                     text_in, type_keys, wait_for)


class Saving(Case):
    def test_ctrl_s_sends_what_was_edited_and_nothing_else(self):
        station = self.station("quiet")
        program = self.open("station")
        before = self.settings(station, program)
        program.type_into("Operator", "Sam Hill").save()
        self.assertFalse(program.is_unsaved())
        expected = before
        expected["station"]["operator"] = "Sam Hill"
        self.assertEqual(station.bodies("PUT-settings")[-1], expected)

    def settings(self, station, program):
        """The settings as an unchanged form sends them."""
        program.type_into("Antenna", "Wire").save()
        return station.bodies("PUT-settings")[-1]

    def test_ctrl_s_on_an_unchanged_form_sends_nothing(self):
        station = self.station("quiet")
        program = self.open("station")
        polls = station.count("GET /api/state")
        program.keys("ctrl+s").poll()
        wait_for(lambda: station.count("GET /api/state") > polls, "the poll")
        self.assertEqual(station.count("PUT /api/settings"), 0)
        self.assertEqual(program.footer(), "")

    def test_a_refusal_is_shown_and_keeps_the_edits(self):
        service = self.scripted_service()
        service.answers("PUT /api/settings", 409, {"error": "The port is taken."})
        program = self.open("station")
        program.type_into("Operator", "Sam").press("Save changes")
        program.wait_for_footer("Not saved: The port is taken.")
        self.assertTrue(program.is_unsaved())
        self.assertEqual(program.text_of("Operator"), "Sam")

    def test_a_new_port_takes_effect_at_a_restart(self):
        self.station("quiet")
        program = self.open("internet")
        program.set_number("Public port", 8074).keys("ctrl+s")
        program.wait_for_footer("Saved. The new port takes effect when Tarnwave restarts.")

    def test_saving_without_a_service_keeps_the_edits(self):
        station = self.station("quiet")
        program = self.open("station")
        station.stop()
        program.type_into("Operator", "Sam").keys("ctrl+s")
        program.wait_for_footer("Not saved: the Tarnwave service did not answer.")
        self.assertTrue(program.is_unsaved())
        self.assertEqual(program.text_of("Operator"), "Sam")

    def test_a_poll_never_touches_an_edit(self):
        station = self.station("quiet")
        program = self.open("station")
        program.type_into("Operator", "Sam")
        polls = station.count("GET /api/state")
        program.poll()
        wait_for(lambda: station.count("GET /api/state") > polls, "the poll")
        self.assertEqual(program.text_of("Operator"), "Sam")
        self.assertTrue(program.is_unsaved())

    def test_a_typed_number_counts_without_leaving_the_field(self):
        station = self.station("quiet")
        program = self.open("listeners")
        program.type_over(program.spin("Listeners at once"), "17")
        wait_for(program.is_unsaved, "the form to be unsaved")
        program.save()
        self.assertEqual(station.bodies("PUT-settings")[-1]["listeners"]["max"], 17)
        program.wait_for_label("Uses about 1.0 Mbit/s of your upload when every place is taken.")

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

    def test_a_callsign_is_saved_in_capitals_and_shown_so(self):
        station = self.station("quiet")
        program = self.open("station")
        program.type_into("Callsign", "w1aw").save()
        self.assertEqual(station.bodies("PUT-settings")[-1]["station"]["callsign"], "W1AW")
        self.assertEqual(program.text_of("Callsign"), "W1AW")
        self.assertEqual(program.title(), "W1AW · Hilltop SDR")

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

    def test_modes_and_blocked_addresses_go_out_as_lists(self):
        station = self.station("quiet")
        program = self.open("listeners")
        for mode in ("LSB", "CW", "AM"):
            program.toggle(mode)
        box = program.entry("One per line: an address such as 203.0.113.7, or a range such as "
                            "203.0.113.0/24.")
        program.type_over(box, "  203.0.113.7 198.51.100.0/24\n\n192.0.2.1\n")
        program.save()
        body = station.bodies("PUT-settings")[-1]
        self.assertEqual(body["content"]["modes"], ["USB", "FM"])
        self.assertEqual(body["access"]["banned"],
                         ["203.0.113.7", "198.51.100.0/24", "192.0.2.1"])
        self.assertEqual(text_in(program.entry("One per line: an address such as 203.0.113.7, or a "
                                               "range such as 203.0.113.0/24.")),
                         "203.0.113.7\n198.51.100.0/24\n192.0.2.1\n")


class UnsavedQuestion(Case):
    TEXTS = ["Save your changes?", "Some settings have changed and are not saved yet."]

    def edited(self, scenario="quiet"):
        self.running = self.station(scenario)
        program = self.open("station")
        program.type_into("Operator", "Sam")
        return program

    def saved(self):
        return [body["station"]["operator"] for body in self.running.bodies("PUT-settings")]

    def test_it_is_asked_in_these_words(self):
        program = self.edited()
        program.keys("ctrl+w")
        self.assertEqual(program.dialog_texts(), self.TEXTS)
        self.assertEqual(program.dialog_buttons(), ["Discard", "Cancel", "Save"])
        program.answer("Cancel")

    def test_enter_saves_and_closes(self):
        program = self.edited()
        program.keys("ctrl+q").dialog()
        program.keys("Return")
        self.assertEqual((program.wait_for_end(), program.errors()), (0, ""))
        self.assertEqual(self.saved(), ["Sam"])

    def test_escape_stays_and_keeps_the_edits(self):
        program = self.edited()
        program.keys("ctrl+w").dialog()
        program.keys("Escape")
        wait_for(lambda: not program.find_dialog(), "the question to go")
        self.assertIsNone(program.process.poll())
        self.assertEqual(program.text_of("Operator"), "Sam")
        self.assertEqual(self.saved(), [])

    def test_discard_closes_without_saving(self):
        program = self.edited()
        program.keys("ctrl+w").answer("Discard")
        self.assertEqual((program.wait_for_end(), program.errors()), (0, ""))
        self.assertEqual(self.saved(), [])

    def test_a_save_that_fails_keeps_the_window_open(self):
        program = self.edited()
        self.running.stop()
        program.keys("ctrl+w").answer("Save")
        program.wait_for_footer("Not saved: the Tarnwave service did not answer.")
        self.assertTrue(program.is_unsaved())

    def test_what_is_typed_in_a_number_field_counts_as_an_edit(self):
        self.running = self.station("quiet")
        program = self.open("listeners")
        program.type_over(program.spin("Session length"), "45")
        program.keys("ctrl+w").dialog()
        program.keys("Return")
        self.assertEqual(program.wait_for_end(), 0)
        self.assertEqual(self.running.bodies("PUT-settings")[-1]["listeners"]["session_minutes"],
                         45)


class Keys(Case):
    def test_ctrl_and_a_digit_show_a_page(self):
        self.station("quiet")
        program = self.open()
        for number in (5, 2, 4, 1, 3):
            program.keys(f"ctrl+{number}")
            wait_for(lambda: program.shown_page() == PAGES[number - 1], PAGES[number - 1])

    def test_ctrl_page_down_and_up_turn_pages_and_stay_at_the_ends(self):
        self.station("quiet")
        program = self.open()
        for page in [*PAGES[1:], PAGES[-1]]:
            program.keys("ctrl+Next")
            wait_for(lambda: program.shown_page() == page, f"the page {page}")
        program.keys("ctrl+Next", "ctrl+Next", "ctrl+Prior")
        wait_for(lambda: program.shown_page() == PAGES[-2], "one page back from the last")
        program.keys("ctrl+1", "ctrl+Prior", "ctrl+Prior", "ctrl+Next")
        wait_for(lambda: program.shown_page() == PAGES[1], "one page on from the first")

    def test_f5_asks_at_once(self):
        service = self.scripted_service()
        program = self.open()
        before, start = service.count("GET /api/state"), time.monotonic()
        program.keys("F5", "F5", "F5", "F5", "F5")

        def polls_by_the_clock():
            return (time.monotonic() - start) // 3 + 1
        wait_for(lambda: service.count("GET /api/state") - before > polls_by_the_clock(),
                 "more polls than the clock alone can bring")

    def test_ctrl_question_mark_shows_the_shortcuts_and_escape_hides_them(self):
        self.station("quiet")
        program = self.open()
        program.keys("ctrl+question")
        overlay = program.overlay()
        # Its texts come one after the other.
        for title in ("Save changes", "Ask the service for news at once", "Close the window",
                      "Show a page by its place", "Next page", "Previous page"):
            program.get(Role.LABEL, title, inside=overlay)
        program.keys("Escape")
        wait_for(lambda: len(program.windows()) == 1, "the overlay to go")

    def test_save_is_insensitive_until_something_changed(self):
        self.station("quiet")
        program = self.open("station")
        save = program.get(Role.PUSH_BUTTON, "Save changes")
        self.assertFalse(is_sensitive(save))
        program.type_into("Operator", "Sam")
        wait_for(lambda: has_state(save, State.SENSITIVE), "the button to wake up")


if __name__ == "__main__":
    unittest.main()
