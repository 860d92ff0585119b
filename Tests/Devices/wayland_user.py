#!/usr/bin/python3
"""Whoever sits at the Wayland session of WaylandSessionTests: wayland_user.py PROGRAM PACKS. Says what comes next."""

import os
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening.panel import PanelDriver, eventually, named  # noqa: E402

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()


def say(text):
    print(text, flush=True)


class WaylandUser(PanelDriver):
    program, packs = PROGRAM, PACKS

    def is_open(self):
        return True

    def test(self):
        asked = self.folder / "asked"
        pkexec = self.folder / "pkexec"
        pkexec.write_text(f'#!/bin/sh\necho "$@" >{asked}.part && mv {asked}.part {asked}\n', encoding="utf-8")
        pkexec.chmod(0o755)
        os.environ["PATH"] = f"{self.folder}:{os.environ['PATH']}"
        program = self.start_with_panel()
        self.shows("Tobrin needs access to the keyboard")
        named("Allow Access…").press()
        self.assertTrue(eventually(asked.exists))
        say(asked.read_text(encoding="utf-8").strip())
        program.wait_for("keys: kernel keyboards (evdev)")
        self.shows("Blue Click · Fixed strength")
        self.assertFalse(named("Tobrin needs access to the keyboard"))
        say("types")
        program.wait_for("status: Off")
        say("switched off")
        self.assertEqual(program.stop(), 0)
        say(program.lines[-1])  # how much it played


if __name__ == "__main__":
    unittest.main()
