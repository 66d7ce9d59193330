# SPDX-License-Identifier: MIT
"""The Receivers page: finding devices, sharing them, and their frequency ranges."""

import unittest

from harness import (Atspi, Case, Role, State, description_of, extents, has_state, is_sensitive,
                     key, state_document, text_in, wait_for, xdotool)

LOW = "Lowest frequency of SDRplay RSP1 in MHz"
HIGH = "Highest frequency of SDRplay RSP1 in MHz"
BAND = "SDRplay RSP1"
DONGLE_LOW = "Lowest frequency of RTL-SDR dongle <2832> & tuner in MHz"
DONGLE_HIGH = "Highest frequency of RTL-SDR dongle <2832> & tuner in MHz"
DONGLE_BAND = "RTL-SDR dongle <2832> & tuner"


class FindDevices(Case):
    def test_an_empty_list_says_what_to_do(self):
        self.station("no-devices")
        program = self.open("receivers")
        program.wait_for_label("No receivers yet. Plug in your SDR and press Find devices.")
        program.press("Find devices").wait_for_label(
            "No receivers found. Is the device plugged in, and for SDRplay, is SDRplay's API "
            "installed?")
        self.assertFalse(program.is_unsaved())

    def test_devices_that_are_found_are_off_and_described(self):
        self.station("first-run", "--speed", "0")
        program = self.open("receivers")
        program.press("Find devices")
        program.wait_for_label("3 found, 3 new: switch on the ones to share.")
        self.assertEqual(
            [label for label in program.labels() if " · serial " in label],
            ["SDRplay receiver · serial 1905034F2A",
             "RTL-SDR dongle (experimental) · serial 00000001",
             "SDRplay receiver · serial 2204017C81 · in use by another program"])
        self.assertIn("RTL-SDR dongle <2832> & tuner", program.labels())
        for model in ("SDRplay RSP1", "RTL-SDR dongle <2832> & tuner", "SDRplay RSPduo"):
            self.assertFalse(program.is_on(f"Share {model} with listeners"))
        self.assertFalse(program.is_unsaved())
        program.press("Find devices").wait_for_label("3 found.")

    def test_unsaved_edits_survive_a_discovery(self):
        self.station("first-run", "--speed", "0")
        program = self.open("receivers")
        program.press("Find devices")
        program.wait_for_label("3 found, 3 new: switch on the ones to share.")
        program.toggle("Share SDRplay RSP1 with listeners")
        program.set_number(LOW, 3.5).press("Find devices").wait_for_label("3 found.")
        self.assertTrue(program.is_on("Share SDRplay RSP1 with listeners"))
        self.assertEqual(program.number_of(LOW), 3.5)
        self.assertTrue(program.is_unsaved())

    def test_what_is_typed_counts_without_leaving_the_field(self):
        self.station("quiet")
        program = self.open("receivers")
        program.type_over(program.spin(LOW), "6.9")
        program.press("Find devices").wait_for_label("3 found, 1 new: switch on the ones to share.")
        self.assertEqual(program.number_of(LOW), 6.9)

    def test_a_service_that_is_gone_is_named(self):
        station = self.station("quiet")
        program = self.open("receivers")
        station.stop()
        program.press("Find devices").wait_for_label("The Tarnwave service did not answer.")
        program.wait_for_label("SDRplay RSP1")

    def test_an_rx888_has_no_frequencies_to_choose(self):
        service = self.scripted_service()
        service.answers("GET /api/devices", 200, [
            {"backend": "rx888", "serial": "0009072C00D6", "model": "RX-888", "available": True}])
        program = self.open("receivers")
        program.press("Find devices").wait_for_label("1 found, 1 new: switch on the ones to share.")
        program.wait_for_label("HF direct sampling · serial 0009072C00D6")
        program.wait_for_label("Covers all of HF, 0 to 30 MHz.")
        self.assertEqual(len(program.everything(Role.COMBO_BOX)), 1)

    def test_the_button_is_insensitive_while_the_service_looks(self):
        service = self.scripted_service()
        service.answers("GET /api/devices", 200, [])
        program = self.open("receivers")
        button = program.get(Role.PUSH_BUTTON, "Find devices")
        program.focus(button)
        service.gate.clear()
        # A second press waits in the queue and finds the button insensitive.
        program.keys("space", "space")
        wait_for(lambda: service.count("GET /api/devices") == 1, "the request")
        service.gate.set()
        wait_for(lambda: has_state(button, State.SENSITIVE), "the button to come back")
        program.poll()
        self.assertEqual(service.count("GET /api/devices"), 1)


