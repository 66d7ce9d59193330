# SPDX-License-Identifier: MIT
"""Start-up from outside: first contact, the owner question, the broker, arguments and the end."""

import os
import subprocess
import unittest

from harness import (Case, PROGRAM, ROOT, USER, picture, state_document, wait_for, window_class)

DEFAULT_SOCKET = "/run/tarnwave/settings.sock"
OWNER_FILE = "/etc/tarnwave/owner"


def owner_sentence():
    """What the program says of the owner of this very computer."""
    try:
        with open(OWNER_FILE, encoding="utf-8") as file:
            owner = file.readline().rstrip("\n")
    except OSError:
        owner = ""
    return f"The station owner is {owner}." if owner else "This station has no owner yet."


class NoService(Case):
    def test_without_a_socket_file_a_dialog_says_so_and_the_program_ends_with_1(self):
        program = self.start()
        self.assertEqual(program.dialog_texts(), [
            "The Tarnwave service is not running.", "Start it with: sudo systemctl start tarnwave"])
        self.assertEqual(program.header(), "Connecting to the Tarnwave service…")
        program.keys("Return")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))

    def test_escape_closes_the_dialog_too(self):
        program = self.start()
        program.dialog()
        program.keys("Escape")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))

    def test_an_empty_socket_variable_counts_as_unset(self):
        # A station may really run on this computer: then both show it.
        def first_words(**environment):
            program = self.start(**environment)
            wait_for(lambda: program.find_dialog() or
                     program.header() != "Connecting to the Tarnwave service…", "the first words")
            words = program.dialog_texts() if program.find_dialog() else program.title()
            program.kill()
            return words

        empty = first_words(TARNWAVE_SETTINGS_SOCKET="")
        self.assertEqual(empty, first_words(TARNWAVE_SETTINGS_SOCKET=None))
        if not os.path.exists(DEFAULT_SOCKET):
            self.assertEqual(empty[0], "The Tarnwave service is not running.")


class Owner(Case):
    """The service's socket is there, but the service refuses this user."""

    PRIMARY = f"Make {USER} the station owner?"

    def secondary(self):
        return owner_sentence() + (
            " Only the station owner may change Tarnwave's settings and share receivers through "
            "it. Becoming the owner needs an administrator's password.")

    def test_the_question_names_the_user_and_the_owner(self):
        self.station("not-owner")
        program = self.start()
        self.assertEqual(program.dialog_texts(), [self.PRIMARY, self.secondary()])
        self.assertEqual(program.dialog_buttons(), ["Close", "Make me the owner"])
        program.answer("Close")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))
        self.assertEqual(self.commands("pkexec"), [])

    def test_enter_and_escape_change_no_owner(self):
        for key in ("Return", "Escape"):
            with self.subTest(key=key):
                station = self.station("not-owner")
                program = self.start()
                program.dialog()
                program.keys(key)
                self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))
                self.assertEqual(self.commands("pkexec"), [])
                station.stop()

    def test_becoming_the_owner_opens_the_station(self):
        self.stand_in("pkexec", "echo >\"$folder/owner\"\n")
        self.station("not-owner", "--owner-file", self.folder / "owner")
        program = self.start()
        program.answer("Make me the owner")
        program.wait_until_loaded()
        self.assertEqual(program.title(), "K1ABC · Hilltop SDR")
        self.assertEqual(self.commands("pkexec"), ["pkexec /usr/lib/tarnwave/set-owner"])

    def test_a_refused_password_ends_the_program_with_1(self):
        self.stand_in("pkexec", "exit 126\n")
        station = self.station("not-owner")
        program = self.start()
        program.answer("Make me the owner")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))
        self.assertEqual(self.commands("pkexec"), ["pkexec /usr/lib/tarnwave/set-owner"])
        self.assertEqual(station.count("GET /api/state"), 1)

    def test_a_service_that_refuses_again_brings_the_question_back(self):
        self.stand_in("pkexec", "exit 0\n")
        service = self.scripted_service()
        refusal = (403, {"error": "Only the station owner may use this station."})
        # The try after the change is accepted, the probe that follows it is not.
        service.answers_in_turn("GET /api/state", [refusal, (200, state_document()), refusal])
        program = self.start()
        program.answer("Make me the owner")
        wait_for(lambda: service.count("GET /api/state") == 3, "the second probe")
        self.assertEqual(program.dialog_texts()[0], self.PRIMARY)
        program.answer("Close")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))

    def test_a_parent_that_ignores_its_children_changes_nothing(self):
        self.stand_in("pkexec", "exit 126\n")
        self.station("not-owner")
        # Handed down through exec: a shell cannot be trusted with SIGCHLD.
        program = self.start(wrapper=(
            "/usr/bin/python3", "-c",
            "import os, signal, sys; signal.signal(signal.SIGCHLD, signal.SIG_IGN); "
            "os.execv(sys.argv[1], sys.argv[1:])"))
        program.answer("Make me the owner")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))
        self.assertEqual(len(self.commands("pkexec")), 1)


