# SPDX-License-Identifier: MIT
"""The Internet page: the port, the relay, the certificate, the list, and staying on the air."""

import locale
import unittest

from harness import (Atspi, Case, HOST, Role, State, has_state, is_sensitive, key, state_document,
                     wait_for)

LINGER = "Keep sharing when I'm logged out"
RELAY = "I can't accept incoming connections"
LISTED = f"List this station on {HOST}"
EMAIL = "Your email (not shown on the list)"

# 5 March 2027, noon UTC; the month is written in the user's language.
EXPIRES = 1804248000
DATES = {"C": "5 March 2027", "de_DE": "5 März 2027", "ar_EG": "5 مارس 2027"}


class Reach(Case):
    def test_a_listed_station_says_so_four_times(self):
        document = state_document()
        document["status"]["https"] = {"state": "active", "name": "1042.example",
                                       "expires": EXPIRES}
        self.scripted_service(document)
        program = self.open("internet")
        language = locale.setlocale(locale.LC_TIME, "").partition(".")[0]
        for text in (f"✓ {HOST} reached the station at 203.0.113.17:8073.",
                     "✓ Secure address: https://1042.example:8073/ (certificate renews itself; "
                     f"good until {DATES[language]}).",
                     f"✓ Listed at {HOST}/websdr.html.",
                     "Registered as station 1042 with owner@k1abc.example."):
            program.wait_for_label(text)
        self.assertTrue(any(text.startswith("On your router, forward TCP port 8073 to this "
                                            "computer") for text in program.labels()))

    def test_the_lines_follow_the_station(self):
        document = state_document()
        service = self.scripted_service(document)
        program = self.open("internet")
        status = document["status"]
        status["directory"]["reachable"] = False
        status["https"] = {"state": "failed", "error": "No name yet."}
        service.answers("GET /api/state", 200, document)
        program.poll().wait_for_label(f"✗ {HOST} could not reach the station at "
                                      "203.0.113.17:8073. Check the port forward.")
        program.wait_for_label("✗ No certificate yet: No name yet. Trying again later.")
        program.wait_for_label(f"Checked in. Listed as soon as {HOST} can reach the station.")
        status["directory"] = {"state": "check-in failed", "error": "Timed out."}
        service.answers("GET /api/state", 200, document)
        program.poll().wait_for_label(f"Cannot reach {HOST}: Timed out.")
        self.assertEqual(program.header(), "On the air · 1 receiver · 0 of 20 listening · cannot "
                                           f"reach {HOST}")


class Relay(Case):
    def test_the_switch_swaps_the_port_for_the_key(self):
        self.station("quiet")
        program = self.open("internet")
        self.assertNotIn("Relay key", program.labels())
        self.assertIn("Public port", program.labels())
        program.toggle(RELAY)
        program.wait_for_label("Relay key")
        self.assertNotIn("Public port", program.labels())
        program.toggle(RELAY)
        program.wait_for_label("Public port")

    def test_a_refusing_relay_connects_in_the_end(self):
        self.station("relay-refused", "--speed", "60")
        program = self.open("internet")
        program.wait_for_label(f"✓ Connected. Listeners reach your station at https://{HOST}"
                               "/r/1042/ (20 at once through the relay).")

    def test_a_refusal_gives_its_reason(self):
        document = state_document()
        document["settings"]["relay"]["enabled"] = True
        document["status"]["relay"] = {"state": "refused", "error": "This key is not known."}
        self.scripted_service(document)
        self.open("internet").wait_for_label(
            "✗ The relay refused: This key is not known. Trying again.")


