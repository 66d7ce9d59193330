# SPDX-License-Identifier: MIT
"""The real program under the commands that remote_control.cpp describes."""
import json
import os
import subprocess
import threading

# Seconds. Far beyond what a loaded machine needs; a wait that reaches it has failed.
DEADLINE = 60


class Program:
    """The real program with its window under remote control. The only commands that it finds are
    those in the folder's "bin"."""

    def __init__(self, program, library, folder, socket_path):
        environment = dict(os.environ, TARNWAVE_SETTINGS_SOCKET=socket_path, LD_PRELOAD=library,
                           NO_AT_BRIDGE="1", G_DEBUG="fatal-warnings", PATH=str(folder / "bin"),
                           LC_ALL="C.UTF-8", HOME=str(folder))
        # Allows a preloaded library before the one of the sanitizer.
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

    def hear_until(self, condition):
        """Its first report that fulfils the condition; None when it has ended."""
        report = self.hear()
        while report is not None and not condition(report):
            report = self.hear()
        return report

    def do(self, *commands):
        """Its report of the last of these commands; None when it has ended. Where there is no
        listener to select the rest is left out."""
        for command in commands:
            self.tell(command)
            report = self.hear()
            if report is None or report.get("selected") is False:
                break
        return report

    def end(self):
        """Its exit status, below 0 for a signal, and what it said."""
        self.process.communicate(timeout=DEADLINE)
        self._guard.cancel()
        return self.process.returncode, self._errors.read_text()

    def close(self):
        self.do("close")
        return self.end()

    def kill(self):
        self._guard.cancel()
        self.process.kill()
        self.process.communicate()
