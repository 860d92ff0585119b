"""The panel as assistive technology has it: names, roles, states and places of its controls."""

import subprocess

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

ENVIRONMENT = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
_STATES = {"checked": Atspi.StateType.CHECKED, "showing": Atspi.StateType.SHOWING,
           "active": Atspi.StateType.ACTIVE, "focused": Atspi.StateType.FOCUSED, "focusable": Atspi.StateType.FOCUSABLE}


def start():
    """Before the program: it asks on the session's bus whether a screen reader runs."""
    Atspi.init()
    Atspi.get_desktop(0).set_cache_mask(Atspi.Cache.NONE)
    subprocess.run(["gdbus", "call", "--session", "-d", "org.a11y.Bus", "-o", "/org/a11y/bus", "-m",
                    "org.freedesktop.DBus.Properties.Set", "org.a11y.Status", "IsEnabled", "<true>"],
                   check=True, stdout=subprocess.DEVNULL)


class Control:
    """What was seen of one control at one moment; its place is x, y, width and height on the screen."""

    def __init__(self, accessible, group=""):
        self.name, self.role = accessible.get_name(), accessible.get_role_name()
        self.description, self.group = accessible.get_description(), group
        states = accessible.get_state_set()
        self.states = {name for name, state in _STATES.items() if states.contains(state)}
        place = Atspi.Component.get_extents(accessible, Atspi.CoordType.SCREEN)
        self._accessible = accessible
        self.place = (place.x, place.y, place.width, place.height)

    def __repr__(self):
        return f"{self.role} {self.name!r} {self.place}"

    @property
    def checked(self):
        return "checked" in self.states

    def press(self):
        """Does what a press on it does, wherever it is."""
        Atspi.Action.do_action(self._accessible, 0)

    def at(self, share=0.5):
        """A point on it: that share of its width from the left, half way down."""
        x, y, width, height = self.place
        return round(x + share * (width - 1)), y + height // 2


def showing():
    """All that is shown of the program, from top to bottom."""
    desktop = Atspi.get_desktop(0)
    found = []
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        application.set_cache_mask(Atspi.Cache.NONE)
        if application.get_name() not in ("Tobrin", "tobrin"):
            continue  # a desktop's own bars and windows
        _collect(application, "", found)
    return [control for control in found if "showing" in control.states]


def _collect(accessible, group, found):
    """Leaves out what goes away while it is looked at."""
    try:
        control = Control(accessible, group)
        children = [accessible.get_child_at_index(index) for index in range(accessible.get_child_count())]
    except GLib.Error:
        return
    found.append(control)
    # Some versions of the toolkit have nameless fillers between a group and its controls.
    for child in filter(None, children):
        _collect(child, control.name or group, found)
