#!/usr/bin/env python3
"""The harder the case is shaken, the louder the key: force_test.py PROGRAM FORCE-TOOL, in a desktop session."""

import csv
import io
import math
import os
import pathlib
import statistics
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import DesktopTest, Tobrin, plateaus_db, press_keys, record, write_pack  # noqa: E402

FORCE_TOOL, PROGRAM = sys.argv.pop(), sys.argv.pop()
TIERS = {"soft": 0.03, "medium": 0.08, "hard": 0.2, "slam": 0.5}
# Fewer than teach the program what a typical keystroke is.
PRESSES = 6
SENSITIVITY = 0.6


def expected_db(relative, position):
    """The steady level of one key: neighbouring tiers in an equal-power blend, and the edge gain."""
    levels = list(TIERS.values())
    tier, share = int(position), (position % 1) * math.pi / 2
    blend = levels[tier] * math.cos(share) + (levels[tier + 1] * math.sin(share) if share else 0)
    edge = max(math.sqrt(relative / 0.4), 0.45) if relative < 0.4 else 1.0
    edge = min((relative / 4) ** 0.25, 1.25) if relative > 4 else edge
    return 20 * math.log10(blend * edge)


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

    def replayed(self, trace):
        """What the force tool makes of a key in that trace: relative strength and position."""
        keys = self.folder / "keys.csv"
        keys.write_text("time_ns,code\n500000000,0\n", encoding="utf-8")
        output = subprocess.run([FORCE_TOOL, "replay", trace, keys, "--sensitivity", str(SENSITIVITY)], check=True,
                                stdout=subprocess.PIPE, text=True)
        last = list(csv.DictReader(io.StringIO(output.stdout)))[-1]
        self.assertEqual((last["stage"], last["counted"]), ("16", "1"))
        return float(last["relative"]), float(last["position"])

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

    def test_the_level_follows_the_impact_as_predicted(self):
        heard, predicted, positions = [], [], []
        for strength_g in (0.012, 0.03, 0.06, 0.16):
            trace = self.write_shaking(strength_g)
            relative, position = self.replayed(trace)
            positions.append(round(position, 2))
            predicted.append(expected_db(relative, position))
            heard.append(self.heard(trace))
        self.assertEqual((positions[0], positions[-1]), (0, 3), positions)
        # What remains is the same for all: the volume, and the way from peak to RMS.
        errors = [one - other - heard[0] + predicted[0] for one, other in zip(heard, predicted)]
        self.assertLess(max(map(abs, errors)), 1.0, (positions, heard, predicted))
        print(f"positions {positions}, heard {heard}, off by {errors} dB")

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
