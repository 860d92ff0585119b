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


class ForceTest(DesktopTest):
    def setUp(self):
        super().setUp()
        # A tone of its own level a tier; all in phase, so that blended tiers add up.
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
        with record(wav) as recorder, Tobrin(PROGRAM, self.folder / "packs", releaseSounds=False,
                                             spatial=0, sensitivity=0.6) as program:
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
        steps = [louder - softer for softer, louder in zip(heard, heard[1:])]
        print(f"heard {heard} dB, steps {steps} dB")
        # From below the softest tier to the loudest one, each step about a tier.
        self.assertGreater(min(steps), 4, heard)


if __name__ == "__main__":
    unittest.main()
