# SPDX-License-Identifier: MIT
"""The case of the end-to-end tests: a station, the real program, and a clean end for both.

The program is driven through its accessibility tree and through real keys, as a user drives it,
and runs in a folder of its own: private home, private socket, stand-ins for the system's commands.
Relies on a display with a window manager and a D-Bus session that nobody else uses; CTest brings
both (scripts/under-xvfb).
"""

import copy
import functools
import os
import pathlib
import re
import shutil
import tempfile
import unittest

from display import picture
from program import Program
from services import BUILD, ScriptedService, Station
from stand_in_service import REQUESTS

PICTURES = BUILD / "tests" / "e2e-failures"

# The station list's host, which is an option of the build.
HOST = re.search(r"^TARNWAVE_DIRECTORY_HOST:\w+=(.*)$", (BUILD / "CMakeCache.txt").read_text(),
                 re.MULTILINE).group(1)

STAND_INS = {
    # Remembers lingering in a file, as the login manager does.
    "loginctl": """case "$1" in
enable-linger) echo yes >"$folder/linger" ;;
disable-linger) rm -f "$folder/linger" ;;
show-user) if [ -f "$folder/linger" ]; then cat "$folder/linger"; else echo no; fi ;;
esac
""",
    "systemctl": "",
    "pkexec": "exit 127\n",
}


class Case(unittest.TestCase):
    """Gives each test a folder and stand-ins for commands, and checks that every program that the
    test starts ends cleanly."""

    maxDiff = None

    def __init__(self, methodName="runTest"):
        super().__init__(methodName)
        self._failed = False
        test = getattr(self, methodName, None)
        if test is not None:
            setattr(self, methodName, functools.partial(self._run_with_picture, test))

    def _run_with_picture(self, test):
        """Runs a test; when it fails, saves a picture of the screen as it was then."""
        try:
            test()
        except BaseException:
            self._failed = True
            picture(PICTURES / f"{self.id()}-{os.environ.get('LC_ALL', 'C')}.png")
            raise

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tarnwave-e2e."))
        self.addCleanup(shutil.rmtree, self.folder)
        self.socket_path = self.folder / "settings.sock"  # where Station listens
        for name in ("home", "config", "cache", "data", "bin"):
            (self.folder / name).mkdir()
        # Animations are off, so that a page is shown at once.
        (self.folder / "config" / "gtk-3.0").mkdir()
        (self.folder / "config" / "gtk-3.0" / "settings.ini").write_text(
            "[Settings]\ngtk-enable-animations=0\n")
        self.command_log = self.folder / "commands.log"
        self.command_log.touch()
        for name, script in STAND_INS.items():
            self.stand_in(name, script)
        self.programs = []

    def stand_in(self, name, script):
        """Puts a shell script in the place of a system command; each run is noted."""
        path = self.folder / "bin" / name
        path.unlink(missing_ok=True)
        path.write_text(f"#!/bin/sh\nfolder={self.folder}\n"
                        f"echo \"{name} $*\" >>{self.command_log}\n{script}")
        path.chmod(0o755)

    def commands(self, name):
        """The runs of a system command, in order, as they were written."""
        return re.findall(rf"^{name} .*$", self.command_log.read_text(), re.MULTILINE)

    def environment(self, **changes):
        """What the program finds in its environment."""
        environment = dict(os.environ)
        for name in ("NO_AT_BRIDGE", "LANGUAGE", "G_MESSAGES_DEBUG"):
            environment.pop(name, None)
        environment.update({
            "HOME": str(self.folder / "home"),
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "XDG_CACHE_HOME": str(self.folder / "cache"),
            "XDG_DATA_HOME": str(self.folder / "data"),
            "PATH": f"{self.folder / 'bin'}:{os.environ['PATH']}",
            "TARNWAVE_SETTINGS_SOCKET": str(self.socket_path),
            "GSETTINGS_BACKEND": "memory",
            "G_DEBUG": "fatal-warnings",
            "LC_ALL": os.environ.get("LC_ALL", "C.UTF-8"),
            "TZ": "UTC",
        })
        return {**environment, **changes}

    def station(self, scenario, *arguments):
        station = Station(self.folder, "--scenario", scenario, *arguments)
        self.addCleanup(station.stop)
        return station

    @staticmethod
    def state_document():
        """The state document of the tests, to be bent by one of them."""
        return copy.deepcopy(REQUESTS["GET /api/state"].reply)

    def scripted_service(self, document=None):
        """A service that answers the state with this document, and nothing else yet."""
        service = ScriptedService(self.socket_path)
        self.addCleanup(service.stop)
        service.answers("GET /api/state", 200, document or self.state_document())
        return service

    def start(self, *arguments, **environment):
        """Starts the program, and does not wait for its window."""
        program = Program(self.folder, self.environment(**environment), arguments)
        self.programs.append(program)
        return program

    def open(self, *arguments, **environment):
        """Starts the program and waits until its window shows the station."""
        return self.start(*arguments, **environment).wait_until_loaded()

    def tearDown(self):
        for program in self.programs:
            try:
                if program.process.poll() is None and not self._failed:
                    program.quit()
                    self.assertEqual((program.process.returncode, program.errors()), (0, ""),
                                     "how the program ended, and what it said")
            finally:
                program.kill()
