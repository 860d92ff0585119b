#!/usr/bin/env python3
"""From a key of the X server to the sound in the sink: typing_test.py PROGRAM PACKS, in a desktop session."""

import pathlib
import signal
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import (DesktopTest, Tobrin, control, figures, find_sounds, match, press_keys,  # noqa: E402
                       press_toggle, record, types_audibly)

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()
SETTLED = ("--delay", 300)
# A busy machine may be late by many cycles; below the least interval between the presses of every test.
WINDOW_MS = 140


class TypingTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.wav = self.folder / "heard.wav"

    def type_and_match(self, *typing, down=True, before=lambda recorder: None, **settings):
        """Types with the program running; each press (or release) with the sound that answered it."""
        with record(self.wav) as recorder, Tobrin(PROGRAM, PACKS, **settings) as program:
            self.assertTrue(program.wait_until_heard(recorder), program.lines)
            before(recorder)
            keys = press_keys(*SETTLED, *typing)
            recorder.quiet_for(0.5)
            self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
        start = keys[0].ns - 100_000_000
        self.sounds = [sound for sound in find_sounds(self.wav) if sound.ns > start]
        return match([key for key in keys if key.down == down], self.sounds, window_ms=WINDOW_MS)

    def around(self, silent):
        """The sounds near a key that seems to have none, in ms after it."""
        return [round((sound.ns - silent.press_ns) / 1e6, 1) for sound in self.sounds
                if abs(sound.ns - silent.press_ns) < 500_000_000]

    def assert_all_heard(self, matches):
        silent = [each for each in matches if each.latency_ms is None]
        self.assertEqual(silent, [], f"{figures(matches)}, sounds around: {[self.around(each) for each in silent]}")
        self.assertGreater(min(each.peak_db for each in matches), -50)

    def test_every_press_is_heard(self):
        self.assert_all_heard(self.type_and_match("--random", 30, "--gap", "150:220", releaseSounds=False))

    def test_keys_rolled_over_each_other_are_heard(self):
        # The release of one key comes after the press of the next.
        self.assert_all_heard(
            self.type_and_match("--random", 30, "--gap", "150:190", "--rolls", releaseSounds=False))

    def test_capitals_and_the_return_key_are_heard(self):
        self.assert_all_heard(
            self.type_and_match("--text", "Tobrin Sings\n", "--interval", 180, releaseSounds=False))

    def test_releases_are_heard(self):
        # Long enough held for the press to have died away.
        matches = self.type_and_match("--text", "hands up", "--interval", 900, "--hold", 450, down=False)
        self.assert_all_heard(matches)

    def test_typing_goes_on_over_a_restart_of_the_sound_server(self):
        def restart(recorder):
            control("restart-sound")
            self.assertTrue(any(types_audibly(recorder, 1.0) for _ in range(20)), "silent after the restart")
            recorder.quiet_for(0.5)

        self.assert_all_heard(self.type_and_match("--random", 15, "--gap", "150:200", before=restart,
                                                  releaseSounds=False))

    def test_a_sound_server_that_comes_late_is_taken(self):
        control("stop-sound")
        try:
            with Tobrin(PROGRAM, PACKS) as program:
                program.wait_for("status:")
                control("start-sound")
                with record(self.wav) as recorder:
                    self.assertTrue(program.wait_until_heard(recorder), program.lines)
        finally:
            control("restart-sound")

    def test_switched_off_it_is_silent(self):
        with record(self.wav) as recorder, Tobrin(PROGRAM, PACKS, enabled=False) as program:
            program.wait_for("Off")
            self.assertFalse(any(types_audibly(recorder) for _ in range(3)))
            self.assertEqual(program.stop(signal.SIGTERM), 0)
        self.assertEqual(find_sounds(self.wav, floor_db=-120), [])

    def test_the_shortcut_silences_and_restores(self):
        with record(self.wav) as recorder, Tobrin(PROGRAM, PACKS) as program:
            self.assertTrue(program.wait_until_heard(recorder), program.lines)
            for audible in (False, True):
                press_toggle()
                recorder.quiet_for(0.5)
                self.assertEqual(types_audibly(recorder), audible)
                recorder.quiet_for(0.5)
            self.assertIn("true", program.settings_file.read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
