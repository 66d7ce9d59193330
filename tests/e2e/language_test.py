# SPDX-License-Identifier: MIT
"""What a user's language changes: typed numbers and the direction of reading. CTest runs this
file once in each of several languages."""

import os
import unittest

from accessible import Role, extents, text_in, wait_for
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

    def test_the_window_follows_the_direction_of_reading_and_fits_a_small_screen(self):
        self.station("long-texts", "--speed", "0")
        program = self.open()
        sidebar = extents(program.get(Role.LIST_BOX)).x
        self.assertEqual(sidebar > extents(program.body()).x, LANGUAGE == "ar")
        program.resize(*SMALL)
        for page in PAGES:
            program.page(page)
            self.assertEqual(window_size(program.window_id()), SMALL, f"page {page}")


if __name__ == "__main__":
    unittest.main()
