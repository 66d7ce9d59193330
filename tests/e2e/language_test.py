# SPDX-License-Identifier: MIT
"""What a user's language changes: typed numbers, dates, the direction of reading. CTest runs this
file once in each of several languages."""

import os
import unittest

from accessible import Atspi, Role, extents, text_in, wait_for
from display import key, window_size
from harness import Case
from program import PAGES

LANGUAGE = os.environ["LC_ALL"].partition("_")[0]

# What a small screen has left for a window below a panel.
SMALL = (800, 480)


class Language(Case):
    def test_a_comma_means_the_decimal_point_and_is_saved_in_hertz(self):
        station = self.station("quiet")
        program = self.open("receivers")
        spin = program.type_over(program.spin("Lowest frequency of SDRplay RSP1 in MHz"), "3,5")
        key("Tab")
        wait_for(lambda: text_in(spin) == "3.500", "3.500 in the field")
        program.save()
        self.assertEqual(station.bodies("PUT-settings")[-1]["receivers"][0]["lo"], 3500000)

    def test_a_date_is_in_the_user_s_language_and_sentences_are_not(self):
        document = self.state_document()
        document["status"]["https"]["expires"] = 1804248000  # 5 March 2027, noon UTC
        self.scripted_service(document)
        date = {"de": "5 März 2027", "ar": "5 مارس 2027"}[LANGUAGE]
        program = self.open("internet")
        program.wait_for_label("✓ Secure address: https://k1abc.example:8073/ (certificate renews "
                               f"itself; good until {date}).")
        program.get(Role.PUSH_BUTTON, "Save changes")

    def test_the_window_follows_the_direction_of_reading_and_fits_a_small_screen(self):
        self.station("long-texts", "--speed", "0")
        program = self.open()
        sidebar = extents(program.get(Role.LIST_BOX)).x
        self.assertEqual(sidebar > extents(program.body()).x, LANGUAGE == "ar")
        program.resize(*SMALL)
        for page in PAGES:
            program.page(page)
            self.assertEqual(window_size(program.window_id()), SMALL, f"page {page}")

    def test_the_button_that_blocks_is_the_last_one_whatever_its_name(self):
        station = self.station("quiet")
        program = self.open()
        table = program.get(Role.TABLE)
        wait_for(lambda: Atspi.Table.add_row_selection(table, 0), "a row to be selected")
        address = Atspi.Table.get_accessible_at(table, 0, 1).get_name()
        program.press("Block address…").answer(program.dialog_buttons()[-1])
        program.wait_for_footer(f"Blocked {address}.")
        self.assertEqual(station.bodies("POST-ban"), [{"address": address}])


if __name__ == "__main__":
    unittest.main()
