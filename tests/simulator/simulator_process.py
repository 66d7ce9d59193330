# SPDX-License-Identifier: MIT
"""The simulator in a process of its own, and requests to it."""

import collections
import http.client
import json
import os
import pathlib
import signal
import socket
import subprocess
import tempfile
import time

# No test depends on how long something takes; this only ends one that would never end.
LIMIT_S = 30

HEADER = {"Host": "tarnwave", "X-Tarnwave": "1", "Content-Type": "application/json"}

Reply = collections.namedtuple("Reply", "status header document")


class Simulator:
    """A running simulator on a socket in a folder, which is a private one unless it is given."""

    def __init__(self, program, *arguments, folder=None):
        self._private_folder = None if folder else tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(folder or self._private_folder.name)
        self.path = str(self.folder / "settings.sock")
        self._log_path = self.folder / "station.log"
        with open(self._log_path, "wb") as log:
            self.process = subprocess.Popen(
                [program, "--socket", self.path, *map(str, arguments)],
                stdin=subprocess.DEVNULL, stderr=log)
        # It takes connections as soon as the file is there.
        self.wait_until(lambda: os.path.exists(self.path))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        if self.process.poll() is None:
            self.end()
        if self._private_folder:
            self._private_folder.cleanup()

    def end(self, number=signal.SIGTERM):
        """Asks it to end; returns its exit status."""
        self.process.send_signal(number)
        return self.process.wait(LIMIT_S)

    def wait_until(self, condition):
        """Waits for something the simulator does; returns what the condition returned."""
        end = time.monotonic() + LIMIT_S
        while time.monotonic() < end and self.process.poll() is None:
            if result := condition():
                return result
            try:
                self.process.wait(0.005)  # nothing else tells when to look again
            except subprocess.TimeoutExpired:
                pass
        raise AssertionError("waited in vain; its log: " + self.log()[-2000:])

    def connect(self):
        connection = socket.socket(socket.AF_UNIX)
        connection.settimeout(LIMIT_S)
        connection.connect(self.path)
        return connection

    def request(self, method, target, body=None, header=None):
        """`body` is something to write as JSON, or None."""
        connection = http.client.HTTPConnection("")
        connection.sock = self.connect()
        connection.request(method, target, None if body is None else json.dumps(body),
                           HEADER if header is None else header)
        reply = connection.getresponse()
        document = json.loads(reply.read())
        connection.close()
        return Reply(reply.status, reply.headers, document)

    def state(self):
        reply = self.request("GET", "/api/state")
        assert reply.status == 200, reply
        return reply.document

    def log(self):
        return self._log_path.read_text(encoding="utf-8")
