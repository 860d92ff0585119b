#!/usr/bin/env python3
"""From a key of the X server to the sound in the sink: typing_test.py PROGRAM PACKS, in a desktop session."""

import os
import pathlib
import signal
import sys
import unittest
import unittest.mock

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import (DesktopTest, Tobrin, figures, find_sounds, match, press_keys, press_toggle, record,  # noqa: E402
                       steepest_fall, write_pack, xdotool)

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()
SETTLED = ("--delay", 300)
# A busy machine may be late by many cycles; below the least interval between the presses of every test.
WINDOW_MS = 140


class TypingTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.wav = self.folder / "heard.wav"

    def type_and_match(self, *typing, down=True, **settings):
        """Types with the program running; each press (or release) with the sound that answered it."""
        with record(self.wav) as recorder, Tobrin(PROGRAM, PACKS, **settings) as program:
            self.assertTrue(program.wait_until_heard(recorder), program.lines)
            keys = press_keys(*SETTLED, *typing)
            recorder.quiet_for(0.5)
            self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
        start = keys[0].ns - 100_000_000
        self.sounds = [sound for sound in find_sounds(self.wav) if sound.ns > start]
        return match([key for key in keys if key.down == down], self.sounds, window_ms=WINDOW_MS)

    def assert_all_heard(self, matches):
        silent = [each for each in matches if each.latency_ms is None]
        self.assertEqual(silent, [], f"{figures(matches)}, all sounds: {self.sounds}")
        self.assertGreater(min(each.peak_db for each in matches), -50)

    def test_every_press_is_heard(self):
        # With rolls, the release of one key comes after the press of the next.
        for typing in (("--random", 30, "--gap", "150:220"), ("--random", 30, "--gap", "150:190", "--rolls"),
                       ("--text", "Tobrin Sings\n", "--interval", 180)):
            with self.subTest(typing=typing):
                self.assert_all_heard(self.type_and_match(*typing, releaseSounds=False))

    def test_releases_are_heard(self):
        # Long enough held for the press to have died away.
        matches = self.type_and_match("--text", "hands up", "--interval", 900, "--hold", 450, down=False)
        self.assert_all_heard(matches)

    def test_a_stall_leaves_the_shortcut_right(self):
        # As in a Wayland session without a portal: the shortcut is found among the keys heard.
        wayland = {"XDG_SESSION_TYPE": "wayland", "TOBRIN_KEYS": "x11"}
        with unittest.mock.patch.dict(os.environ, wayland), Tobrin(PROGRAM, PACKS) as program:
            program.wait_for("status: ")
            xdotool("keydown", "Control_L", "keydown", "Alt_L", "keydown", "Super_L")
            program.process.send_signal(signal.SIGSTOP)
            xdotool("keyup", "Control_L", "sleep", 0.4)
            program.process.send_signal(signal.SIGCONT)
            xdotool("sleep", 0.2, "key", "k", "sleep", 0.2, "keydown", "Control_L", "key", "k")
            xdotool("keyup", "Control_L", "keyup", "Alt_L", "keyup", "Super_L")
            program.quiet_for(0.3)
        self.assertEqual([line for line in program.lines if line.startswith("status: ")][1:], ["status: Off"])

    def test_switching_off_lets_the_sound_fade(self):
        packs = write_pack(self.folder / "packs", "steady", {"medium": [0.3] * 480000})
        with record(self.wav) as recorder, Tobrin(PROGRAM, packs, pack="steady", volume=1, releaseSounds=False) as program:
            program.wait_for("status:")
            press_keys(*SETTLED, "--text", "a")
            recorder.wait_for("sound")
            press_toggle()
            self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
        fall, height = steepest_fall(self.wav)
        self.assertGreater(height, 0.5)
        self.assertLess(fall, 0.03, "a step, where 6 ms of fading would be")


if __name__ == "__main__":
    unittest.main()
