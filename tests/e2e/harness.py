# SPDX-License-Identifier: MIT
"""What the end-to-end tests share: a station, the real program, and verbs to use its window.

The program is driven through its accessibility tree and through real keys, as a user drives it,
and runs in a folder of its own: private home, private socket, stand-ins for the system's commands.
Relies on a display with a window manager and a D-Bus session that nobody else uses; CTest brings
both (scripts/under-xvfb). Nothing here waits for a time: every wait is for a condition, with a
deadline that a healthy run never reaches.
"""

import ctypes
import functools
import getpass
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (the version comes first)

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "support"))
from stand_in_service import StandInService, reply_bytes  # noqa: E402 (the path comes first)

BUILD = pathlib.Path(os.environ.get("TARNWAVE_BUILD", ROOT / "build" / "test"))
PROGRAM = BUILD / "src" / "tarnwave-settings"
SIMULATOR = BUILD / "simulator" / "tarnwave-station-simulator"
PICTURES = BUILD / "tests" / "e2e-failures"

# The station list's host, a choice of the build.
HOST = re.search(r"^TARNWAVE_DIRECTORY_HOST:\w+=(.*)$", (BUILD / "CMakeCache.txt").read_text(),
                 re.MULTILINE).group(1)
USER = getpass.getuser()
PAGES = ["overview", "station", "receivers", "listeners", "internet"]
TITLES = {name: name.capitalize() for name in PAGES}

# Seconds. Far beyond what a loaded machine needs; a wait that reaches it has failed.
DEADLINE = 30

Role = Atspi.Role
State = Atspi.StateType
Relation = Atspi.RelationType

# Reads of a program that waits for a slow service, or for its turn, wait with it.
Atspi.set_timeout(DEADLINE * 1000, DEADLINE * 1000)


# --- Waiting ---------------------------------------------------------------------------------


def turn_loop(milliseconds=15):
    """Lets events from the accessibility bus arrive, for a moment at most."""
    context = GLib.MainContext.default()
    over = []
    source = GLib.timeout_add(milliseconds, lambda: over.append(True) and False)
    while not over:
        context.iteration(True)
    del source


def wait_for(condition, what):
    """Waits until `condition()` is true and returns its result. `what` is told when it is not."""
    deadline = time.monotonic() + DEADLINE
    last_error = None
    while True:
        try:
            result = condition()
            if result:
                return result
        except (GLib.Error, AttributeError, IndexError, StopIteration) as error:
            last_error = error  # a widget came or went while it was being read
        if time.monotonic() > deadline:
            words = what() if callable(what) else what
            raise AssertionError(f"waited in vain for {words}" +
                                 (f" (last: {last_error!r})" if last_error else ""))
        turn_loop()


# --- Accessible widgets ----------------------------------------------------------------------


def children(accessible):
    for index in range(accessible.get_child_count()):
        child = accessible.get_child_at_index(index)
        if child is not None:
            yield child


def walk(accessible):
    yield accessible
    # A table's cells are read by row and column.
    if accessible.get_role() != Role.TABLE:
        for child in children(accessible):
            yield from walk(child)


def walk_shown(accessible):
    """The widgets that are not hidden, those that must be scrolled to included."""
    yield accessible
    if accessible.get_role() != Role.TABLE:
        for child in children(accessible):
            if child.get_state_set().contains(State.VISIBLE):
                yield from walk_shown(child)


def has_state(accessible, state):
    accessible.clear_cache()  # what is remembered here may be older than the window
    return accessible.get_state_set().contains(state)


def is_sensitive(accessible):
    return has_state(accessible, State.SENSITIVE)


def related(accessible, relation_type):
    """The accessibles at the other end of a relation, in order."""
    targets = []
    accessible.clear_cache()
    for relation in accessible.get_relation_set():
        if relation.get_relation_type() == relation_type:
            targets += [relation.get_target(i) for i in range(relation.get_n_targets())]
    return targets


def label_of(accessible):
    """What a screen reader calls the widget: the name of its label, or else its own."""
    labels = related(accessible, Relation.LABELLED_BY)
    return " ".join(label.get_name() for label in labels) or accessible.get_name()


def description_of(accessible):
    return " ".join(target.get_name() for target in related(accessible, Relation.DESCRIBED_BY))


