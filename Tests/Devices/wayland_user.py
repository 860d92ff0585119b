#!/usr/bin/python3
"""The user of the Wayland session in WaylandSessionTests: wayland_user.py PROGRAM PACKS. Says what comes next."""

import os
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening.panel import PanelDriver, named  # noqa: E402

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()


def say(text):
    print(text, flush=True)


class WaylandUser(PanelDriver):
    program, packs = PROGRAM, PACKS

    def is_open(self):
        return True

    def test(self):
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = os.environ["TOBRIN_SYSTEM_BUS"]
        program = self.start_with_panel()
        self.shows("Tobrin needs access to the keyboard")
        named("Allow Access…").press()
        self.shows("Access to keys can't be set up: it was not allowed")
        say("refused")
        sys.stdin.readline()
        named("Allow Access…").press()
        program.wait_for("keys: kernel keyboards (tobrin-keys)")
        self.shows("Blue Click · Fixed strength")
        self.assertFalse(named("Tobrin needs access to the keyboard"))
        say("types")
        program.wait_for("status: Off")
        say("switched off")
        named("Take Back").press()
        self.shows("Tobrin needs access to the keyboard")
        self.assertEqual(program.stop(), 0)
        say(program.lines[-1])  # how much it played


if __name__ == "__main__":
    unittest.main()
