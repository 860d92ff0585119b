"""The panel in a window, worked by the accessible names of its controls."""

import json
import os
import pathlib
import subprocess
import time

from desktopclients import screenreader

from .program import Tobrin
from .testcase import DesktopTest
from .tools import panels, xdotool

PATIENCE = 30.0  # the machine may be busy


def eventually(condition, seconds=PATIENCE):
    """What `condition` answers once that is true; its last answer where it never is."""
    deadline = time.monotonic() + seconds
    while not (answer := condition()) and time.monotonic() < deadline:
        time.sleep(0.05)
    return answer


def named(name):
    return next((control for control in screenreader.showing() if control.name == name), None)


def focused():
    """The innermost control that has the focus."""
    return next((each.name for each in reversed(screenreader.showing()) if "focused" in each.states), None)


class PanelDriver(DesktopTest):
    """A test that starts `program`, by way of the command `within`, with the packs in `packs`."""

    program = packs = None
    within = ()

    def is_open(self):
        return bool(panels())

    def start(self, packs=None, pack="", **settings):
        screenreader.start()
        os.environ.update(screenreader.ENVIRONMENT)
        first, *others = *self.within, self.program
        program = Tobrin(first, packs or self.packs, others, pack=pack, **settings)
        self.addCleanup(program.__exit__)
        self.settings_file = program.settings_file
        program.wait_for("status:")
        return program

    def start_with_panel(self, *arguments, **settings):
        program = self.start(*arguments, **settings)
        lock = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "tobrin.socket"
        self.assertTrue(eventually(lock.exists))
        self.bring_up()
        return program

    def start_again(self):
        second = subprocess.run([self.program], stdout=subprocess.PIPE, text=True, check=False, timeout=PATIENCE)
        self.assertEqual((second.returncode, second.stdout), (0, "Tobrin is already running.\n"))

    def bring_up(self):
        self.start_again()
        self.assertTrue(eventually(lambda: self.is_open() and named("Quit")), f"{panels()} {screenreader.showing()}")

    def close_by_keyboard(self):
        # With a window named, xdotool would leave the key pressed once that window has gone.
        xdotool("windowfocus", "--sync", panels()[0], "key", "Escape")
        self.assertTrue(eventually(lambda: not panels()), "Escape closes")

    def saved(self):
        return json.loads(self.settings_file.read_text(encoding="utf-8"))

    def saves(self, key, value):
        self.assertTrue(eventually(lambda: self.saved()["engineSettings"].get(key) == value), (key, value, self.saved()))

    def click(self, name, share=0.5):
        control = eventually(lambda: named(name))
        self.assertTrue(control, f"no '{name}' in {panels()} among {screenreader.showing()}")
        xdotool("mousemove", *control.at(share), "click", 1)

    def shows(self, *names):
        for name in names:
            self.assertTrue(eventually(lambda: named(name)), f"no '{name}' in {panels()} among {screenreader.showing()}")