def text_in(accessible):
    return Atspi.Text.get_text(accessible, 0, -1)


def extents(accessible):
    return Atspi.Component.get_extents(accessible, Atspi.CoordType.SCREEN)


def is_showing(accessible):
    return has_state(accessible, State.SHOWING)


# --- Announcements ---------------------------------------------------------------------------


class Announcements:
    """Collects what a screen reader would be told, in order."""

    def __init__(self):
        self.texts = []
        self._listener = Atspi.EventListener.new(self._take)
        self._listener.register("object:announcement")

    def _take(self, event):
        self.texts.append(event.any_data)

    def stop(self):
        self._listener.deregister("object:announcement")


# --- X ---------------------------------------------------------------------------------------


def xdotool(*arguments):
    result = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True,
                            timeout=DEADLINE)
    return result.stdout.strip()


def key(*names):
    """Presses keys one after the other, each like "ctrl+s", in the window that has the focus."""
    xdotool("key", "--delay", "5", *names)


def type_keys(text):
    """Types a text with real keys; a line feed is the Return key."""
    for index, line in enumerate(text.split("\n")):
        if index > 0:
            key("Return")
        if line:
            xdotool("type", "--delay", "5", line)


def picture(path, window="root"):
    path.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["import", "-window", str(window), str(path)], check=False, timeout=DEADLINE,
                   stderr=subprocess.DEVNULL)


def window_size(window):
    """Of an X window's inside."""
    fields = dict(line.split("=", 1) for line in
                  xdotool("getwindowgeometry", "--shell", window).split())
    return int(fields["WIDTH"]), int(fields["HEIGHT"])


class ClassHint(ctypes.Structure):
    """As Xutil.h has it."""

    _fields_ = [("name", ctypes.c_char_p), ("window_class", ctypes.c_char_p)]


def window_class(window):
    """By which names a desktop finds the program of an X window."""
    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    display = ctypes.c_void_p(xlib.XOpenDisplay(None))
    hint = ClassHint()
    xlib.XGetClassHint(display, ctypes.c_ulong(int(window)), ctypes.byref(hint))
    xlib.XCloseDisplay(display)
    return hint.name.decode(), hint.window_class.decode()


# --- Processes -------------------------------------------------------------------------------


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

    def remove_obstacle(self):
        """Forwards the port, starts the broker, hands over: whatever the scenario waits for."""
        self.process.send_signal(signal.SIGUSR1)

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


def state_document():
    """A complete state document of a small station on the air, to be bent by a test."""
    return {
        "settings": {
            "station": {"name": "Hilltop SDR", "callsign": "K1ABC", "operator": "", "location": "",
                        "grid": "EM95", "antenna": "", "contact": "", "description": "",
                        "banner": ""},
            "attach": False,
            "receivers": [{"backend": "sdrplay", "serial": "1905034F2A", "model": "SDRplay RSP1",
                           "lo": 7000000, "hi": 7300000, "enabled": True}],
            "listeners": {"max": 20, "per_address": 3, "session_minutes": 60,
                          "cooldown_minutes": 0, "idle_minutes": 30},
            "content": {"modes": ["USB", "LSB"], "block_fm_broadcast": True,
                        "block_am_broadcast": False},
            "access": {"banned": []},
            "relay": {"enabled": False, "key": ""},
            "network": {"port": 8073},
            "directory": {"listed": True, "url": "", "id": "1042", "email": "owner@k1abc.example"},
        },
        "status": {
            "broker": True,
            "receivers": [{"device": "SDRplay RSP1", "attached": False, "lo": 7000000,
                           "hi": 7300000}],
            "started": [{"running": True}],
            "listeners": [],
            "directory": {"state": "checked in", "reachable": True,
                          "address": "203.0.113.17:8073"},
            "relay": {"state": "off"},
            "https": {"state": ""},
        },
    }


