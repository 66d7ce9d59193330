#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The running simulator, over its socket.

Usage: simulator_server_test.py PROGRAM [unittest arguments]
"""

import http.client
import json
import os
import pathlib
import re
import signal
import stat
import subprocess
import sys
import tempfile
import unittest

from simulator_process import HEADER, LIMIT_S, Simulator

PROGRAM = None
MANUAL_PAGE = (pathlib.Path(__file__).resolve().parents[2]
               / "data" / "man" / "tarnwave-station-simulator.1.in")


def run(*arguments):
    """Runs the simulator to its end."""
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=LIMIT_S,
                          stdin=subprocess.DEVNULL, check=False)


def request_bytes(method, target, body_size=0):
    """A request without its body."""
    fields = {**HEADER, "Content-Length": body_size}
    head = "".join(f"{name}: {value}\r\n" for name, value in fields.items())
    return f"{method} {target} HTTP/1.1\r\n{head}\r\n".encode()


def read_reply(connection):
    reply = http.client.HTTPResponse(connection)
    reply.begin()
    return reply.status, json.loads(reply.read())


class Socket(unittest.TestCase):
    def assert_refused(self, path, words):
        result = run("--socket", path)
        self.assertEqual((result.returncode, result.stderr), (1, words + "\n"))

    def test_is_for_this_user_only(self):
        with Simulator(PROGRAM) as simulator:
            mode = os.stat(simulator.path).st_mode
            self.assertTrue(stat.S_ISSOCK(mode))
            self.assertEqual(stat.S_IMODE(mode), 0o600)

    def test_is_removed_at_a_clean_end(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with Simulator(PROGRAM) as simulator:
                self.assertEqual(simulator.end(number), 0)
                self.assertFalse(os.path.exists(simulator.path))

    def test_replaces_one_that_was_left_behind(self):
        with tempfile.TemporaryDirectory() as folder:
            with Simulator(PROGRAM, folder=folder) as simulator:
                simulator.end(signal.SIGKILL)
                self.assertTrue(os.path.exists(simulator.path))
            with Simulator(PROGRAM, folder=folder) as simulator:
                simulator.wait_until(lambda: "Playing" in simulator.log())
                self.assertEqual(simulator.request("GET", "/api/state").status, 200)

    def test_leaves_alone_one_that_is_in_use(self):
        with Simulator(PROGRAM) as simulator:
            self.assert_refused(simulator.path,
                                f"Somebody else listens on {simulator.path} already.")
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)

    def test_leaves_alone_what_is_no_socket(self):
        with tempfile.NamedTemporaryFile() as file:
            self.assert_refused(file.name, f"{file.name} is there already and is no socket.")
            self.assertTrue(os.path.exists(file.name))

    def test_needs_a_path_that_fits(self):
        self.assert_refused("/tmp/" + "x" * 103, "The socket's path is longer than 107 bytes.")


class Exchange(unittest.TestCase):
    def test_a_connection_that_stalls_delays_no_other(self):
        with Simulator(PROGRAM) as simulator, simulator.connect() as silent, \
                simulator.connect() as stalled, simulator.connect() as deaf:
            stalled.sendall(request_bytes("PUT", "/api/settings", 1000))
            # Far more replies than fit into the socket's buffer, and nobody reads them.
            deaf.setblocking(False)
            try:
                while True:
                    deaf.send(request_bytes("GET", "/api/state"))
            except BlockingIOError:
                pass
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)
            silent.sendall(request_bytes("GET", "/api/devices"))
            self.assertEqual(read_reply(silent)[0], 200)

    def test_a_delayed_reply_comes_and_holds_up_no_end(self):
        with Simulator(PROGRAM, "--scenario", "slow", "--delay-ms", "20") as simulator:
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)
        with Simulator(PROGRAM, "--delay-ms", "600000") as simulator, \
                simulator.connect() as connection:
            connection.sendall(request_bytes("GET", "/api/state"))
            simulator.wait_until(lambda: "GET /api/state 200" in simulator.log())
            self.assertEqual(simulator.end(), 0)

    def test_what_is_no_request_is_refused_and_the_connection_closed(self):
        with Simulator(PROGRAM) as simulator, simulator.connect() as connection:
            connection.sendall(b"\x00\x01 nonsense\r\n\r\n")
            status, document = read_reply(connection)
            self.assertEqual(status, 400)
            self.assertIn("This is not an HTTP request", document["error"])
            self.assertEqual(connection.recv(1), b"")

    def test_a_body_above_8_mib_is_refused(self):
        with Simulator(PROGRAM) as simulator, simulator.connect() as connection:
            connection.sendall(request_bytes("PUT", "/api/settings", 8 * 1024 * 1024 + 1))
            self.assertEqual(read_reply(connection),
                             (413, {"error": "The body is larger than 8 MiB."}))

    def test_a_client_that_goes_before_its_reply_does_no_harm(self):
        with Simulator(PROGRAM) as simulator:
            for _ in range(20):
                with simulator.connect() as connection:
                    connection.sendall(request_bytes("GET", "/api/state"))
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)


class Log(unittest.TestCase):
    def test_has_a_line_for_each_request(self):
        with Simulator(PROGRAM) as simulator:
            simulator.request("GET", "/api/state")
            simulator.request("POST", "/api/kick", {"number": 100000})
            self.assertEqual(simulator.log(), f"Playing on-air on {simulator.path}\n"
                                              "GET /api/state 200\n"
                                              "POST /api/kick 404\n")


class Life(unittest.TestCase):
    def test_goes_on_by_itself(self):
        with Simulator(PROGRAM, "--speed", "500") as simulator:
            first = {listener["number"] for listener in simulator.state()["status"]["listeners"]}
            simulator.wait_until(lambda: first.isdisjoint(
                listener["number"] for listener in simulator.state()["status"]["listeners"]))

    def test_goes_on_by_its_step_at_each_request(self):
        with Simulator(PROGRAM, "--speed", "0", "--step", "10") as simulator:
            ages = [{listener["number"]: listener["seconds"]
                     for listener in simulator.state()["status"]["listeners"]} for _ in range(2)]
            self.assertEqual({ages[1][number] - ages[0][number] for number in ages[0]}, {10})

    def test_keeps_its_settings_over_a_restart(self):
        with tempfile.TemporaryDirectory() as folder:
            state_file = os.path.join(folder, "settings.json")
            with Simulator(PROGRAM, "--state", state_file, folder=folder) as simulator:
                settings = simulator.state()["settings"]
                settings["station"]["name"] = "Elsewhere"
                self.assertEqual(simulator.request("PUT", "/api/settings", settings).status, 200)
            with Simulator(PROGRAM, "--state", state_file, folder=folder) as simulator:
                self.assertEqual(simulator.state()["settings"], settings)

    def test_a_signal_hands_the_station_over(self):
        with Simulator(PROGRAM, "--scenario", "not-owner") as simulator:
            self.assertEqual(simulator.request("GET", "/api/state").status, 403)
            simulator.process.send_signal(signal.SIGUSR1)
            simulator.wait_until(lambda: simulator.request("GET", "/api/state").status == 200)


class CommandLine(unittest.TestCase):
    def test_help_version_and_scenarios_are_printed(self):
        self.assertIn("--socket PATH", run("--help").stdout)
        self.assertRegex(run("--version").stdout, r"^tarnwave-station-simulator \d+\.\d+\.\d+\n$")
        self.assertRegex(run("--list-scenarios").stdout, r"(?m)^  on-air  ")

    def test_the_manual_page_has_the_options_of_the_help(self):
        page = MANUAL_PAGE.read_text(encoding="utf-8").replace("\\-", "-")
        options = " ".join(re.findall(r"^\.B[IR]? (--.*)$", page, re.MULTILINE))
        self.assertEqual(set(re.findall("--[a-z-]+", options)),
                         set(re.findall("--[a-z-]+", run("--help").stdout)))


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
