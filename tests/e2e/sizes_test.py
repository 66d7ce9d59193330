# SPDX-License-Identifier: MIT
"""Small screens, large pixels and long texts."""

import unittest

from accessible import Role, extents, wait_for
from display import window_size
from harness import Case
from program import PAGES

# What a small screen has left for a window below a panel.
SMALL = (800, 480)


class Sizes(Case):
    def size(self, program):
        return window_size(program.window_id())

    def assert_inside(self, program, widget, what):
        """Whether nothing of a widget sticks out of the window to the left or right."""
        window, at = extents(program.content()), extents(widget)
        self.assertGreaterEqual(at.x, window.x, what)
        self.assertLessEqual(at.x + at.width, window.x + window.width, what)


class SmallScreen(Sizes):
    def test_the_window_fits_a_small_screen_on_every_page_whatever_it_shows(self):
        self.station("long-texts", "--speed", "0")
        program = self.open()
        self.assertEqual(program.resize(*SMALL), SMALL)
        for page in PAGES:
            program.page(page)
            self.assertEqual(self.size(program), SMALL, f"page {page}")
            self.assert_inside(program, program.body(), f"page {page}")

    def test_the_keyboard_scrolls_to_what_lies_below_the_edge(self):
        self.station("quiet")
        program = self.open("internet")
        program.resize(*SMALL)
        switch = program.switch("Keep sharing when I'm logged out")
        window = extents(program.content())

        def in_view():
            at = extents(switch)
            return window.y < at.y and at.y + at.height < window.y + window.height
        self.assertFalse(in_view())
        program.focus(switch)
        wait_for(in_view, "the page to scroll to the switch")

    def test_the_questions_fit_a_small_screen(self):
        self.station("quiet")
        program = self.open("station")
        program.resize(*SMALL)
        program.type_into("Operator", "Sam").keys("ctrl+w")
        self.assertLessEqual(extents(program.dialog()).width, SMALL[0])
        program.answer("Cancel")

    def test_the_list_of_keys_fits_a_small_screen(self):
        self.station("quiet")
        program = self.open()
        program.keys("ctrl+question")
        overlay = program.overlay()
        # Its last text, after which it is complete.
        program.get(Role.LABEL, "Previous page", inside=overlay)
        wait_for(lambda: extents(overlay).height > 0, "the overlay to get its size")
        self.assertLessEqual(extents(overlay).width, SMALL[0])
        self.assertLessEqual(extents(overlay).height, SMALL[1])
        program.keys("Escape")
        wait_for(lambda: len(program.windows()) == 1, "the overlay to go")


class LongTexts(Sizes):
    def test_long_texts_never_widen_the_window(self):
        self.station("long-texts", "--speed", "0")
        program = self.open()
        for page in PAGES:
            program.page(page)
            self.assertEqual(self.size(program), (1000, 780), f"page {page}")
        program.page("receivers").press("Find devices")
        wait_for(lambda: any("found" in label for label in program.labels()), "the devices")
        self.assertEqual(self.size(program), (1000, 780))

    def test_a_long_refusal_is_cut_short_in_the_footer(self):
        self.station("long-texts", "--speed", "0")
        program = self.open("station")
        program.type_into("Operator", "Sam").keys("ctrl+s")
        wait_for(lambda: program.footer().startswith("Not saved: "), "the refusal")
        self.assertGreater(len(program.footer()), 200)
        self.assertEqual(self.size(program), (1000, 780))
        self.assert_inside(program, program.content().get_child_at_index(2), "the footer")

    def test_a_name_without_blanks_never_widens_the_window(self):
        document = self.state_document()
        document["settings"]["station"]["name"] = "W" * 10_000
        self.scripted_service(document)
        self.assertEqual(self.size(self.open()), (1000, 780))


class LargePixels(Sizes):
    def test_at_twice_the_scale_everything_is_twice_as_large(self):
        self.station("quiet")
        program = self.open("station", GDK_SCALE="1")
        plain = extents(program.entry("Operator"))
        program.quit()
        program = self.open("station", GDK_SCALE="2")
        # The window does not fit on the screen, so a widget in it is measured.
        drawn = extents(program.entry("Operator"))
        self.assertEqual((drawn.width, drawn.height), (plain.width, plain.height))
        content = extents(program.content())
        self.assertEqual(self.size(program), (2 * content.width, 2 * content.height))


if __name__ == "__main__":
    unittest.main()