class Program:
    """The real program, and its window as its user sees it."""

    def __init__(self, folder, environment, arguments=(), wrapper=()):
        self._out = folder / f"program-{time.monotonic_ns()}.out"
        self._error = self._out.with_suffix(".err")
        with open(self._out, "wb") as out, open(self._error, "wb") as error:
            self.process = subprocess.Popen([*wrapper, PROGRAM, *arguments], env=environment,
                                            stdin=subprocess.DEVNULL, stdout=out, stderr=error)
        self.pid = self.process.pid
        self._application = None

    # What it says and how it ends.

    def output(self):
        return self._out.read_text()

    def errors(self):
        return self._error.read_text()

    def wait_for_end(self):
        """Waits for its end and returns its exit status, below 0 for a signal."""
        wait_for(lambda: self.process.poll() is not None, "the program to end")
        return self.process.returncode

    # The tree.

    def application(self):
        if self._application is None:
            self._application = wait_for(self._find_application, self._why_no_window)
        return self._application

    def _find_application(self):
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended with {self.process.returncode}: "
                                 f"{self.errors()}")
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for application in children(desktop):
            if application.get_process_id() == self.pid and application.get_child_count():
                return application
        return None

    def _why_no_window(self):
        return f"the program's window ({self.errors() or 'it says nothing'})"

    def windows(self):
        """What is on the screen: the settings window first, dialogs after it."""
        return [child for child in self._top_levels() if is_showing(child)]

    def overlay(self):
        """The list of keys, on the screen or soon there."""
        return wait_for(lambda: next((w for w in self.windows() if w.get_name() !=
                                      "Tarnwave settings"), None), "the overlay")

    def frame(self):
        """The settings window itself."""
        return next(w for w in self._top_levels() if w.get_name() == "Tarnwave settings")

    def _top_levels(self):
        self.application().clear_cache()
        return list(children(self.application()))

    def dialog(self):
        """The dialog on the screen, waited for."""
        return wait_for(self.find_dialog, "a dialog")

    def find_dialog(self):
        return next((w for w in self.windows()
                     if w.get_role() in (Role.ALERT, Role.DIALOG)), None)

    def dialog_texts(self):
        """The dialog's sentences: the bold one, then the plain one."""
        return [a.get_name() for a in walk(self.dialog()) if a.get_role() == Role.LABEL]

    def dialog_buttons(self):
        return [a.get_name() for a in walk(self.dialog()) if a.get_role() == Role.PUSH_BUTTON]

    def everything(self, role=None, inside=None):
        """The showing widgets, in the order of the tree."""
        return [a for a in walk(inside or self.frame())
                if (role is None or a.get_role() == role) and is_showing(a)]

    def find(self, role, name=None, inside=None, at=0):
        """The widget of that role and name (its own or its label's), or None."""
        found = [a for a in self.everything(role, inside) if name is None or label_of(a) == name]
        return found[at] if len(found) > at else None

    def get(self, role, name=None, inside=None, at=0):
        """The same, waited for."""
        return wait_for(lambda: self.find(role, name, inside, at),
                        lambda: f"a {Atspi.role_get_name(role)} called “{name}”")

    # The parts of the window.

    def content(self):
        return self.frame().get_child_at_index(0)

    def header_labels(self):
        return [a.get_name() for a in walk(self.content().get_child_at_index(0))
                if a.get_role() == Role.LABEL]

    def header(self):
        """The header line: on the air, or why not."""
        return self.header_labels()[3]

    def title(self):
        return self.header_labels()[1]

    def footer(self):
        return self.content().get_child_at_index(2).get_child_at_index(0).get_name()

    def body(self):
        """The page that is shown, with all that can be scrolled to."""
        return self.content().get_child_at_index(1).get_child_at_index(1).get_child_at_index(0)

    def shown_page(self):
        title = self.find(Role.LABEL, inside=self.body())
        return title.get_name().lower() if title else None

    def labels(self):
        """All the texts of the page, in order; those below the edge too."""
        return [a.get_name() for a in walk_shown(self.body()) if a.get_role() == Role.LABEL]

    def is_unsaved(self):
        return is_sensitive(self.find(Role.PUSH_BUTTON, "Save changes"))

    # What a user does.

    def page(self, name):
        """Turns to a page by its name in the sidebar."""
        sidebar = self.get(Role.LIST_BOX)
        Atspi.Selection.select_child(sidebar, PAGES.index(name))
        wait_for(lambda: self.shown_page() == name, f"the page {name}")
        return self

    def press(self, name, at=0):
        """Presses a button as soon as it can be pressed."""
        button = wait_for(lambda: self.find_button(name, at),
                          f"a button “{name}” that can be pressed")
        Atspi.Action.do_action(button, 0)
        return self

    def find_button(self, name, at=0):
        """The button of that name, wherever the page is scrolled to, if it can be pressed now."""
        for window in reversed(self.windows()):  # dialogs come after the window below them
            buttons = [a for a in walk_shown(window)
                       if a.get_role() == Role.PUSH_BUTTON and a.get_name() == name]
            if len(buttons) > at:
                return buttons[at] if is_sensitive(buttons[at]) else None
        return None

    def answer(self, name):
        """Presses a button of the dialog on the screen, and waits until the dialog is gone."""
        dialog = self.dialog()
        button = wait_for(lambda: self.find(Role.PUSH_BUTTON, name, inside=dialog),
                          f"the dialog's button “{name}”")
        Atspi.Action.do_action(button, 0)
        wait_for(lambda: self.process.poll() is not None or not is_showing(dialog),
                 "the dialog to go")
        return self

    def field(self, role, label, at=0):
        """A field of the page by its label, wherever the page is scrolled to."""
        def search():
            found = [a for a in walk_shown(self.body())
                     if a.get_role() == role and label_of(a) == label]
            return found[at] if len(found) > at else None
        return wait_for(search, f"a {Atspi.role_get_name(role)} called “{label}”")

    def entry(self, label):
        return self.field(Role.TEXT, label)

    def spin(self, label, at=0):
        return self.field(Role.SPIN_BUTTON, label, at)

    def switch(self, label):
        return self.field(Role.TOGGLE_BUTTON, label)

    def check(self, label):
        return self.field(Role.CHECK_BOX, label)

    def type_into(self, label, text):
        Atspi.EditableText.set_text_contents(self.entry(label), text)
        return self

    def text_of(self, label):
        return text_in(self.entry(label))

    def set_number(self, label, value, at=0):
        Atspi.Value.set_current_value(self.spin(label, at), value)
        return self

    def number_of(self, label, at=0):
        return Atspi.Value.get_current_value(self.spin(label, at))

    def toggle(self, label, role=Role.TOGGLE_BUTTON):
        """Flips a switch or a check box and waits until it has moved."""
        widget = self.field(role, label)
        before = has_state(widget, State.CHECKED)
        Atspi.Action.do_action(widget, 0)
        wait_for(lambda: has_state(widget, State.CHECKED) != before, f"“{label}” to move")
        return self

    def is_on(self, label, role=Role.TOGGLE_BUTTON):
        return has_state(self.field(role, label), State.CHECKED)

    def focus(self, accessible):
        """Gives a widget the keyboard."""
        self.activate()
        wait_for(lambda: Atspi.Component.grab_focus(accessible) and
                 has_state(accessible, State.FOCUSED), f"the focus on “{label_of(accessible)}”")
        return accessible

    def type_over(self, accessible, text):
        """Types a text in the place of the one that a field has."""
        self.focus(accessible)
        key("ctrl+a")
        type_keys(text)
        return accessible

    def focused(self):
        """The widget that has the keyboard, in whichever window."""
        for window in reversed(self.windows()):
            for accessible in walk(window):
                if has_state(accessible, State.FOCUSED) and \
                        has_state(accessible, State.FOCUSABLE):
                    return accessible
        return None

    def activate(self):
        """Waits until the window gets the keys that are pressed, or what stands in front of it: a
        dialog that is on the screen does not have them yet."""
        def front_is_active():
            return has_state([window for window in self.windows() if window.get_role() in
                              (Role.FRAME, Role.ALERT, Role.DIALOG)][-1], State.ACTIVE)
        wait_for(front_is_active, "the window to be active")
        return self

    def keys(self, *names):
        """Presses keys in the program's window."""
        self.activate()
        key(*names)
        return self

    def wait_for_header(self, text):
        wait_for(lambda: self.header() == text,
                 lambda: f"the header “{text}”; it is “{self.header()}”")
        return self

    def wait_for_footer(self, text):
        wait_for(lambda: self.footer() == text,
                 lambda: f"the footer “{text}”; it is “{self.footer()}”")
        return self

    def wait_for_label(self, text):
        wait_for(lambda: text in self.labels(),
                 lambda: f"the text “{text}”; there are {self.labels()}")
        return self

    def wait_until_loaded(self):
        """Until the form shows the station: the header has left its first words."""
        wait_for(lambda: self.header() != "Connecting to the Tarnwave service…",
                 "the station's state")
        return self.activate()

    def save(self):
        """Saves with the keyboard, successfully."""
        self.keys("ctrl+s")
        wait_for(lambda: not self.is_unsaved(), lambda: f"the save; it says “{self.footer()}”")
        return self.wait_for_footer("Saved.")

    def poll(self):
        """Asks the service for news at once."""
        return self.keys("F5")

    def resize(self, width, height):
        """Asks for a size; the window takes it, or the least it can. Waits for its content."""
        before = window_size(self.window_id())
        xdotool("windowsize", "--sync", self.window_id(), width, height)
        wait_for(lambda: window_size(self.window_id()) != before, "another size")
        wait_for(lambda: extents(self.content()).height == window_size(self.window_id())[1] and
                 extents(self.content()).width == window_size(self.window_id())[0],
                 "the content to follow")
        return window_size(self.window_id())

    def window_id(self):
        """The X window, waited for."""
        return wait_for(lambda: xdotool("search", "--onlyvisible", "--name",
                                        "^Tarnwave settings$").split(), "an X window")[0]

    def quit(self):
        """Closes the window with the keyboard; edits are thrown away."""
        self.keys("ctrl+q")
        wait_for(lambda: self.process.poll() is not None or self.find_dialog(),
                 "the window to close")
        if self.process.poll() is None and self.find_dialog():
            self.answer("Discard")
        self.wait_for_end()

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()