class Registration(Case):
    def test_consent_and_address_are_asked_for_before_anything_is_sent(self):
        station = self.station("first-run")
        program = self.open("internet")
        program.press("Register this station").wait_for_footer("Tick “I understand” first.")
        program.toggle("I understand", Role.CHECK_BOX)
        for wrong in ("", "owner", "owner@k1abc", "@k1abc.example", "owner @k1abc.example",
                      " owner@k1abc.example", "owner@k1abc.example "):
            with self.subTest(wrong=wrong):
                program.type_into(EMAIL, wrong).press("Register this station")
                program.wait_for_footer("Enter your email address.")
        self.assertEqual(station.count("POST /api/register"), 0)
        self.assertFalse(program.is_unsaved())

    def test_enter_in_the_address_registers(self):
        station = self.station("first-run")
        program = self.open("internet")
        program.toggle("I understand", Role.CHECK_BOX)
        program.type_into(EMAIL, "owner@k1abc.example")
        program.focus(program.entry(EMAIL))
        key("Return")
        program.wait_for_footer("Registered. The station appears on the list as soon as "
                                f"{HOST} can reach it.")
        self.assertEqual(station.bodies("POST-register"), [{"email": "owner@k1abc.example"}])
        program.wait_for_label("Registered as station 1042 with owner@k1abc.example.")
        self.assertNotIn("Register once", program.labels())

    def test_a_refusal_gives_its_reason(self):
        self.station("register-refused")
        program = self.open("internet")
        program.toggle("I understand", Role.CHECK_BOX)
        program.type_into(EMAIL, "owner@k1abc.example").press("Register this station")
        program.wait_for_footer("Not registered: The station list takes no new stations this "
                                "week.")

    def test_edits_are_saved_first(self):
        station = self.station("first-run")
        program = self.open("station")
        program.type_into("Station name", "Hilltop").page("internet")
        program.toggle("I understand", Role.CHECK_BOX)
        program.type_into(EMAIL, "owner@k1abc.example").press("Register this station")
        program.wait_for_footer("Registered. The station appears on the list as soon as "
                                f"{HOST} can reach it.")
        changes = [r[:2] for r in station.requests() if r[0] != "GET"]
        self.assertEqual(changes, [("PUT", "/api/settings"), ("POST", "/api/register")])
        self.assertEqual(program.title(), "Hilltop")

    def test_a_service_that_is_gone_is_named(self):
        station = self.station("first-run")
        program = self.open("internet")
        program.toggle("I understand", Role.CHECK_BOX)
        station.stop()
        program.type_into(EMAIL, "owner@k1abc.example").press("Register this station")
        program.wait_for_footer("Not registered: the service did not answer.")

    def test_the_button_is_insensitive_meanwhile(self):
        document = state_document()
        document["settings"]["directory"].update(id="", email="")
        document["status"]["directory"] = {"state": "not registered"}
        service = self.scripted_service(document)
        service.answers("POST /api/register", 409, {"error": "Not today."})
        program = self.open("internet")
        program.toggle("I understand", Role.CHECK_BOX)
        program.type_into(EMAIL, "owner@k1abc.example")
        button = program.focus(program.field(Role.PUSH_BUTTON, "Register this station"))
        service.gate.clear()
        program.keys("space", "space")
        wait_for(lambda: service.count("POST /api/register") == 1, "the request")
        service.gate.set()
        program.wait_for_footer("Not registered: Not today.")
        wait_for(lambda: has_state(button, State.SENSITIVE), "the button to come back")
        program.poll()
        self.assertEqual(service.count("POST /api/register"), 1)


class Listing(Case):
    def test_a_station_that_does_not_want_to_be_listed(self):
        self.station("quiet")
        program = self.open("internet")
        program.toggle(LISTED).save()
        program.wait_for_label("Not listed: switch on “List this station” to appear.")
        self.assertTrue(program.header().endswith(" · not on the station list"))


class Lingering(Case):
    ON = "Your receivers now stay shared when you log out and after a restart."
    OFF = "Your receivers are shared only while you are logged in."
    REFUSED = "The system did not allow that change."

    def changes(self):
        return [line for line in self.commands("loginctl") if "linger" in line.split()[1]]

    def test_the_switch_acts_at_once_and_marks_nothing_unsaved(self):
        self.station("quiet")
        program = self.open("internet")
        self.assertFalse(program.is_on(LINGER))
        program.toggle(LINGER).wait_for_footer(self.ON)
        program.toggle(LINGER).wait_for_footer(self.OFF)
        self.assertEqual(self.changes(), ["loginctl enable-linger", "loginctl disable-linger"])
        self.assertFalse(program.is_unsaved())

    def test_the_switch_shows_the_system_at_start(self):
        (self.folder / "linger").write_text("yes\n")
        self.station("quiet")
        self.assertTrue(self.open("internet").is_on(LINGER))
        self.assertEqual(self.changes(), [])

    def test_a_refusal_snaps_the_switch_back_with_one_command(self):
        self.stand_in("loginctl", "[ \"$1\" = show-user ] && echo no\n")
        self.station("quiet")
        program = self.open("internet")
        switch = program.switch(LINGER)
        Atspi.Action.do_action(switch, 0)
        program.wait_for_footer(self.REFUSED)
        wait_for(lambda: not has_state(switch, State.CHECKED), "the switch to snap back")
        program.poll()
        self.assertEqual(self.changes(), ["loginctl enable-linger"])
        self.assertTrue(is_sensitive(switch))


if __name__ == "__main__":
    unittest.main()
