#!/usr/bin/env python3
"""The tools' times agree: each sound is in the recording at the time at which the instrument says it played it."""

import pathlib
import sys
import tempfile
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"
sys.path.insert(0, str(TOOLS))
from listening import Background, Press, Sound, figures, find_sounds, match, press_keys, record, tool  # noqa: E402

SAMPLE_NS = 1e9 / 48000


class MatchingTest(unittest.TestCase):
    def test_each_sound_answers_one_press(self):
        presses = [Press(int(ms * 1e6), 30, True) for ms in (100, 200, 300, 310)]
        sounds = [Sound(int(ms * 1e6), -6.0) for ms in (50, 103, 306, 600)]
        matches = match(presses, sounds)
        self.assertEqual([each.latency_ms for each in matches], [3.0, None, 6.0, None])
        result = figures(matches)
        self.assertEqual((result.missed, result.p50, result.p99), (2, 3.0, 6.0))


class ToolsTest(unittest.TestCase):
    def test_the_recording_holds_each_impulse_at_its_sample(self):
        with tempfile.TemporaryDirectory() as folder, Background([tool("impulse-instrument")]) as instrument:
            wav = pathlib.Path(folder) / "sink.wav"
            with record(wav):
                instrument.wait_for("ready")
                typed = press_keys("--random", 60, "--gap", "60:110", "--delay", 500)
                instrument.stop()
            sounds = find_sounds(wav)
        played = [int(line.split()[1]) for line in instrument.lines if line.startswith("impulse")]
        # A machine that stands still for a cycle loses a single sample now and then.
        self.assertGreaterEqual(len(sounds), 48)
        for sound in sounds:
            self.assertAlmostEqual(sound.peak_db, -6.0, delta=0.1)
        # To the sample, save where the instrument itself woke late and noted the clock of a later cycle.
        deviations = [min(abs(sound.ns - ns) for ns in played) for sound in sounds]
        exact = [each for each in deviations if each < SAMPLE_NS]
        self.assertGreaterEqual(len(exact), 0.9 * len(deviations) - 1, deviations)
        result = figures(match([press for press in typed if press.down], sounds))
        self.assertLessEqual(result.missed, 15)
        self.assertLess(result.p50, 30)


if __name__ == "__main__":
    unittest.main()
