# SPDX-License-Identifier: MIT
"""The real program in a process of its own, with verbs to read and use its window."""

import subprocess
import time

from accessible import (Atspi, Role, State, children, extents, has_state, is_sensitive, is_showing,
                        label_of, text_in, wait_for, walk)
from display import key, type_keys, window_size, xdotool
from services import BUILD

PROGRAM = BUILD / "src" / "tarnwave-settings"
PAGES = ["overview", "station", "receivers", "listeners", "internet"]


class Program:
    """The real program, and its window as its user sees it."""

    def __init__(self, folder, environment, arguments=()):
        self._out = folder / f"program-{time.monotonic_ns()}.out"
        self._error = self._out.with_suffix(".err")
        with open(self._out, "wb") as out, open(self._error, "wb") as error:
            self.process = subprocess.Popen([PROGRAM, *arguments], env=environment,
                                            stdin=subprocess.DEVNULL, stdout=out, stderr=error)
        self.pid = self.process.pid
        self._application = None

    # Its standard error and its end.

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
        # Under Wayland the labels of the dialog's empty title bar come first.
        return [a.get_name() for a in walk(self.dialog())
                if a.get_role() == Role.LABEL and a.get_name()]

    def dialog_buttons(self):
        return [a.get_name() for a in walk(self.dialog()) if a.get_role() == Role.PUSH_BUTTON]

    def find(self, role, name=None, inside=None):
        """The first widget that shows of that role and name (its own or its label's), or None."""
        return next((a for a in walk(inside or self.frame()) if a.get_role() == role and
                     is_showing(a) and (name is None or label_of(a) == name)), None)

    def get(self, role, name=None, inside=None):
        """The same, waited for."""
        return wait_for(lambda: self.find(role, name, inside),
                        f"a {Atspi.role_get_name(role)} called “{name}”")

    # The parts of the window.

    def content(self):
        # Under Wayland the title bar that GTK draws comes before it.
        frame = self.frame()
        return frame.get_child_at_index(frame.get_child_count() - 1)

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
        return [a.get_name() for a in walk(self.body()) if a.get_role() == Role.LABEL]

    def is_unsaved(self):
        return is_sensitive(self.find(Role.PUSH_BUTTON, "Save changes"))

    # What a user does.

    def page(self, name):
        """Turns to a page by its name in the sidebar."""
        sidebar = self.get(Role.LIST_BOX)
        Atspi.Selection.select_child(sidebar, PAGES.index(name))
        wait_for(lambda: self.shown_page() == name, f"the page {name}")
        return self

    def press(self, name):
        """Presses a button of the window as soon as it can be pressed."""
        button = wait_for(lambda: self.find_button(name),
                          f"a button “{name}” that can be pressed")
        Atspi.Action.do_action(button, 0)
        return self

    def find_button(self, name):
        """The button of that name, wherever the page is scrolled to, if it can be pressed now."""
        button = next(a for a in walk(self.frame())
                      if a.get_role() == Role.PUSH_BUTTON and a.get_name() == name)
        return button if is_sensitive(button) else None

    def answer(self, name):
        """Presses a button of the dialog on the screen, and waits until the dialog is gone."""
        dialog = self.dialog()
        Atspi.Action.do_action(self.get(Role.PUSH_BUTTON, name, inside=dialog), 0)
        wait_for(lambda: self.process.poll() is not None or not is_showing(dialog),
                 "the dialog to go")
        return self

    def field(self, role, label):
        """A field of the page by its label, wherever the page is scrolled to."""
        return wait_for(lambda: next(a for a in walk(self.body())
                                     if a.get_role() == role and label_of(a) == label),
                        f"a {Atspi.role_get_name(role)} called “{label}”")

    def entry(self, label):
        return self.field(Role.TEXT, label)

    def spin(self, label):
        return self.field(Role.SPIN_BUTTON, label)

    def switch(self, label):
        return self.field(Role.TOGGLE_BUTTON, label)

    def type_into(self, label, text):
        Atspi.EditableText.set_text_contents(self.entry(label), text)
        return self

    def text_of(self, label):
        return text_in(self.entry(label))

    def toggle(self, label, role=Role.TOGGLE_BUTTON):
        """Flips a switch or a check box and waits until it has moved."""
        widget = self.field(role, label)
        before = has_state(widget, State.CHECKED)
        Atspi.Action.do_action(widget, 0)
        wait_for(lambda: has_state(widget, State.CHECKED) != before, f"“{label}” to move")
        return self

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
        """Waits until the frontmost window is active: a dialog may be on the screen before it gets
        the keys that are pressed."""
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