class Broker(Case):
    START = "systemctl --user enable --now tarnwave-broker.service"

    def test_a_broker_that_is_down_is_started_once_before_the_form_is_loaded(self):
        self.station("broker-down", "--broker-file", self.folder / "broker")
        program = self.open()
        self.assertEqual(self.commands("systemctl"), [self.START])
        # The form was loaded from a station whose broker had been started by then.
        self.assertNotIn("broker", program.header())

    def test_a_broker_that_runs_is_left_alone(self):
        self.station("on-air")
        self.open()
        self.assertEqual(self.commands("systemctl"), [])

    def test_a_failing_start_is_shown_by_the_header_alone(self):
        self.stand_in("systemctl", "echo noise; echo noise >&2; exit 1\n")
        self.station("broker-down")
        program = self.open()
        self.assertEqual(program.header(), "Off the air: your receiver broker is not running "
                                           "(systemctl --user start tarnwave-broker)")
        self.assertEqual(self.commands("systemctl"), [self.START])
        self.assertEqual((program.output(), program.errors()), ("", ""))

    def test_a_probe_without_a_boolean_broker_starts_nothing(self):
        text = state_document()
        text["status"]["broker"] = "false"
        missing = state_document()
        del missing["status"]["broker"]
        for first in (text, missing, [], "no JSON"):
            with self.subTest(first=first):
                service = self.scripted_service()
                service.answers_in_turn("GET /api/state",
                                        [(200, first), (200, state_document())])
                program = self.open()
                self.assertEqual(self.commands("systemctl"), [])
                program.quit()
                self.assertEqual(program.process.returncode, 0)
                service.stop()


class Arguments(Case):
    def test_the_first_argument_names_the_page(self):
        self.station("quiet")
        for arguments, page in ((["station"], "station"), (["receivers"], "receivers"),
                                (["listeners"], "listeners"), (["internet"], "internet"),
                                ([], "overview"), (["nowhere"], "overview"), ([""], "overview")):
            with self.subTest(arguments=arguments):
                program = self.open(*arguments)
                self.assertEqual(program.shown_page(), page)
                program.quit()
                self.assertEqual((program.process.returncode, program.errors()), (0, ""))

    def test_a_desktop_finds_the_program_by_its_window(self):
        self.station("quiet")
        program = self.open()
        entry = (ROOT / "data" / "org.tarnwave.Settings.desktop").read_text()
        self.assertIn("\nStartupWMClass=tarnwave-settings\n", entry)
        self.assertEqual(window_class(program.window_id()),
                         ("tarnwave-settings", "tarnwave-settings"))

    def test_help_and_version_need_no_display(self):
        environment = self.environment(DISPLAY=None)
        for argument, beginning in (("--help", r"Usage: tarnwave-settings \[PAGE\]\n"),
                                    ("--version", r"tarnwave-settings [0-9.]+\n$")):
            with self.subTest(argument=argument):
                run = subprocess.run([PROGRAM, argument], env=environment, capture_output=True,
                                     text=True, check=False)
                self.assertEqual((run.returncode, run.stderr), (0, ""))
                self.assertRegex(run.stdout, "^" + beginning)


