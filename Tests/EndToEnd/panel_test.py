#!/usr/bin/env python3
"""The panel as a window on a desktop without a tray: panel_test.py PROGRAM PACKS, in a desktop session."""

import json
import os
import pathlib
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import Tobrin  # noqa: E402

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()
PATIENCE = 60.0  # the machine may be busy


def eventually(condition, seconds=PATIENCE):
    """What `condition` answers once that is true; its last answer where it never is."""
    deadline = time.monotonic() + seconds
    while not (answer := condition()) and time.monotonic() < deadline:
        time.sleep(0.1)
    return answer


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], stdout=subprocess.PIPE, text=True, check=False).stdout


def panels():
    """The visible windows of the program."""
    return xdotool("search", "--onlyvisible", "--name", "^Tobrin$").split()


def width_of(window):
    shell = xdotool("getwindowgeometry", "--shell", window)
    return int(dict(line.split("=") for line in shell.split())["WIDTH"])


def ask_again():
    """A second instance's exit status and output."""
    second = subprocess.run([PROGRAM], stdout=subprocess.PIPE, text=True, check=False, timeout=PATIENCE)
    return second.returncode, second.stdout


class PanelTest(unittest.TestCase):
    def start(self):
        program = Tobrin(PROGRAM, PACKS, volume=0.5)
        self.addCleanup(program.__exit__)
        self.settings_file = program.settings_file
        return program

    def sounds_saved(self, expected):
        saved = json.loads(self.settings_file.read_text(encoding="utf-8"))
        return saved["engineSettings"].get("enabled", True) == expected

    def test_it_opens_by_itself_where_there_is_no_tray(self):
        program = self.start()
        self.assertTrue(eventually(panels), program.forget() or program.lines)
        self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
        self.assertEqual(panels(), [])

    def test_a_second_start_brings_it_up_and_the_switch_works(self):
        program = self.start()
        lock = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "tobrin.socket"
        self.assertTrue(eventually(lock.exists))
        program.wait_for("Fixed strength")
        self.assertEqual(ask_again(), (0, "Tobrin is already running.\n"))
        windows = eventually(panels)
        self.assertEqual(len(windows), 1)
        self.assertEqual(ask_again()[0], 0)
        self.assertEqual(panels(), windows, "the same window comes up again")

        # The sound switch is at the right of the first line.
        place = (width_of(windows[0]) - 32, 34)
        for sounds in (False, True):
            xdotool("mousemove", "--window", windows[0], *place, "click", 1)
            self.assertTrue(eventually(lambda: self.sounds_saved(sounds)), self.settings_file.read_text())
        saved = json.loads(self.settings_file.read_text(encoding="utf-8"))
        self.assertEqual(saved["engineSettings"]["volume"], 0.5, "nothing else was touched")

        xdotool("key", "--window", windows[0], "Escape")
        self.assertTrue(eventually(lambda: not panels()))
        self.assertIsNone(program.process.poll(), "closing the window does not end the program")
        self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)


if __name__ == "__main__":
    unittest.main()
