# SPDX-License-Identifier: MIT
"""Start-up from outside: first contact, the owner question, and how it ends."""

import getpass
import signal
import subprocess
import unittest

from accessible import wait_for
from display import picture, xdotool
from harness import Case
from program import PROGRAM
from services import ROOT


class NoService(Case):
    def test_without_a_socket_file_a_dialog_says_so_and_the_program_ends_with_1(self):
        program = self.start()
        self.assertEqual(program.dialog_texts(), [
            "The Tarnwave service is not running.", "Start it with: sudo systemctl start tarnwave"])
        self.assertEqual(program.header(), "Connecting to the Tarnwave service…")
        program.keys("Return")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))


class Owner(Case):
    """The service's socket is there, but the service refuses this user."""

    def test_the_question_names_the_user_and_no_key_by_chance_changes_the_owner(self):
        station = self.station("not-owner")
        for key in ("Return", "Escape", "alt+F4"):
            with self.subTest(key=key):
                program = self.start()
                primary, secondary = program.dialog_texts()
                self.assertEqual(primary, f"Make {getpass.getuser()} the station owner?")
                self.assertRegex(secondary, "needs an administrator's password.$")
                self.assertEqual(program.dialog_buttons(), ["Close", "Make me the owner"])
                program.keys(key)
                self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))
        self.assertEqual(self.commands("pkexec"), [])
        self.assertEqual(station.log().count("GET /api/state"), 3)


class Arguments(Case):
    def test_a_desktop_finds_the_program_by_its_window(self):
        self.station("quiet")
        program = self.open()
        entry = (ROOT / "data" / "org.tarnwave.Settings.desktop").read_text()
        self.assertIn("\nStartupWMClass=org.tarnwave.Settings\n", entry)
        for part in ("--class", "--classname"):
            self.assertIn(program.window_id(),
                          xdotool("search", part, r"^org\.tarnwave\.Settings$").split())

    def test_help_and_version_need_no_display(self):
        environment = self.environment()
        del environment["DISPLAY"]
        for argument, beginning in (("--help", r"Usage: tarnwave-settings \[PAGE\]\n"),
                                    ("--version", r"tarnwave-settings [0-9.]+\n$")):
            with self.subTest(argument=argument):
                run = subprocess.run([PROGRAM, argument], env=environment, capture_output=True,
                                     text=True, check=False)
                self.assertEqual((run.returncode, run.stderr), (0, ""))
                self.assertRegex(run.stdout, "^" + beginning)


class Service(Case):
    def test_a_document_that_breaks_the_contract_ends_the_program_with_a_sentence(self):
        document = self.state_document()
        del document["status"]["directory"]
        self.scripted_service(document)
        program = self.start()
        self.assertEqual(program.wait_for_end(), -signal.SIGABRT)
        self.assertRegex(program.errors(), r"\Atarnwave-settings: [^\n]+\n\Z")

    def test_the_window_is_drawn_before_a_slow_service_has_answered(self):
        service = self.scripted_service()
        service.gate.clear()
        program = self.start()
        wait_for(lambda: service.count("GET /api/state") == 1, "the first request")
        shot = self.folder / "first.png"
        picture(shot, program.window_id())
        colours = subprocess.run(["identify", "-format", "%k", shot], capture_output=True,
                                 text=True, check=True)
        service.gate.set()
        self.assertGreater(int(colours.stdout), 100, "colours in the window before the answer")
        program.wait_until_loaded()


class Closing(Case):
    def test_closing_the_window_ends_the_program_with_0(self):
        self.station("quiet")
        for key in ("ctrl+w", "ctrl+q", "alt+F4"):
            with self.subTest(key=key):
                program = self.open()
                program.keys(key)
                self.assertEqual((program.wait_for_end(), program.errors()), (0, ""))


if __name__ == "__main__":
    unittest.main()