class BrokenDocuments(Case):
    """The service breaks its contract: the program ends, and says in one sentence why."""

    SIGABRT = -6

    def assert_ends_with_a_sentence(self, program):
        self.assertEqual(program.wait_for_end(), self.SIGABRT)
        self.assertRegex(program.errors(), r"\Atarnwave-settings: [^\n]+\n\Z")

    def bent(self, *path_and_value):
        *path, value = path_and_value
        document = state_document()
        inside = document
        for name in path[:-1]:
            inside = inside[name]
        if value is None:
            del inside[path[-1]]
        else:
            inside[path[-1]] = value
        return document

    def test_a_document_that_cannot_be_loaded_ends_the_program(self):
        cases = {
            "no JSON": "{",
            "an empty body": "",
            "an array": [],
            "no settings": self.bent("settings", None),
            "settings that are a text": self.bent("settings", "none"),
            "no status": self.bent("status", None),
            "no modes": self.bent("settings", "content", "modes", None),
            "blocked addresses that are a text": self.bent("settings", "access", "banned", "x"),
            "a receiver without a serial": self.bent("settings", "receivers", [{"backend": "x"}]),
            "no directory": self.bent("status", "directory", None),
            "a listener without an address": self.bent("status", "listeners",
                                                       [{"number": 1, "seconds": 1}]),
            "a broker that is a text": self.bent("status", "broker", "yes"),
        }
        for when, document in cases.items():
            with self.subTest(when):
                service = self.scripted_service()
                service.answers("GET /api/state", 200, document)
                self.assert_ends_with_a_sentence(self.start())
                service.stop()

    def test_a_poll_that_brings_an_array_ends_the_program(self):
        service = self.scripted_service()
        program = self.open()
        service.answers("GET /api/state", 200, [])
        self.assert_ends_with_a_sentence(program)

    def test_a_refused_save_without_a_reason_ends_the_program(self):
        service = self.scripted_service()
        service.answers("PUT /api/settings", 409, {})
        program = self.open("station")
        program.type_into("Operator", "Alex").keys("ctrl+s")
        self.assert_ends_with_a_sentence(program)


class Exchange(Case):
    HEADER = [("Host", "tarnwave"), ("X-Tarnwave", "1"), ("Content-Type", "application/json")]

    def test_requests_carry_exactly_the_fields_of_the_contract(self):
        service = self.scripted_service()
        service.answers("PUT /api/settings", 200, {"restart": False})
        program = self.open("station")
        program.type_into("Operator", "Alex").save()
        state, save = (next(r for r in service.requests if r.command == method)
                       for method in ("GET", "PUT"))
        self.assertEqual((state.requestline, state.headers.items(), state.body),
                         ("GET /api/state HTTP/1.1", self.HEADER, b""))
        self.assertEqual((save.requestline, save.headers.items()),
                         ("PUT /api/settings HTTP/1.1",
                          [*self.HEADER, ("Content-Length", f"{len(save.body)}")]))
        program.quit()

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

    def test_debugging_prints_each_exchange_but_no_body(self):
        self.station("quiet")
        program = self.start(G_MESSAGES_DEBUG="tarnwave", G_DEBUG=None).wait_until_loaded()
        program.quit()
        said = program.output() + program.errors()
        self.assertRegex(said, r"GET /api/state.* 200")
        self.assertNotIn("owner@k1abc.example", said)


class Closing(Case):
    def test_closing_the_window_ends_the_program_with_0(self):
        self.station("quiet")
        for key in ("ctrl+w", "ctrl+q", "alt+F4"):
            with self.subTest(key=key):
                program = self.open()
                program.keys(key)
                self.assertEqual((program.wait_for_end(), program.errors()), (0, ""))

    def test_closing_the_owner_question_by_its_window_ends_the_program_with_1(self):
        self.station("not-owner")
        program = self.start()
        program.dialog()
        program.keys("alt+F4")
        self.assertEqual((program.wait_for_end(), program.errors()), (1, ""))


if __name__ == "__main__":
    unittest.main()
