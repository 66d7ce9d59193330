# SPDX-License-Identifier: MIT
"""Real keys, the pointer and pictures, on the display of the tests."""

import ctypes
import subprocess

from accessible import DEADLINE


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