# --- The test case ---------------------------------------------------------------------------

STAND_INS = {
    # Remembers lingering in a file, as the login manager does.
    "loginctl": """case "$1" in
enable-linger) echo yes >"$folder/linger" ;;
disable-linger) rm -f "$folder/linger" ;;
show-user) if [ -f "$folder/linger" ]; then cat "$folder/linger"; else echo no; fi ;;
esac
""",
    "systemctl": "touch \"$folder/broker\"\n",
    "pkexec": "exit 127\n",
}


class Case(unittest.TestCase):
    """A folder, stand-ins, and the promise that every program that a test starts ends cleanly."""

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
        self.socket_path = self.folder / "settings.sock"
        for name in ("home", "config", "cache", "data", "bin"):
            (self.folder / name).mkdir()
        # Without animations there is no half way between two pages.
        (self.folder / "config" / "gtk-3.0").mkdir()
        (self.folder / "config" / "gtk-3.0" / "settings.ini").write_text(
            "[Settings]\ngtk-enable-animations=0\n")
        for name, script in STAND_INS.items():
            self.stand_in(name, script)
        self.programs = []

    def stand_in(self, name, script):
        """Puts a shell script in the place of a system command; each run is noted."""
        path = self.folder / "bin" / name
        path.unlink(missing_ok=True)
        path.write_text(f"#!/bin/sh\nfolder={self.folder}\n"
                        f"echo \"{name} $*\" >>\"$folder/commands.log\"\n{script}")
        path.chmod(0o755)

    def commands(self, name=None):
        """The system commands that were run, in order, as they were written."""
        log = self.folder / "commands.log"
        lines = log.read_text().splitlines() if log.exists() else []
        return [line for line in lines if name is None or line.startswith(name + " ")]

    def environment(self, **changes):
        """What the program finds in its environment; None takes a variable away."""
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
        for name, value in changes.items():
            if value is None:
                environment.pop(name, None)
            else:
                environment[name] = value
        return environment

    def station(self, scenario, *arguments):
        station = Station(self.folder, self.socket_path, "--scenario", scenario, *arguments)
        self.addCleanup(station.stop)
        return station

    def scripted_service(self, document=None):
        """A service that answers the state with this document, and nothing else yet."""
        service = ScriptedService(self.socket_path)
        self.addCleanup(service.stop)
        service.answers("GET /api/state", 200, document or state_document())
        return service

    def start(self, *arguments, wrapper=(), **environment):
        """Starts the program, and does not wait for its window."""
        program = Program(self.folder, self.environment(**environment), arguments, wrapper)
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
