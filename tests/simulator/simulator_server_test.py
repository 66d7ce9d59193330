#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The running simulator, over its socket.

Usage: simulator_server_test.py PROGRAM [unittest arguments]
"""

import os
import signal
import stat
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from simulator_process import HEADER, LIMIT_S, Simulator, read_reply, request_bytes

PROGRAM = None


def run(*arguments):
    """Runs the simulator to its end."""
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=LIMIT_S,
                          stdin=subprocess.DEVNULL, check=False)


class Socket(unittest.TestCase):
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
                simulator.process.kill()
                simulator.process.wait()
                self.assertTrue(os.path.exists(simulator.path))
            with Simulator(PROGRAM, folder=folder) as simulator:
                self.assertEqual(simulator.request("GET", "/api/state").status, 200)

    def test_leaves_alone_one_that_is_in_use(self):
        with Simulator(PROGRAM) as simulator:
            second = run("--socket", simulator.path)
            self.assertEqual(second.returncode, 1)
            self.assertEqual(second.stderr,
                             f"Somebody else listens on {simulator.path} already.\n")
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)

    def test_takes_connections_as_soon_as_it_is_there(self):
        for _ in range(10):
            with tempfile.TemporaryDirectory(prefix="simulator-") as folder:
                simulator = Simulator(PROGRAM, folder=folder)
                try:
                    simulator.wait_until(lambda: os.path.exists(simulator.path))
                    simulator.connect().close()
                finally:
                    simulator.__exit__()

    def test_leaves_alone_what_is_no_socket(self):
        with tempfile.NamedTemporaryFile() as file:
            result = run("--socket", file.name)
            self.assertEqual(result.returncode, 1)
            self.assertEqual(result.stderr, f"{file.name} is there already and is no socket.\n")
            self.assertTrue(os.path.exists(file.name))

    def test_needs_a_path_that_fits(self):
        result = run("--socket", "/tmp/" + "x" * 103)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr, "The socket's path is longer than 107 bytes.\n")


class Exchange(unittest.TestCase):
    def test_a_connection_that_stalls_delays_no_other(self):
        with Simulator(PROGRAM) as simulator, simulator.connect() as silent, \
                simulator.connect() as stalled, simulator.connect() as deaf:
            stalled.sendall(request_bytes("PUT", "/api/settings", b"x" * 1000)[:-500])
            # Far more replies than fit into the socket's buffer, and nobody reads them.
            deaf.setblocking(False)
            try:
                while True:
                    deaf.send(request_bytes("GET", "/api/state"))
            except BlockingIOError:
                pass
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)
            silent.sendall(request_bytes("GET", "/api/devices"))
            with silent.makefile("rb") as stream:
                self.assertEqual(read_reply(stream).status, 200)

    def test_a_delayed_reply_comes_and_holds_up_no_end(self):
        with Simulator(PROGRAM, "--scenario", "slow", "--delay-ms", "20") as simulator:
            self.assertEqual(simulator.request("GET", "/api/state").status, 200)
        with Simulator(PROGRAM, "--delay-ms", "600000") as simulator, \
                simulator.connect() as connection:
            connection.sendall(request_bytes("GET", "/api/state"))
            simulator.wait_until(lambda: "GET /api/state 200" in simulator.log_text())
            self.assertEqual(simulator.end(), 0)

    def test_what_is_no_request_is_refused_and_the_connection_closed(self):
        with Simulator(PROGRAM) as simulator, simulator.connect() as connection, \
                connection.makefile("rb") as stream:
            connection.sendall(b"\x00\x01 nonsense\r\n\r\n")
            reply = read_reply(stream)
            self.assertEqual(reply.status, 400)
            self.assertIn("This is not an HTTP request", reply.document()["error"])
            self.assertIsNone(read_reply(stream))

    def test_a_body_above_8_mib_is_refused(self):
        with Simulator(PROGRAM) as simulator, simulator.connect() as connection, \
                connection.makefile("rb") as stream:
            fields = "".join(f"{name}: {value}\r\n" for name, value in HEADER.items())
            connection.sendall(("PUT /api/settings HTTP/1.1\r\n" + fields +
                                f"Content-Length: {8 * 1024 * 1024 + 1}\r\n\r\n").encode())
            reply = read_reply(stream)
            self.assertEqual(reply.status, 413)
            self.assertEqual(reply.document(), {"error": "The body is larger than 8 MiB."})

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
            simulator.request("GET", "/nothing")
            self.assertEqual(simulator.log_text(),
                             f"Playing on-air on {simulator.path}\n"
                             "GET /api/state 200\n"
                             "POST /api/kick 404\n"
                             "GET /nothing 404\n")


class Life(unittest.TestCase):
    def test_goes_on_by_itself(self):
        with Simulator(PROGRAM, "--speed", "500") as simulator:
            first = {listener["number"] for listener in simulator.state()["status"]["listeners"]}
            simulator.wait_until(lambda: first.isdisjoint(
                listener["number"] for listener in simulator.state()["status"]["listeners"]))

    def test_stands_still_at_speed_zero(self):
        with Simulator(PROGRAM, "--speed", "0") as simulator:
            self.assertEqual(simulator.request("GET", "/api/state").body,
                             simulator.request("GET", "/api/state").body)

    def test_goes_on_with_each_request_when_asked(self):
        with Simulator(PROGRAM, "--speed", "0", "--step", "7") as simulator:
            before, after = ({listener["number"]: listener["seconds"]
                              for listener in simulator.state()["status"]["listeners"]}
                             for _ in range(2))
            stayed = before.keys() & after.keys()
            self.assertTrue(stayed)
            self.assertEqual({after[number] - before[number] for number in stayed}, {7})

    def test_a_signal_hands_the_station_over(self):
        with Simulator(PROGRAM, "--scenario", "not-owner") as simulator:
            self.assertEqual(simulator.request("GET", "/api/state").status, 403)
            simulator.process.send_signal(signal.SIGUSR1)
            simulator.wait_until(lambda: simulator.request("GET", "/api/state").status == 200)

    def test_a_file_starts_the_broker(self):
        with tempfile.TemporaryDirectory() as folder:
            marker = os.path.join(folder, "broker")
            with Simulator(PROGRAM, "--scenario", "broker-down", "--broker-file", marker,
                           "--speed", "20") as simulator:
                self.assertFalse(simulator.state()["status"]["broker"])
                with open(marker, "w", encoding="utf-8"):
                    pass
                self.assertTrue(simulator.state()["status"]["broker"])
                simulator.wait_until(lambda: simulator.state()["status"]["receivers"])


class Files(unittest.TestCase):
    def test_settings_registration_and_bans_are_kept_over_a_restart(self):
        with tempfile.TemporaryDirectory() as folder:
            arguments = ("--scenario", "first-run", "--state", os.path.join(folder, "state"))
            with Simulator(PROGRAM, *arguments) as simulator:
                settings = simulator.state()["settings"]
                settings["station"]["name"] = "Valley SDR"
                settings["network"]["port"] = 9000.0
                reply = simulator.request("PUT", "/api/settings", settings)
                self.assertEqual((reply.status, reply.document()), (200, {"restart": True}))
                reply = simulator.request("POST", "/api/register", {"email": "a@b.example"})
                self.assertEqual(reply.status, 200)
                reply = simulator.request("POST", "/api/ban", {"address": "203.0.113.77"})
                self.assertEqual(reply.status, 200)
                simulator.process.kill()
            with Simulator(PROGRAM, *arguments) as simulator:
                document = simulator.state()
                settings = document["settings"]
                self.assertEqual(settings["station"]["name"], "Valley SDR")
                self.assertEqual(settings["network"]["port"], 9000)
                self.assertEqual(settings["directory"]["email"], "a@b.example")
                self.assertEqual(settings["access"]["banned"][-1], "203.0.113.77")
                self.assertNotEqual(document["status"]["directory"]["state"], "not registered")


class CommandLine(unittest.TestCase):
    def test_help_version_and_scenarios_are_printed(self):
        self.assertIn("--socket PATH", run("--help").stdout)
        self.assertRegex(run("--version").stdout, r"^tarnwave-station-simulator \d+\.\d+\.\d+\n$")
        self.assertRegex(run("--list-scenarios").stdout, r"(?m)^  on-air  ")


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
