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
import re
import signal
import sys
import tempfile

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


def one_fault_of_each_outcome():
    """The first fault of each outcome that takes no time and needs no change of the socket."""
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

    def wait_for_station(self):
        """Waits until the program that was just started shows the station on the air."""
        report = self.program.hear_until(lambda report: shows(report, ON_THE_AIR))
        check(report is not None, "ended with", self.program.end() if report is None else "")

    def close(self):
        status, said = self.program.close()
        check((status, said) == (0, ""), "closing ended with", status, said)
        self.program = None

    def open(self):
        """Starts the program and does every action once."""
        self.program = self.start()
        self.wait_for_station()
        for request in REQUESTS.values():
            self.program.do("edit Warm", *request.commands)
        self.program.do("edit Warm", *SAVE)
        self.descriptors = self.program.do("figures")["descriptors"]

    def run_action(self, kind, fault):
        request, made_by, none, refused, well = KINDS[kind]
        good_before = int(request != made_by)
        if not self.program:
            self.open()
        program = self.program
        edited = kind != "register"  # it saves edits first, with a request of its own
        if edited:
            program.do("edit Edited")
        self.service.requests.clear()
        self.script = [None] * good_before + [fault]
        report = program.do(*REQUESTS[made_by].commands)
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
        if edited and not (made_by == "PUT /api/settings" and succeeded):
            check((report["name"], report["unsaved"]) == ("Edited", True), "lost an edit:", report)
        self.check_usable(program)

    def check_usable(self, program):
        report = program.do("poll")
        check(shows(report, ON_THE_AIR), "a poll later it shows", report["texts"])
        report = program.do("edit Usable", *SAVE)
        check(shows(report, "Saved.") and not report["unsaved"], "a save later:", report)
        descriptors = program.do("figures")["descriptors"]
        check(descriptors == self.descriptors, "descriptors:", descriptors, "instead of",
              self.descriptors)

    def answer_question(self, response):
        self.program.tell(f"answer {response}")
        report = self.program.hear_until(lambda report: "dialog" in report)
        check(report is not None, "ended with", self.program.end() if report is None else "")
        check(f"Make {getpass.getuser()} the station owner?" in report["dialog"], "asks", report)

    def run_probe(self, fault):
        """The first request of all: a success is not read, since the form has its own request."""
        self.script = [fault]
        self.program = self.start()
        if fault["outcome"] in SUCCESSES:
            self.wait_for_station()
            self.close()
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
        self.wait_for_station()
        self.close()
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
    if forgotten := REQUESTS.keys() - {request for request, *_ in KINDS.values()}:
        sys.exit(f"what the window says of these requests is not known: {sorted(forgotten)}")
    faults = one_fault_of_each_outcome()
    with tempfile.TemporaryDirectory() as name:
        matrix = Matrix(program, library, pathlib.Path(name))
        met = [matrix.meet(kind, fault) for kind in ["probe", "wait", *KINDS]
               for fault in faults]
        if matrix.program:
            matrix.close()
    print(f"{sum(met)} of {len(met)} as expected: {len(faults)} outcomes, {len(KINDS) + 2} kinds")
    sys.exit(not all(met))


if __name__ == "__main__":
    main()
