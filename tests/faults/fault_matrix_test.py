#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Every kind of request of the real program meets one fault of each outcome.

fault_matrix_test.py PROGRAM LIBRARY: the library is the preloaded remote_control.cpp. That each
fault of faults.json has its outcome is a test of the link. Here the program ends with its sentence,
or says what came of the request and lives on: what was typed is still there, no descriptor is left
open, and a poll and a save succeed. Needs a display (scripts/under-xvfb brings one).
"""
import getpass
import pathlib
import signal
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from remote_program import Program  # noqa: E402 (the path comes first)
from stand_in_service import (  # noqa: E402 (the path comes first)
    FAULTS, REQUESTS, StandInService, fault_bytes, reply_bytes)

ON_THE_AIR = "On the air"
NOT_ANSWERING = "The Tarnwave service is not answering"
SAVE = REQUESTS["PUT /api/settings"].commands

# The kinds of request that the window makes: the request that meets the fault, the one whose
# commands make it, and what the window says of no answer, of a refusal and of a success.
ENDED = "Ended the session of 198.51.100.4."
BLOCKED = "Blocked 198.51.100.4."
NO_DEVICES = "The Tarnwave service did not answer."
KINDS = {
    "poll": ("GET /api/state", "GET /api/state", NOT_ANSWERING, NOT_ANSWERING, ON_THE_AIR),
    "load": ("GET /api/state", "PUT /api/settings", "Saved.", "Saved.", "Saved."),
    "save": ("PUT /api/settings", "PUT /api/settings",
             "Not saved: the Tarnwave service did not answer.", "Not saved: No.", "Saved."),
    "find": ("GET /api/devices", "GET /api/devices", NO_DEVICES, NO_DEVICES, "1 found."),
    "register": ("POST /api/register", "POST /api/register",
                 "Not registered: the service did not answer.", "Not registered: No.",
                 "Registered. "),
    "end": ("POST /api/kick", "POST /api/kick", ENDED, ENDED, ENDED),
    "block": ("POST /api/ban", "POST /api/ban", BLOCKED, BLOCKED, BLOCKED),
}

# Where the program does not read the document, a broken one is a success too.
SUCCESSES = ("good answer", "broken document")


FAULT_OF_EACH_OUTCOME = {fault["outcome"]: fault for fault in FAULTS}.values()


def shows(report, words):
    return any(text.startswith(words) for text in report["texts"])


class FaultMatrix(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.script = []  # for the next requests: None for a good answer, a fault or a reply
        self.service = StandInService(self.folder / "socket", self.answer)
        self.addCleanup(self.service.stop)
        self.program = None
        # The administrator's command does nothing, and well; there is no other command.
        (self.folder / "bin").mkdir()
        (self.folder / "bin" / "pkexec").write_text("#!/bin/sh\n")
        (self.folder / "bin" / "pkexec").chmod(0o755)

    def answer(self, request):
        good = REQUESTS[request.key].reply
        step = self.script.pop(0) if self.script else None
        if isinstance(step, bytes):
            return step
        return fault_bytes(step, good) if step else reply_bytes(200, good)

    def start(self, *script):
        self.service.requests.clear()
        self.script = list(script)
        program = Program(PROGRAM, LIBRARY, self.folder, self.service.server_address)
        self.addCleanup(program.kill)
        return program

    def hear_until(self, program, condition):
        report = program.hear_until(condition)
        self.assertIsNotNone(report, "it ended")
        return report

    def wait_for_station(self, program):
        """Waits until the program that was just started shows the station on the air."""
        self.hear_until(program, lambda report: "texts" in report and shows(report, ON_THE_AIR))

    def answer_question(self, program, response):
        program.tell(f"answer {response}")
        report = self.hear_until(program, lambda report: "dialog" in report)
        self.assertIn(f"Make {getpass.getuser()} the station owner?", report["dialog"])

    def assert_shows(self, report, words):
        self.assertTrue(shows(report, words), f"no “{words}” but {report['texts']}"[:2000])

    def open(self):
        """Starts the program and does every action once."""
        program = self.start()
        self.wait_for_station(program)
        for request in REQUESTS.values():
            program.do("edit Warm", *request.commands)
        program.do("edit Warm", *SAVE)
        self.descriptors = program.do("figures")["descriptors"]
        return program

    def run_action(self, program, kind, fault):
        """Returns whether the program lives on."""
        request, made_by, none, refused, well = KINDS[kind]
        good_before = int(request != made_by)
        edited = kind != "register"  # it saves edits first, with a request of its own
        if edited:
            program.do("edit Edited")
        self.service.requests.clear()
        self.script = [None] * good_before + [fault]
        report = program.do(*REQUESTS[made_by].commands)
        self.assertEqual(self.service.requests[good_before].key, request)
        if REQUESTS[request].ends_program(fault):
            self.assertIsNone(report, "it lived on")
            status, said = program.end()
            self.assertEqual(status, -signal.SIGABRT)
            self.assertRegex(said, r"\Atarnwave-settings: [^\n]+\n\Z")
            return False
        self.assertIsNotNone(report, "it ended")
        succeeded = fault["outcome"] in SUCCESSES
        self.assert_shows(report, none if fault["outcome"] == "no answer" else
                          well if succeeded else refused)
        if edited and not (made_by == "PUT /api/settings" and succeeded):
            self.assertEqual((report["name"], report["unsaved"]), ("Edited", True))
        self.assert_usable(program)
        return True

    def assert_usable(self, program):
        self.assert_shows(program.do("poll"), ON_THE_AIR)
        report = program.do("edit Usable", *SAVE)
        self.assert_shows(report, "Saved.")
        self.assertFalse(report["unsaved"])
        self.assertEqual(program.do("figures")["descriptors"], self.descriptors)

    def test_what_the_window_says_is_known_of_every_request(self):
        self.assertEqual({request for request, *_ in KINDS.values()}, REQUESTS.keys())

    def test_every_action_meets_every_outcome(self):
        program = None
        for kind in KINDS:
            for fault in FAULT_OF_EACH_OUTCOME:
                with self.subTest(kind, fault=fault["fault"]):
                    running, program = program or self.open(), None
                    if self.run_action(running, kind, fault):
                        program = running
        self.assertEqual(program.close(), (0, ""))

    def test_the_first_request_of_all_meets_every_outcome(self):
        # A success is not read, since the form has its own request.
        for fault in FAULT_OF_EACH_OUTCOME:
            with self.subTest(fault["fault"]):
                program = self.start(fault)
                if fault["outcome"] in SUCCESSES:
                    self.wait_for_station(program)
                    self.assertEqual(program.close(), (0, ""))
                else:
                    self.answer_question(program, -7)  # closed
                    self.assertEqual(program.end(), (1, ""))

    def test_the_wait_for_a_new_owner_ends_at_the_first_success(self):
        for fault in FAULT_OF_EACH_OUTCOME:
            with self.subTest(fault["fault"]):
                program = self.start(reply_bytes(403, {"error": "No."}), fault)
                self.answer_question(program, -3)  # accepted
                self.wait_for_station(program)
                self.assertEqual(program.close(), (0, ""))
                # The probe, the try that met the fault, the next one, the probe and the form.
                self.assertEqual(len(self.service.requests),
                                 4 if fault["outcome"] in SUCCESSES else 5)


if __name__ == "__main__":
    PROGRAM, LIBRARY = sys.argv.pop(1), sys.argv.pop(1)
    unittest.main()
