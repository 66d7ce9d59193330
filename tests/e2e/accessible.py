# SPDX-License-Identifier: MIT
"""The program's widgets as a screen reader finds them, and waiting for what they are to be.

Nothing here waits for a time: every wait is for a condition, with a deadline that a healthy run
never reaches. Relies on a display and a D-Bus session that nobody else uses.
"""

import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (the version comes first)

# Seconds. Far beyond what a loaded machine needs; a wait that reaches it has failed.
DEADLINE = 30

Role = Atspi.Role
State = Atspi.StateType
Relation = Atspi.RelationType

# Reads of a program that waits for a slow service, or for its turn, wait with it.
Atspi.set_timeout(DEADLINE * 1000, DEADLINE * 1000)


def turn_loop(milliseconds=15):
    """Lets events from the accessibility bus arrive, for a moment at most."""
    context = GLib.MainContext.default()
    over = []
    source = GLib.timeout_add(milliseconds, lambda: over.append(True) and False)
    while not over:
        context.iteration(True)
    del source


def wait_for(condition, what):
    """Waits until `condition()` is true and returns its result. A failure names `what`."""
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


def children(accessible):
    for index in range(accessible.get_child_count()):
        child = accessible.get_child_at_index(index)
        if child is not None:
            yield child


def walk(accessible):
    """The widgets that are not hidden, those that must be scrolled to included."""
    yield accessible
    # A table's cells are read by row and column.
    if accessible.get_role() != Role.TABLE:
        for child in children(accessible):
            if child.get_state_set().contains(State.VISIBLE):
                yield from walk(child)


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
