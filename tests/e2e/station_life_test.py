# SPDX-License-Identifier: MIT
"""The life of a station, from the first run to the day it is handed to another user."""

import unittest

from accessible import Atspi, Role, State, has_state, text_in, wait_for
from harness import HOST, Case

EMAIL = "Your email (not shown on the list)"
BLOCKED = "One per line: an address such as 203.0.113.7, or a range such as 203.0.113.0/24."


class Life(Case):
    def act_on_a_listener(self, program, name, outcome, what):
        """Selects a listener and presses a button, until `outcome()` is true. When the listener
        leaves in between, it selects another one."""
        def acted():
            button = program.find_button(name)
            # A button that can be pressed again has been pressed, and the outcome shows by now.
            if outcome():
                return True
            if button:
                Atspi.Action.do_action(button, 0)
            elif table := program.poll().find(Role.TABLE):
                Atspi.Table.add_row_selection(table, 0)
            return False
        wait_for(acted, what)

    def play(self, scenario, *more):
        return self.station(scenario, "--state", self.folder / "settings.json", *more)

    def test_a_station_is_set_up_watched_lost_regained_and_handed_over(self):
        # A quick life: a minute of the station passes in a second.
        station = self.play("first-run", "--speed", "60")
        program = self.open()
        self.first_run(program)
        self.share_a_receiver(program)
        self.name_the_station(program)
        self.register(program)
        self.come_on_the_list(program)
        self.watch_listeners(program, station)
        station = self.lose_and_regain_the_service(program, station)
        self.reopen(program)
        station.stop()
        self.hand_over()

    def first_run(self, program):
        self.assertEqual(program.title(), "Your station")
        self.assertEqual(program.header(), "Off the air: no receiver is running")
        self.assertEqual(program.labels().count("○"), 4)

    def share_a_receiver(self, program):
        program.press("Choose receivers →")
        wait_for(lambda: program.shown_page() == "receivers", "the receivers")
        program.press("Find devices")
        wait_for(lambda: any("found" in label for label in program.labels()), "the devices")
        program.toggle("Share SDRplay RSP1 with listeners")
        program.save()
        program.page("overview")
        wait_for(lambda: "SDRplay RSP1   7 – 7.3 MHz" in program.poll().labels(),
                 "the receiver on the air")
        # Listeners come from now on, and how many have come by now is a matter of the machine.
        self.assertRegex(program.header(), "^On the air · 1 receiver · [0-9]+ of 20 listening · "
                                           "not registered for the station list$")

    def name_the_station(self, program):
        program.press("Go there →")
        wait_for(lambda: program.shown_page() == "station", "the station's page")
        program.type_into("Station name", "Hilltop SDR").type_into("Callsign", "k1abc")
        program.type_into("Grid square", "em95")
        program.wait_for_label("On the map at about 35.5° N, 81.0° W.")
        program.save()
        self.assertEqual(program.title(), "K1ABC · Hilltop SDR")
        self.assertEqual(program.page("overview").labels().count("○"), 2)

    def register(self, program):
        program.page("internet").toggle("I understand", Role.CHECK_BOX)
        program.type_into(EMAIL, "owner@k1abc.example").press("Register this station")
        program.wait_for_footer("Registered. The station appears on the list as soon as "
                                f"{HOST} can reach it.")
        program.wait_for_label("Registered as station 1042 with owner@k1abc.example.")

    def come_on_the_list(self, program):
        program.wait_for_label(f"✓ {HOST} reached the station at 203.0.113.17:8073.")
        program.wait_for_label(f"✓ Listed at {HOST}/websdr.html.")
        program.page("overview")
        self.assertNotIn("Getting started", program.labels())
        self.assertTrue(program.header().endswith(f" · listed on {HOST}"), program.header())

    def watch_listeners(self, program, station):
        # Listeners come and go by the second: act on whoever is there.
        self.act_on_a_listener(program, "End session",
                               lambda: program.footer().startswith("Ended the session of "),
                               "the farewell")
        self.assertEqual(len(station.bodies("POST-kick")), 1)

        self.act_on_a_listener(program, "Block address…", program.find_dialog, "the question")
        address = program.dialog_texts()[0].removeprefix("Block ").removesuffix("?")
        program.answer(program.dialog_buttons()[-1]).wait_for_footer(f"Blocked {address}.")
        self.assertEqual(station.bodies("POST-ban"), [{"address": address}])
        program.page("listeners")
        self.blocked = text_in(program.entry(BLOCKED))
        self.assertIn(address, self.blocked.split())

    def lose_and_regain_the_service(self, program, station):
        station.stop()
        program.poll().wait_for_header("The Tarnwave service is not answering")
        station = self.play("first-run", "--speed", "60")
        # By itself: nobody asks for news.
        wait_for(lambda: program.header().startswith("On the air · 1 receiver"),
                 "the station to be back")
        return station

    def reopen(self, program):
        """What was set outlives the window and the service."""
        program.quit()
        self.assertEqual((program.process.returncode, program.errors()), (0, ""))
        program = self.open("station")
        self.assertEqual(program.title(), "K1ABC · Hilltop SDR")
        self.assertEqual(program.text_of("Grid square"), "em95")
        program.page("receivers")
        self.assertTrue(has_state(program.switch("Share SDRplay RSP1 with listeners"),
                                  State.CHECKED))
        self.assertEqual(text_in(program.page("listeners").entry(BLOCKED)), self.blocked)
        program.quit()
        self.assertEqual((program.process.returncode, program.errors()), (0, ""))

    def hand_over(self):
        self.stand_in("pkexec", "echo >\"$folder/owner\"\n")
        self.play("not-owner", "--owner-file", self.folder / "owner")
        program = self.start()
        program.answer("Make me the owner")
        program.wait_until_loaded()
        self.assertEqual(program.title(), "K1ABC · Hilltop SDR")
        self.assertEqual(self.commands("pkexec"), ["pkexec /usr/lib/tarnwave/set-owner"])


class Relay(Case):
    def test_a_station_behind_a_provider_goes_on_the_air_through_the_relay(self):
        self.station("unreachable", "--speed", "60")
        program = self.open("internet")
        program.wait_for_label(f"✗ {HOST} could not reach the station at 203.0.113.17:8073. "
                               "Check the port forward.")
        program.toggle("I can't accept incoming connections")
        program.save()
        program.wait_for_label("Enter the relay key Corvane gave you, then press Save.")
        program.type_into("Relay key", "7QWD-K2PX-90LM-3FTR-ZB4H-V6NC")
        program.keys("ctrl+s")
        program.wait_for_label(f"✓ Connected. Listeners reach your station at https://{HOST}"
                               "/r/1042/ (20 at once through the relay).")
        program.page("overview")
        program.get(Role.PUSH_BUTTON, f"https://{HOST}/r/1042/")


if __name__ == "__main__":
    unittest.main()
