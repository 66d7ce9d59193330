#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Every kind of request of the real program meets every fault of faults.json.

fault_matrix_test.py PROGRAM LIBRARY KIND…: the library is the preloaded remote_control.cpp, the
kinds are those of ACTIONS, "probe" and "wait". What has to come of a fault follows from what the
link makes of it (faults.json) and from the kind of request: the program ends with its sentence, or
says what it says and lives on: then what was typed is still there, no descriptor is left open, and
a poll and a save succeed. Needs a display (scripts/under-xvfb brings one).
"""
import errno
import getpass
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from received_request import received_request  # noqa: E402 (the path comes first)

FAULTS = json.loads((HERE / "faults.json").read_text())

# Seconds. Far beyond what a loaded machine needs; a wait that reaches it has failed.
DEADLINE = 60

REFUSAL = b'{"error":"No."}'
ON_THE_AIR = "On the air"
NOT_ANSWERING = "The Tarnwave service is not answering"


GOOD = {
    ("GET", "/api/state"): (HERE.parent / "support" / "state.json").read_bytes(),
    ("PUT", "/api/settings"): b'{"restart":false}',
    ("GET", "/api/devices"): b'[{"backend":"sdrplay","serial":"2305012345","model":"RSPdx",'
                             b'"available":true}]',
    ("POST", "/api/register"): b"{}",
    ("POST", "/api/kick"): b"{}",
    ("POST", "/api/ban"): b"{}",
}


def reply_of(fault, good):
    """The bytes of a fault in the place of a good reply with this body."""
    body = good + b" " * (fault.get("body_size", 0) - len(good))
    parts = {"{size}": b"%d" % len(body), "{hex}": b"%x" % len(body),
             "{half}": body[:len(body) // 2], "{body}": body}
    reply = fault["send"].encode()
    if "header_size" in fault:
        without = reply.replace(b"{filler}", b"").replace(b"{size}", parts["{size}"])
        header = without.partition(b"{body}")[0]
        reply = reply.replace(b"{filler}", b"x" * (fault["header_size"] - len(header)))
    for name, part in parts.items():
        reply = reply.replace(name.encode(), part)
    return reply


def pieces_of(reply):
    """Bytes one by one at both ends, where they matter; the middle as it is."""
    return [reply[:1], reply[1:2], reply[2:-2], reply[-2:-1], reply[-1:]]


class Service:
    """Answers well, but for what its script says about the next connections: None for a good
    answer, a fault of the table, or a status with its body."""

    def __init__(self, path):
        self.path = str(path)
        self.requests = []
        self._script = []
        self._listener = socket.socket(socket.AF_UNIX)
        self._listener.bind(self.path)
        self._listener.listen(16)
        threading.Thread(target=self._serve, daemon=True).start()

    def follow(self, script):
        # A connection that fails never comes here: the library sees to it.
        self._script = [step for step in script
                        if not isinstance(step, dict) or "connection" not in step]

    def be_well(self):
        self._script = []
        if os.path.exists(self.path + ".away"):  # left by a program that was killed
            os.replace(self.path + ".away", self.path)

    def _serve(self):
        while True:
            connection, _ = self._listener.accept()
            with connection:
                try:
                    self._answer(connection)
                except OSError as error:
                    if error.errno not in (errno.EPIPE, errno.ECONNRESET):
                        raise

    def _answer(self, connection):
        request = received_request(connection)
        if request is None:
            return
        self.requests.append(request.line)
        fault = self._script.pop(0) if self._script else None
        good = GOOD[request.method, request.target]
        if fault is None:
            fault = (200, good)
        if isinstance(fault, tuple):
            connection.sendall(b"HTTP/1.1 %d Reason\r\nContent-Length: %d\r\n\r\n%s" %
                               (fault[0], len(fault[1]), fault[1]))
            return
        reply = reply_of(fault, good)
        if "gap_ms" in fault:
            for piece in pieces_of(reply):
                connection.sendall(piece)
                self._wait_for_hang_up(connection, fault["gap_ms"] / 1000)
        else:
            connection.sendall(reply)
        if fault.get("silent"):
            self._wait_for_hang_up(connection, DEADLINE)

    @staticmethod
    def _wait_for_hang_up(connection, limit):
        connection.settimeout(limit)
        try:
            connection.recv(1)
        except TimeoutError:
            pass
        connection.settimeout(DEADLINE)


class Failure(Exception):
    def __init__(self, what):
        super().__init__(what if len(what) < 2000 else what[:2000] + "…")


class Program:
    """The real program under remote control."""

    def __init__(self, program, library, folder, socket_path, first_commands):
        environment = dict(os.environ, TARNWAVE_SETTINGS_SOCKET=socket_path, LD_PRELOAD=library,
                           NO_AT_BRIDGE="1", G_DEBUG="fatal-warnings", PATH=str(folder / "bin"),
                           LC_ALL="C.UTF-8", HOME=str(folder),
                           TARNWAVE_TEST_START="\n".join(first_commands))
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
        return self.end()

    def kill(self):
        self._guard.cancel()
        self.process.kill()
        self.process.wait()


# The kinds of request that the main loop makes: the command, what comes before it on the same
# command, and how it takes an answer: (words when there is none, words of a refusal, words of a
# success); a refusal or success of None is not read. "Edited" is typed first unless `fresh`.
ACTIONS = {
    "poll": {"command": "poll", "none": NOT_ANSWERING, "refusal": NOT_ANSWERING, "well": None,
             "reads": True},
    "load": {"command": "save", "before": [None], "none": "Saved.", "refusal": "Saved.",
             "well": "Saved.", "reads": True},
    "save": {"command": "save", "none": "Not saved: the Tarnwave service did not answer.",
             "refusal": "Not saved: No.", "well": "Saved.", "reads": True, "reads_refusal": True},
    "find": {"command": "find", "none": "The Tarnwave service did not answer.",
             "refusal": "The Tarnwave service did not answer.",
             "well": "1 found.", "reads": True},
    "register": {"command": "register", "fresh": True,
                 "none": "Not registered: the service did not answer.",
                 "refusal": "Not registered: No.", "well": "Registered. ",
                 "reads_refusal": True},
    "end": {"command": "end", "none": "Ended the session of 198.51.100.4.",
            "refusal": "Ended the session of 198.51.100.4.",
            "well": "Ended the session of 198.51.100.4."},
    "block": {"command": "block", "none": "Blocked 198.51.100.4.",
              "refusal": "Blocked 198.51.100.4.", "well": "Blocked 198.51.100.4."},
}


def ends_by_contract(action, fault):
    """Whether a reply has to end the program: it is read, and is not what the contract says."""
    body = fault.get("body")
    if fault["status"] == 200:
        return action.get("reads", False) and body != "own"
    return fault["status"] != 0 and action.get("reads_refusal", False) and body == "empty"


def expected_words(action, fault):
    if fault["status"] == 0:
        return action["none"]
    return action["well"] if fault["status"] == 200 else action["refusal"]


def check(condition, *what):
    if not condition:
        raise Failure(" ".join(str(part) for part in what))


def shows(report, words):
    return any(text.startswith(words) for text in report["texts"])


def check_ended(status, said):
    check(status == -signal.SIGABRT, "ended with", status, "and said", said)
    check(re.fullmatch(r"tarnwave-settings: [^\n]+\n", said), "said", repr(said))


def preparations(fault, fine_before=0, once=False):
    """The commands that let the program meet a fault, but for what the service does."""
    if "connection" in fault:
        return [f"connection {fault['connection']} {fine_before} {'once' if once else ''}".strip()]
    return [f"limit {fault['limit_ms']}"] if "limit_ms" in fault else []


class Matrix:
    def __init__(self, program, library, folder):
        self.program_path = program
        self.library = library
        self.folder = folder
        self.service = Service(folder / "socket")
        self.program = None
        self.descriptors = None
        self._write_commands()

    def _write_commands(self):
        """The administrator's command does nothing, and well; there is no other."""
        (self.folder / "bin").mkdir()
        (self.folder / "home").mkdir()
        path = self.folder / "bin" / "pkexec"
        path.write_text("#!/bin/sh\n")
        path.chmod(0o755)

    def start(self, *first_commands):
        return Program(self.program_path, self.library, self.folder, self.service.path,
                       first_commands)

    def open(self):
        """The program with the station on its pages; every action has been done once."""
        self.program = self.start()
        report = self.program.hear()
        check(report is not None and shows(report, ON_THE_AIR), "opened with", report,
              "" if report else self.program.end())
        for action in ACTIONS.values():
            if not action.get("fresh"):
                self.program.do("edit Warm")
            self.program.do(action["command"])
        self.program.do("edit Warm")
        self.descriptors = self.program.do("save")["descriptors"]

    def close(self):
        if self.program:
            check(self.program.close() == (0, ""), "closing ended with", self.program.end())
            self.program = None

    def run_action(self, kind, fault):
        action = ACTIONS[kind]
        if not self.program:
            self.open()
        program = self.program
        if not action.get("fresh"):
            program.do("edit Edited")
        before = action.get("before", [])
        self.service.requests.clear()
        self.service.follow([*before, fault])
        for command in preparations(fault, len(before)):
            program.do(command)
        report = program.do(action["command"])
        if ends_by_contract(action, fault):
            check(report is None, "lived on with", report)
            self.program = None
            check_ended(*program.end())
            self.service.be_well()
            return
        check(report is not None, "ended with", program.end() if report is None else "")
        words = expected_words(action, fault)
        check(words is None or shows(report, words), f"shows no “{words}” but", report["texts"])
        loaded = action.get("fresh") or (action["command"] == "save" and fault["status"] == 200)
        if not loaded:
            check((report["name"], report["unsaved"]) == ("Edited", True), "lost an edit:", report)
        self._check_usable(program)

    def _check_usable(self, program):
        program.do("connection")
        program.do("limit 0")
        self.service.be_well()
        report = program.do("poll")
        check(shows(report, ON_THE_AIR), "a poll later it shows", report["texts"])
        program.do("edit Usable")
        report = program.do("save")
        check(shows(report, "Saved.") and not report["unsaved"], "a save later:", report)
        check(report["descriptors"] == self.descriptors, "descriptors:", report["descriptors"],
              "instead of", self.descriptors)

    def run_probe(self, fault):
        """The first request of all."""
        self.service.follow([fault])
        program = self.program = self.start(*preparations(fault))
        if fault["status"] == 200:
            # Whatever it holds: the form has a request of its own.
            report = program.hear()
            while report and "texts" not in report or report and not shows(report, ON_THE_AIR):
                report = program.hear()
            check(report is not None, "ended with", program.end() if not report else "")
            self.close()
        else:
            program.tell("answer -7")  # closed
            report = self._dialog(program)
            words = ("The Tarnwave service is not running." if fault.get("connection") == "absent"
                     else f"Make {getpass.getuser()} the station owner?")
            check(words in report["dialog"], "asks", report)
            check(program.end() == (1, ""), "ended with", program.end())
            self.program = None
        self.service.be_well()

    def run_wait(self, fault):
        """The wait for the service to take the new owner."""
        self.service.requests.clear()
        self.service.follow([(403, REFUSAL), fault])
        # In time for the start: while it waits for the command, the program hears nothing.
        program = self.program = self.start(*preparations(fault, fine_before=1, once=True))
        program.tell("answer -3")  # accepted
        self._dialog(program)
        report = program.hear()
        while report and not (report.get("texts") and shows(report, ON_THE_AIR)):
            report = program.hear()
        check(report is not None, "ended with", program.end() if not report else "")
        self.close()
        # The probe, the try that the fault met, the next one, the probe and the form. What does not
        # reach the service is not seen by it.
        wanted = 4 if fault["status"] == 200 or "connection" in fault else 5
        check(len(self.service.requests) >= wanted, "asked only", self.service.requests)
        self.service.be_well()

    @staticmethod
    def _dialog(program):
        report = program.hear()
        while report and "dialog" not in report:
            report = program.hear()
        check(report is not None, "no question; ended with", program.end() if not report else "")
        return report

    def run(self, kind, fault):
        if kind == "probe":
            self.run_probe(fault)
        elif kind == "wait":
            self.run_wait(fault)
        else:
            self.run_action(kind, fault)


def main():
    program, library, *kinds = sys.argv[1:]
    failures = 0
    for kind in kinds:
        met = 0
        with tempfile.TemporaryDirectory() as name:
            matrix = Matrix(program, library, pathlib.Path(name))
            for fault in FAULTS:
                try:
                    matrix.run(kind, fault)
                    met += 1
                except Failure as failure:
                    print(f"{kind}: {fault['fault']}: {failure}", flush=True)
                    failures += 1
                    if matrix.program:
                        matrix.program.kill()
                        matrix.program = None
                    matrix.service.be_well()
            try:
                matrix.close()
            except Failure as failure:
                print(f"{kind}: at the end: {failure}", flush=True)
                failures += 1
        print(f"{kind}: {met} of {len(FAULTS)} faults as expected", flush=True)
    sys.exit(failures > 0)


if __name__ == "__main__":
    main()
