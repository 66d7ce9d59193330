# SPDX-License-Identifier: MIT
"""The two services of the tests: the simulated station, and one that says what a test wants."""

import json
import os
import pathlib
import sys
import threading

from accessible import DEADLINE

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tests" / "simulator"), str(ROOT / "tests" / "support")]
from simulator_process import Simulator  # noqa: E402 (the path comes first)
from stand_in_service import StandInService, reply_bytes  # noqa: E402 (the path comes first)

BUILD = pathlib.Path(os.environ.get("TARNWAVE_BUILD", ROOT / "build" / "test"))


class Station(Simulator):
    """The simulator, which keeps the bodies of requests."""

    def __init__(self, folder, *arguments):
        super().__init__(BUILD / "simulator" / "tarnwave-station-simulator",
                         "--record", folder / "bodies", *arguments, folder=folder)

    def bodies(self, name):
        """The bodies of one kind of request, in order: name is like "PUT-settings"."""
        return [json.loads(path.read_text())
                for path in sorted((self.folder / "bodies").glob(f"*-{name}.json"))]


class ScriptedService:
    """A station service that answers word for word what a test tells it to."""

    def __init__(self, socket_path):
        self.gate = threading.Event()  # closed: answers wait for it
        self.gate.set()
        self._path = socket_path
        self._answers = {}
        self._service = StandInService(socket_path, self._answer)

    def answers(self, key, status, document):
        """From now on, for requests like "GET /api/state"."""
        self._answers[key] = reply_bytes(status, document)

    def count(self, key):
        return sum(1 for request in self._service.requests if request.key == key)

    def stop(self):
        if os.path.exists(self._path):
            self.gate.set()
            os.unlink(self._path)
            self._service.stop()

    def _answer(self, request):
        self.gate.wait(DEADLINE)
        return self._answers[request.key]
