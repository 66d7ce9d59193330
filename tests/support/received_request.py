# SPDX-License-Identifier: MIT
"""Reads what the program sends, for the services that stand in for the station's in tests."""
import re


class Request:
    """One request: its first line, that line's parts, its header fields and its body."""

    def __init__(self, head, body):
        self.body = body
        self.line, *self.fields = head.decode().split("\r\n")
        self.method, self.target, _ = self.line.split(" ")


def received_request(connection):
    """The request of a connection; None when the program hangs up before its end."""
    received = b""
    size = None
    while size is None or len(received) < size:
        piece = connection.recv(65536)
        if not piece:
            return None
        received += piece
        if size is None and (end := received.find(b"\r\n\r\n")) >= 0:
            head = received[:end]
            length = re.search(rb"\r\nContent-Length: (\d+)", head)
            size = end + 4 + (int(length.group(1)) if length else 0)
    return Request(head, received[end + 4:])
