# SPDX-License-Identifier: MIT
"""Starts the simulator for a test, and speaks to it in plain bytes."""

import http.client
import json
import os
import shutil
import signal
import socket
import subprocess
import tempfile
import time

# No test depends on how long something takes; this only ends one that would never end.
LIMIT_S = 30

HEADER = {"Host": "tarnwave", "X-Tarnwave": "1", "Content-Type": "application/json"}


class Reply:
    def __init__(self, status, header, body):
        self.status = status
        self.header = header
        self.body = body

    def document(self):
        return json.loads(self.body)


def request_bytes(method, target, body=None, header=None):
    """Bytes of a request. `body` is bytes, or something to write as JSON, or None."""
    if body is not None and not isinstance(body, bytes):
        body = json.dumps(body).encode()
    fields = dict(HEADER if header is None else header)
    if method != "GET":
        fields["Content-Length"] = str(len(body or b""))
    head = "".join(f"{name}: {value}\r\n" for name, value in fields.items())
    return f"{method} {target} HTTP/1.1\r\n{head}\r\n".encode() + (body or b"")


def read_reply(stream):
    """Reads one reply from a buffered stream; None at the end of the stream."""
    line = stream.readline()
    if not line:
        return None
    header = http.client.parse_headers(stream)
    return Reply(int(line.split()[1]), header, stream.read(int(header["Content-Length"])))


class Simulator:
    """A running simulator on a socket in a private folder; both are gone after `with`."""

    def __init__(self, program, *arguments, folder=None):
        self.own_folder = folder is None
        self.folder = folder or tempfile.mkdtemp(prefix="simulator-")
        self.path = os.path.join(self.folder, "socket")
        self.log_path = os.path.join(self.folder, "log")
        self.log = open(self.log_path, "ab")
        self.process = subprocess.Popen(
            [program, "--socket", self.path, *arguments],
            stdin=subprocess.DEVNULL, stderr=self.log)

    def __enter__(self):
        try:
            self.wait_until(self._listens)
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.log.close()
        if self.own_folder:
            shutil.rmtree(self.folder)

    def _listens(self):
        if self.process.poll() is not None:
            raise AssertionError("the simulator ended: " + self.log_text())
        try:
            self.connect().close()
        except OSError:
            return False
        return True

    def wait_until(self, condition):
        """Waits for something the simulator does; returns what the condition returned."""
        end = time.monotonic() + LIMIT_S
        while time.monotonic() < end:
            ended = self.process.poll() is not None
            if result := condition():
                return result
            if ended:
                break
            try:
                self.process.wait(0.005)  # nothing else tells when to look again
            except subprocess.TimeoutExpired:
                pass
        raise AssertionError("waited in vain; its log: " + self.log_text()[-2000:])

    def connect(self):
        connection = socket.socket(socket.AF_UNIX)
        connection.settimeout(LIMIT_S)
        try:
            connection.connect(self.path)
        except OSError:
            connection.close()
            raise
        return connection

    def request(self, method, target, body=None, header=None):
        with self.connect() as connection, connection.makefile("rb") as stream:
            connection.sendall(request_bytes(method, target, body, header))
            return read_reply(stream)

    def state(self):
        reply = self.request("GET", "/api/state")
        assert reply.status == 200, reply.body
        return reply.document()

    def log_text(self):
        with open(self.log_path, encoding="utf-8") as log:
            return log.read()

    def end(self, number=signal.SIGTERM):
        """Asks it to end; returns its exit status."""
        self.process.send_signal(number)
        return self.process.wait(LIMIT_S)
