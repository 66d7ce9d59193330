#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Every kind of request of the real program meets one fault of each outcome.

fault_matrix_test.py PROGRAM LIBRARY: the library is the preloaded remote_control.cpp. That each
fault of faults.json has its outcome is a test of the link. Here the program ends with its sentence,
or says what came of the request and lives on: what was typed is still there, no descriptor is left
open, and a poll and a save succeed. Needs a display (scripts/under-xvfb brings one).
"""
import getpass
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import threading

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from stand_in_service import (  # noqa: E402 (the path comes first)
    FAULTS, REQUESTS, StandInService, fault_bytes, reply_bytes)

# Seconds. Far beyond what a loaded machine needs; a wait that reaches it has failed.
DEADLINE = 60

ON_THE_AIR = "On the air"
NOT_ANSWERING = "The Tarnwave service is not answering"

# The kinds of request that the main loop makes, the command that makes one, how many good answers
# it has before, and what the window says of no answer, of a refusal and of a success.
ENDED = "Ended the session of 198.51.100.4."
BLOCKED = "Blocked 198.51.100.4."
NO_DEVICES = "The Tarnwave service did not answer."
ACTIONS = {
    "poll": ("GET /api/state", "poll", 0, NOT_ANSWERING, NOT_ANSWERING, ON_THE_AIR),
    "load": ("GET /api/state", "save", 1, "Saved.", "Saved.", "Saved."),
    "save": ("PUT /api/settings", "save", 0, "Not saved: the Tarnwave service did not answer.",
             "Not saved: No.", "Saved."),
    "find": ("GET /api/devices", "find", 0, NO_DEVICES, NO_DEVICES, "1 found."),
    "register": ("POST /api/register", "register", 0,
                 "Not registered: the service did not answer.", "Not registered: No.",
                 "Registered. "),
    "end": ("POST /api/kick", "end", 0, ENDED, ENDED, ENDED),
    "block": ("POST /api/ban", "block", 0, BLOCKED, BLOCKED, BLOCKED),
}


# Where nobody reads the document, a broken one is as good as any.
SUCCESSES = ("good answer", "broken document")


def one_fault_of_each_outcome():
    """The first of each that needs neither time nor a socket that is not there."""
    chosen = {}
    for fault in FAULTS:
        if not fault.keys() & {"connection", "silent", "pause_s"}:
            chosen.setdefault(fault["outcome"], fault)
    return list(chosen.values())


class Failure(Exception):
    def __init__(self, what):
        super().__init__(what if len(what) < 2000 else what[:2000] + "…")


def check(condition, *what):
    if not condition:
        raise Failure(" ".join(str(part) for part in what))


def shows(report, words):
    return any(text.startswith(words) for text in report.get("texts", ()))


class Program:
    """The real program under remote control."""

    def __init__(self, program, library, folder, socket_path):
        environment = dict(os.environ, TARNWAVE_SETTINGS_SOCKET=socket_path, LD_PRELOAD=library,
                           NO_AT_BRIDGE="1", G_DEBUG="fatal-warnings", PATH=str(folder / "bin"),
                           LC_ALL="C.UTF-8", HOME=str(folder))
        # The sanitizer is content with a library ahead of its own.
        environment["ASAN_OPTIONS"] = ":".join(
            filter(None, [environment.get("ASAN_OPTIONS"), "verify_asan_link_order=0"]))
        self._errors = folder / "stderr"
        with open(self._errors, "wb") as errors:
            self.process = subprocess.Popen([program], env=environment, stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, stderr=errors, text=True)
        self._guard = threading.Timer(DEADLINE, self.process.kill)
        self._guard.start()

    def tell(self, command):
        try:
            self.process.stdin.write(command + "\n")
            self.process.stdin.flush()
        except BrokenPipeError:
            pass  # its end is noticed when it is read

    def hear(self):
        """Its next report; None when it has ended."""
        self._guard.cancel()
        self._guard = threading.Timer(DEADLINE, self.process.kill)
        self._guard.start()
        line = self.process.stdout.readline()
        return json.loads(line) if line else None

    def hear_until(self, condition):
        """Its first report that fulfils the condition."""
        report = self.hear()
        while report is not None and not condition(report):
            report = self.hear()
        check(report is not None, "ended with", self.end() if report is None else "")
        return report

    def do(self, command):
        self.tell(command)
        return self.hear()

    def end(self):
        """Its exit status, below 0 for a signal, and what it said."""
        status = self.process.wait(DEADLINE)
        self._guard.cancel()
        return status, self._errors.read_text()

    def close(self):
        self.do("close")
        check(self.end() == (0, ""), "closing ended with", self.end())

    def kill(self):
        self._guard.cancel()
        self.process.kill()
        self.process.wait()


class Matrix:
    def __init__(self, program, library, folder):
        self.program_path = program
        self.library = library
        self.folder = folder
        self.script = []  # for the next requests: None for a good answer, a fault or a reply
        self.service = StandInService(folder / "socket", self.answer)
        self.program = None
        self.descriptors = None
        # The administrator's command does nothing, and well; there is no other command.
        (folder / "bin").mkdir()
        (folder / "bin" / "pkexec").write_text("#!/bin/sh\n")
        (folder / "bin" / "pkexec").chmod(0o755)

    def answer(self, request):
        good = REQUESTS[request.key].reply
        step = self.script.pop(0) if self.script else None
        if isinstance(step, bytes):
            return step
        return fault_bytes(step, good) if step else reply_bytes(200, good)

    def start(self):
        return Program(self.program_path, self.library, self.folder,
                       self.service.server_address)

    def open(self):
        """The program with the station on its pages; every action has been done once."""
        self.program = self.start()
        self.program.hear_until(lambda report: shows(report, ON_THE_AIR))
        for _, command, *_ in ACTIONS.values():
            self.program.do("edit Warm")
            self.program.do(command)
        self.program.do("edit Warm")
        self.descriptors = self.program.do("save")["descriptors"]

    def run_action(self, kind, fault):
        request, command, good_before, none, refused, well = ACTIONS[kind]
        if not self.program:
            self.open()
        program = self.program
        edited = kind != "register"  # it saves edits first, with a request of its own
        if edited:
            program.do("edit Edited")
        self.service.requests.clear()
        self.script = [None] * good_before + [fault]
        report = program.do(command)
        check(self.service.requests[good_before].key == request, "asked something else")
        if REQUESTS[request].ends_program(fault):
            check(report is None, "lived on with", report)
            self.program = None
            status, said = program.end()
            check(status == -signal.SIGABRT, "ended with", status, "and said", said)
            check(re.fullmatch(r"tarnwave-settings: [^\n]+\n", said), "said", repr(said))
            return
        check(report is not None, "ended with", program.end() if report is None else "")
        succeeded = fault["outcome"] in SUCCESSES
        words = none if fault["outcome"] == "no answer" else well if succeeded else refused
        check(shows(report, words), f"shows no “{words}” but", report["texts"])
        if edited and not (command == "save" and succeeded):
            check((report["name"], report["unsaved"]) == ("Edited", True), "lost an edit:", report)
        self.check_usable(program)

    def check_usable(self, program):
        report = program.do("poll")
        check(shows(report, ON_THE_AIR), "a poll later it shows", report["texts"])
        program.do("edit Usable")
        report = program.do("save")
        check(shows(report, "Saved.") and not report["unsaved"], "a save later:", report)
        check(report["descriptors"] == self.descriptors, "descriptors:", report["descriptors"],
              "instead of", self.descriptors)

    def answer_question(self, response):
        self.program.tell(f"answer {response}")
        report = self.program.hear_until(lambda report: "dialog" in report)
        check(f"Make {getpass.getuser()} the station owner?" in report["dialog"], "asks", report)

    def run_probe(self, fault):
        """The first request of all: a success is not read, since the form has its own request."""
        self.script = [fault]
        self.program = self.start()
        if fault["outcome"] in SUCCESSES:
            self.program.hear_until(lambda report: shows(report, ON_THE_AIR))
            self.program.close()
        else:
            self.answer_question(-7)  # closed
            check(self.program.end() == (1, ""), "ended with", self.program.end())
        self.program = None

    def run_wait(self, fault):
        """The wait for the service to accept the new owner ends at the first success."""
        self.service.requests.clear()
        self.script = [reply_bytes(403, {"error": "No."}), fault]
        self.program = self.start()
        self.answer_question(-3)  # accepted
        self.program.hear_until(lambda report: shows(report, ON_THE_AIR))
        self.program.close()
        self.program = None
        # The probe, the try that met the fault, the next one, the probe and the form.
        wanted = 4 if fault["outcome"] in SUCCESSES else 5
        check(len(self.service.requests) == wanted, "asked", len(self.service.requests), "times")

    def meet(self, kind, fault):
        run = {"probe": self.run_probe, "wait": self.run_wait}.get(kind)
        try:
            run(fault) if run else self.run_action(kind, fault)
        except Failure as failure:
            print(f"{kind}: {fault['fault']}: {failure}", flush=True)
            if self.program:
                self.program.kill()
                self.program = None
            self.script = []
            return False
        return True


def main():
    program, library = sys.argv[1:]
    if forgotten := REQUESTS.keys() - {request for request, *_ in ACTIONS.values()}:
        sys.exit(f"no action of the window makes these requests: {sorted(forgotten)}")
    faults = one_fault_of_each_outcome()
    with tempfile.TemporaryDirectory() as name:
        matrix = Matrix(program, library, pathlib.Path(name))
        met = [matrix.meet(kind, fault) for kind in ["probe", "wait", *ACTIONS]
               for fault in faults]
        if matrix.program:
            matrix.program.close()
    print(f"{sum(met)} of {len(met)} as expected: {len(faults)} outcomes, {len(ACTIONS) + 2} kinds")
    sys.exit(not all(met))


if __name__ == "__main__":
    main()
