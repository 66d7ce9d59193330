# SPDX-License-Identifier: MIT
"""A station service for tests: what it can be asked, its good answers and its faults.

REQUESTS is the list of the requests that the program makes; service_api_test.py compares it with
docs/service-api.yaml. FAULTS are those of the table faults.json that it can send.
"""
import http.server
import json
import pathlib
import socketserver
import sys
import threading

ROOT = pathlib.Path(__file__).resolve().parents[2]

# Those that take no time and need no change of the socket.
FAULTS = [fault for fault in json.loads((ROOT / "tests" / "faults" / "faults.json").read_text())
          if not fault.keys() & {"connection", "silent", "pause_s"}]


class Request:
    """One kind of request: a good answer, the commands for remote_control.cpp that make the program
    send it, and which answers the program reads. A broken answer that it reads ends the program."""

    def __init__(self, reply, *commands, reads_reply=False, reads_refusal=False):
        self.reply = reply
        self.commands = commands
        self.reads_reply = reads_reply
        self.reads_refusal = reads_refusal

    def ends_program(self, fault):
        return {"broken document": self.reads_reply,
                "refusal without a reason": self.reads_refusal}.get(fault["outcome"], False)


REQUESTS = {
    "GET /api/state": Request(json.loads((ROOT / "docs" / "state.json").read_text()), "poll",
                              reads_reply=True),
    "PUT /api/settings": Request({"restart": False}, "press Save changes", reads_reply=True,
                                 reads_refusal=True),
    "GET /api/devices": Request([{"backend": "sdrplay", "serial": "2305012345", "model": "RSPdx",
                                  "available": True}], "press Find devices", reads_reply=True),
    "POST /api/register": Request({"id": "4711"}, "fill", "press Register this station",
                                  reads_refusal=True),
    "POST /api/kick": Request({}, "listener", "press End session"),
    "POST /api/ban": Request({}, "listener", "agree Block address…"),
}


def reply_bytes(status, document):
    """A whole reply. A document that is a text is sent as it is."""
    body = (document if isinstance(document, str) else json.dumps(document)).encode()
    return b"HTTP/1.1 %d Reason\r\nContent-Type: application/json\r\nContent-Length: %d\r\n\r\n%s" \
        % (status, len(body), body)


def fault_bytes(fault, document):
    """What a fault sends in the place of a good answer."""
    body = json.dumps(document).encode()
    body += b" " * (fault.get("body_size", 0) - len(body))
    parts = {b"{size}": b"%d" % len(body), b"{hex}": b"%x" % len(body),
             b"{half}": body[:len(body) // 2], b"{body}": body, b"{filler}": b""}
    reply = fault["send"].encode()
    if "header_size" in fault:
        header = reply.partition(b"{body}")[0]
        for name, part in parts.items():
            header = header.replace(name, part)
        parts[b"{filler}"] = b"x" * (fault["header_size"] - len(header))
    for name, part in parts.items():
        reply = reply.replace(name, part)
    return reply


class Handler(http.server.BaseHTTPRequestHandler):
    """One request: `key` is like "GET /api/state"."""

    def answer(self):
        self.body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        self.key = f"{self.command} {self.path}"
        self.server.requests.append(self)
        self.wfile.write(self.server.answer(self))

    do_GET = do_PUT = do_POST = answer

    def log_message(self, *_):
        pass


class StandInService(socketserver.ThreadingUnixStreamServer):
    """Listens from now on. `answer` takes a request's handler and returns the reply's bytes."""

    daemon_threads = True
    request_queue_size = 16

    def __init__(self, path, answer):
        super().__init__(str(path), Handler)
        self.answer = answer
        self.requests = []
        threading.Thread(target=self.serve_forever, args=(0.01,), daemon=True).start()

    def handle_error(self, *arguments):
        """The program may have gone before its reply; anything else is an error of the test."""
        if not isinstance(sys.exc_info()[1], ConnectionError):
            super().handle_error(*arguments)

    def stop(self):
        self.shutdown()
        self.server_close()
