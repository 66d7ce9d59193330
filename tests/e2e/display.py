# SPDX-License-Identifier: MIT
"""Real keys, the pointer and pictures, on the display of the tests."""

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
