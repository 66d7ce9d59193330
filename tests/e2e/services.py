# SPDX-License-Identifier: MIT
"""The two services of the tests: the simulated station, and one that says what a test wants."""

import json
import os
import pathlib
import re
import socket
import subprocess
import sys
import threading

from accessible import DEADLINE, wait_for

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "support"))
from stand_in_service import StandInService, reply_bytes  # noqa: E402 (the path comes first)

BUILD = pathlib.Path(os.environ.get("TARNWAVE_BUILD", ROOT / "build" / "test"))
SIMULATOR = BUILD / "simulator" / "tarnwave-station-simulator"


class Station:
    """The simulator, on a socket of its own."""

    def __init__(self, folder, socket_path, *arguments):
        self.socket_path = socket_path
        self.log_path = folder / "station.log"
        self.record = folder / "bodies"
        self._log = open(self.log_path, "a", encoding="utf-8")
        self.process = subprocess.Popen(
            [SIMULATOR, "--socket", socket_path, "--record", self.record, *map(str, arguments)],
            stdin=subprocess.DEVNULL, stdout=self._log, stderr=self._log)
        wait_for(self._answers, "the simulated station to answer")

    def _answers(self):
        if self.process.poll() is not None:
            raise AssertionError(f"the simulator ended: {self.log_path.read_text()}")
        with socket.socket(socket.AF_UNIX) as probe:
            try:
                probe.connect(str(self.socket_path))
            except OSError:
                return False
        return True

    def requests(self):
        """What was asked so far, in order, like ("GET", "/api/state", 200)."""
        lines = re.findall(r"^([A-Z]+) (/\S+) (\d+)$", self.log_path.read_text(), re.MULTILINE)
        return [(method, target, int(status)) for method, target, status in lines]

    def count(self, key):
        return sum(1 for method, target, _ in self.requests() if f"{method} {target}" == key)

    def bodies(self, name):
        """The bodies of one kind of request, in order: name is like "PUT-settings"."""
        return [json.loads(path.read_text()) for path in sorted(self.record.glob(f"*-{name}.json"))]

    def stop(self):
        if self.process.poll() is None:
            self.process.terminate()
        self.process.wait(DEADLINE)
        self._log.close()  # closed twice is closed
        if os.path.exists(self.socket_path):
            os.unlink(self.socket_path)


class ScriptedService:
    """A station service that answers word for word what a test tells it to."""

    def __init__(self, socket_path):
        self.gate = threading.Event()  # closed: answers wait for it
        self.gate.set()
        self._path = socket_path
        self._answers = {}
        self._service = StandInService(socket_path, self._answer)
        self.requests = self._service.requests

    def answers(self, key, status, document):
        """From now on, for requests like "GET /api/state"."""
        self.answers_in_turn(key, [(status, document)])

    def answers_in_turn(self, key, answers):
        """One answer after the other; the last one stays."""
        self._answers[key] = list(answers)

    def count(self, key):
        return sum(1 for request in self.requests if request.key == key)

    def stop(self):
        if os.path.exists(self._path):
            self.gate.set()
            os.unlink(self._path)
            self._service.stop()

    def _answer(self, request):
        self.gate.wait(DEADLINE)
        answers = self._answers[request.key]
        return reply_bytes(*(answers.pop(0) if len(answers) > 1 else answers[0]))
