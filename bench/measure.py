#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Usage: measure.py BUILD-FOLDER [--once] [start] [poll] [idle] [exchange]

Measures the program that was built in BUILD-FOLDER, by turns with its floor (docs/performance.md), and
prints one line for each figure; --once takes each figure from a single short run, to see that it can
be measured. Uses the display that DISPLAY names. With all subjects and without --once it also writes
the figures into docs/performance.md and draws docs/pictures/poll.svg.
"""

import json
import os
import pathlib
import socket
import statistics
import subprocess
import sys
import tempfile
import threading
import time

import report

PROJECT = pathlib.Path(__file__).resolve().parent.parent
LISTENERS = (1, 20, 200, 2000)
LIMIT_S = 60


def state_document(listeners, seconds):
    """The document in docs/state.json with that many listeners, as bytes."""
    document = json.loads((PROJECT / "docs" / "state.json").read_text(encoding="utf-8"))
    document["status"]["listeners"] = [
        {"number": number, "address": f"198.51.{number // 250}.{number % 250}",
         "seconds": seconds + number, "f": 7000000 + number * 100, "mode": "USB",
         "listening": True, "relayed": False} for number in range(1, listeners + 1)]
    return json.dumps(document, separators=(",", ":")).encode()


class Service:
    """Sends the given documents by turns, one for each request."""

    def __init__(self, folder, *documents):
        self.path = os.path.join(folder, "s")
        self.replies = [b"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
                        + str(len(document)).encode() + b"\r\n\r\n" + document
                        for document in documents]
        if os.path.exists(self.path):
            os.unlink(self.path)
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(self.path)
        self.listener.listen(64)
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        turn = 0
        while True:
            connection, _ = self.listener.accept()
            with connection:
                request = b""
                while not request.endswith(b"\r\n\r\n"):
                    received = connection.recv(4096)
                    if not received:
                        break
                    request += received
                if request:
                    connection.sendall(self.replies[turn % len(self.replies)])
                    turn += 1


class Bench:
    def __init__(self, build, folder, once):
        self.program = [build / "src" / "tarnwave-settings"]
        self.floor = [build / "bench" / "bench_floor"]
        self.exchange_program = build / "bench" / "bench_exchange"
        self.watch = build / "bench" / "libbench_watch.so"
        self.folder = folder
        self.once = once
        self.rounds = 1 if once else 5
        self.polls = 5 if once else 40
        self.style = os.path.join(folder, "style.css")
        self.figures = []

    def environment(self, service, **more):
        # No command of the system is found, so that the time of loginctl is not measured.
        return {**os.environ, "NO_AT_BRIDGE": "1", "PATH": "/nonexistent",
                "TARNWAVE_SETTINGS_SOCKET": service.path, **more}

    def run(self, command, service, **more):
        """Runs a command with the measuring library, and returns the library's report."""
        file = os.path.join(self.folder, "report")
        subprocess.run(command, check=True, timeout=LIMIT_S, env=self.environment(
            service, LD_PRELOAD=str(self.watch), BENCH_REPORT=file,
            BENCH_STARTED=str(time.monotonic_ns()), **more))
        with open(file, encoding="utf-8") as text:
            return json.load(text)

    def run_program(self, service, **more):
        return self.run(self.program, service, BENCH_TEXT="On the air · ", **more)

    def run_floor(self, service, **more):
        return self.run([*self.floor, str(self.widgets), self.style, service.path], service, **more)

    def prepare(self):
        """Finds out what the floor has to copy: the style rules and the number of widgets."""
        service = Service(self.folder, state_document(1, 60))
        self.widgets = self.run_program(service, BENCH_STYLE=self.style)["widgets"]
        self.run_floor(service)
        # Until a program that was just built is on the disk, its memory pages count as modified.
        os.sync()

    def note(self, subject, what, program, floor, unit):
        self.figures.append((subject, what, program, floor, unit))
        print(f"{subject:9} {what:38} {program:9.3f} {unit:4} floor {floor:9.3f} {program / floor:6.2f}",
              flush=True)

    def start(self):
        service = Service(self.folder, state_document(1, 60))
        program, floor = [], []
        for _ in range(self.rounds):
            program.append(self.run_program(service))
            floor.append(self.run_floor(service))

        def least(runs, key):
            return min(run[key] for run in runs)
        frame = least(floor, "first_frame_ms")
        self.note("start", "until the first frame", least(program, "first_frame_ms"), frame, "ms")
        self.note("start", "until the station's state is shown", least(program, "state_ms"), frame,
                  "ms")
        self.note("start", "memory of its own", least(program, "private_dirty_kb") / 1024,
                  least(floor, "private_dirty_kb") / 1024, "MiB")

    def polls_of(self, service):
        """The CPU time of a poll and its longest stall, each for the program and for the floor; and
        the number of frames that the program drew."""
        runs = {self.run_program: [], self.run_floor: []}
        for _ in range(1 if self.once else 3):
            for run, reports in runs.items():
                reports.append(run(service, BENCH_POLLS=str(self.polls)))

        def medians(key):
            return [statistics.median(value for each in reports for value in each[key])
                    for reports in runs.values()]
        return medians("polls_ms"), medians("stalls_ms"), sum(
            each["frames"] for each in runs[self.run_program])

    def poll(self):
        for listeners in LISTENERS:
            service = Service(self.folder, *(state_document(listeners, 60 + 3 * turn)
                                             for turn in range(2)))
            costs, stalls, _ = self.polls_of(service)
            people = f"{listeners} listener{'s' if listeners > 1 else ''}"
            self.note("poll", people, *costs, "ms")
            if listeners >= 200:
                self.note("poll", f"stall, {people}", *stalls, "ms")
        costs, _, frames = self.polls_of(Service(self.folder, state_document(200, 60)))
        self.note("poll", "nothing new, 200 listeners", *costs, "ms")
        if frames:
            sys.exit(f"A poll that brings nothing new drew {frames} frames.")

    def idle(self):
        """Measures the CPU time of program and floor in a minute, both at once, with a poll every
        three seconds as usual."""
        service = Service(self.folder, state_document(1, 60))
        commands = (self.program, [*self.floor, str(self.widgets), self.style, service.path])
        processes = [subprocess.Popen(command, env=self.environment(service)) for command in commands]

        def cpu_ms(process):
            file = pathlib.Path(f"/proc/{process.pid}/schedstat")
            return int(file.read_text(encoding="ascii").split()[0]) / 1e6
        span_s = 6 if self.once else 60
        try:
            time.sleep(6)
            before = [cpu_ms(process) for process in processes]
            time.sleep(span_s)
            spent = [(cpu_ms(process) - at_first) * 60 / span_s
                     for process, at_first in zip(processes, before)]
        finally:
            for process in processes:
                process.terminate()
                process.wait()
        self.note("idle", "a minute, 1 listener, nothing new", *spent, "ms")

    def exchange(self):
        service = Service(self.folder, state_document(20, 60))
        said = subprocess.run([self.exchange_program, service.path, "100" if self.once else "5000"],
                              check=True, capture_output=True, timeout=LIMIT_S).stdout
        cost = json.loads(said)
        self.note("exchange", "20 listeners", cost["program"], cost["floor"], "µs")


def main(build, arguments):
    subjects = [name for name in arguments if name != "--once"]
    all_subjects = ["start", "poll", "idle", "exchange"]
    if not set(subjects) <= set(all_subjects):
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory(prefix="tw-bench.") as folder:
        bench = Bench(pathlib.Path(build).resolve(), folder, "--once" in arguments)
        bench.prepare()
        for name in subjects or all_subjects:
            getattr(bench, name)()
    if not arguments:
        report.write(bench.figures, PROJECT / "docs" / "performance.md",
                     PROJECT / "docs" / "pictures" / "poll.svg")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
