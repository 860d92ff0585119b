#!/usr/bin/env python3
"""The harder the case is shaken, the louder the key: force_test.py PROGRAM, in a desktop session."""

import math
import os
import pathlib
import statistics
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import DesktopTest, Tobrin, plateaus_db, press_keys, record, write_pack  # noqa: E402

PROGRAM = sys.argv.pop()
TIERS = {"soft": 0.03, "medium": 0.08, "hard": 0.2, "slam": 0.5}
# Fewer than teach the program what a typical keystroke is.
PRESSES = 6
SENSITIVITY = 0.6
SOFTEST_TO_HARDEST_DB = 26.3  # 24.4 between these takes, and what lies beyond soft and slam adds


class ForceTest(DesktopTest):
    def setUp(self):
        super().setUp()
        # A tone with another level for each tier; all in phase, so that blended tiers add up.
        tones = {tier: [level * math.sin(math.tau * i * 500 / 48000) for i in range(9600)] for tier, level in TIERS.items()}
        write_pack(self.folder / "packs", "tones", tones)

    def write_shaking(self, strength_g):
        """One second of a case that shakes evenly, so that every key finds the same impact."""
        trace = self.folder / "trace.csv"
        rows = (f"{i * 1_000_000},0,0,{1 + strength_g * (-1) ** i:.6f}" for i in range(1000))
        trace.write_text("time_ns,x,y,z\n" + "\n".join(rows) + "\n", encoding="utf-8")
        return trace

    def heard(self, trace):
        """Level of the same key typed with that trace as the sensor."""
        wav = self.folder / "heard.wav"
        os.environ["TOBRIN_MOTION_TRACE"] = str(trace)
        with record(wav) as recorder, Tobrin(PROGRAM, self.folder / "packs", pack="tones", releaseSounds=False,
                                             spatial=0, sensitivity=SENSITIVITY) as program:
            program.wait_for("status:")
            press_keys("--delay", 400, "--text", "a" * PRESSES, "--interval", 400)
            recorder.quiet_for(0.5)
            self.assertEqual(program.stop(), 0, program.lines)
        levels = plateaus_db(wav)
        self.assertEqual(len(levels), PRESSES, levels)
        # Strokes vary by chance, but by the same chance in every run.
        return statistics.mean(levels)

    def test_the_level_follows_the_impact(self):
        heard = [self.heard(self.write_shaking(strength_g)) for strength_g in (0.012, 0.03, 0.06, 0.16)]
        self.assertEqual(heard, sorted(heard))
        self.assertAlmostEqual(heard[-1] - heard[0], SOFTEST_TO_HARDEST_DB, delta=1)

    def test_a_sensor_that_cannot_be_read_stops_no_key(self):
        self.heard(self.folder)  # as a trace

    def test_a_sensor_that_cannot_be_opened_leaves_the_fixed_strength(self):
        wav, trace = self.folder / "heard.wav", self.folder / "trace.csv"
        os.environ["TOBRIN_MOTION_TRACE"] = str(trace)
        with record(wav) as recorder, Tobrin(PROGRAM, self.folder / "packs", pack="tones", releaseSounds=False, spatial=0,
                                             blendTiers=False, fixedTier=3, volume=1) as program:
            program.wait_for("Fixed strength, sensor fails")
            press_keys("--delay", 400, "--text", "a" * 10, "--interval", 400)
            recorder.quiet_for(0.5)
            self.write_shaking(0.03)
            program.wait_for("Force sensing on")
            self.assertEqual(program.stop(), 0, program.lines)
        levels = plateaus_db(wav)
        self.assertEqual(len(levels), 10, levels)
        self.assertLess(max(levels) - min(levels), 0.1, levels)
        self.assertGreater(min(levels), -12, "not that of slam")


if __name__ == "__main__":
    unittest.main()