class Ranges(Case):
    def open_receivers(self):
        self.running = self.station("quiet")
        return self.open("receivers")

    def test_typing_a_comma_means_the_decimal_point(self):
        program = self.open_receivers()
        for typed, shown, value in (("7,05", "7.050", 7.05), ("7.1", "7.100", 7.1),
                                    ("14", "14.000", 14)):
            with self.subTest(typed=typed):
                spin = program.type_over(program.spin(LOW), typed)
                key("Tab")
                wait_for(lambda: text_in(spin) == shown, f"{shown} in the field")
                self.assertAlmostEqual(program.number_of(LOW), value)

    def test_a_typed_range_is_saved_in_hertz(self):
        program = self.open_receivers()
        for name, text in ((LOW, "3,5"), (HIGH, "3.8")):
            program.type_over(program.spin(name), text)
        program.save()
        saved = self.running.bodies("PUT-settings")[-1]["receivers"][0]
        self.assertEqual((saved["lo"], saved["hi"]), (3500000, 3800000))

    def test_the_coverage_line_follows_the_range(self):
        program = self.open_receivers()
        spin = program.spin(HIGH)
        for value, line in ((7.3, "Covers 0.3 MHz of the 8 MHz this receiver can take at once."),
                            (15, "Covers 8 MHz of the 8 MHz this receiver can take at once."),
                            (15.01, "8.01 MHz is too wide: this receiver covers up to 8 MHz at "
                                    "once."),
                            (7, "The top of the range must be aboove its bottom.")):
            Atspi.Value.set_current_value(spin, value)
            program.wait_for_label(line)
            self.assertEqual(description_of(spin), line)

    def test_a_band_sets_both_ends(self):
        program = self.open_receivers()
        program.wait_for_label("Covers 2 MHz of the 2 MHz this receiver can take at once.")
        menu = program.field(Role.COMBO_BOX, DONGLE_BAND)
        self.assertEqual(menu.get_name(), "Band…")
        Atspi.Selection.select_child(menu, 14)
        wait_for(lambda: menu.get_name() == "2 m", "the menu to show its band")
        program.wait_for_label("4.00 MHz is too wide: this receiver covers up to 2 MHz at once.")
        self.assertEqual(self.dongle_range(program), (144, 148))
        self.assertTrue(program.is_unsaved())
        Atspi.Selection.select_child(menu, 0)
        self.assertEqual(self.dongle_range(program), (144, 148))

    def dongle_range(self, program):
        return program.number_of(DONGLE_LOW), program.number_of(DONGLE_HIGH)

    def test_the_wheel_edits_nothing_that_has_no_focus(self):
        program = self.open_receivers()
        program.focus(program.get(Role.PUSH_BUTTON, "Open station page"))
        for widget in (program.spin(LOW), program.field(Role.COMBO_BOX, BAND)):
            self.turn_wheel_over(widget)
        # The keys come after the wheel: once they have worked, the wheel has.
        program.keys("ctrl+1", "ctrl+3")
        wait_for(lambda: program.shown_page() == "receivers", "the keys to arrive")
        self.assertEqual((program.number_of(LOW), program.number_of(HIGH)), (7, 7.3))
        self.assertFalse(program.is_unsaved())

    def test_the_wheel_edits_the_field_that_has_the_focus(self):
        program = self.open_receivers()
        spin = program.focus(program.spin(LOW))
        self.turn_wheel_over(spin)
        wait_for(lambda: abs(program.number_of(LOW) - 7.002) < 1e-9, "two steps up")
        self.assertTrue(program.is_unsaved())

    def turn_wheel_over(self, widget):
        at = extents(widget)
        xdotool("mousemove", at.x + at.width // 4, at.y + at.height // 2, "click", 4, "click", 4)

    def test_a_receiver_that_is_switched_off_is_left_out_and_greyed(self):
        program = self.open_receivers()
        program.toggle("Share SDRplay RSP1 with listeners")
        wait_for(lambda: not is_sensitive(program.spin(LOW)), "the frequencies to be greyed")
        self.assertEqual(program.number_of(LOW), 7)
        program.save()
        self.assertEqual([r["backend"] for r in self.running.bodies("PUT-settings")[-1]
                          ["receivers"]], ["rtl-sdr"])
        self.assertNotIn("SDRplay RSP1", program.labels())

    def test_markup_in_a_name_is_shown_as_it_is(self):
        document = state_document()
        document["settings"]["receivers"][0]["model"] = "<b>A & B</b>"
        self.scripted_service(document)
        self.open("receivers").wait_for_label("<b>A & B</b>")


if __name__ == "__main__":
    unittest.main()
