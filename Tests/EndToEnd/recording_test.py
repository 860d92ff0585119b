#!/usr/bin/env python3
"""A pack of one's own keyboard, from the shell: recording_test.py WORKSHOP PACKS, in a desktop session."""

import array
import json
import math
import operator
import pathlib
import signal
import subprocess
import sys
import unittest
import wave

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import DesktopTest  # noqa: E402
from listening.ownkeyboard import KEYS, OwnKeyboard, lateness  # noqa: E402
from listening.tools import Background  # noqa: E402

PACKS, WORKSHOP = pathlib.Path(sys.argv.pop()), sys.argv.pop()


def mono(path):
    with wave.open(str(path)) as file:
        samples, channels = array.array("h", file.readframes(file.getnframes())), file.getnchannels()
    return [sum(samples[at:at + channels]) for at in range(0, len(samples), channels)]


def around_peak(sound, start):
    """Five milliseconds around the loudest sample of the first thirty, scaled to energy 1."""
    peak = max(range(start, min(start + 1440, len(sound))), key=lambda at: abs(sound[at]))
    cut = sound[max(0, peak - 60):peak + 180]
    energy = math.sqrt(sum(sample * sample for sample in cut)) or 1
    return [sample / energy for sample in cut]


def like(one, other):
    """The correlation of two cuts; 1 where they have the same form."""
    return max(abs(sum(map(operator.mul, one[max(0, lag):], other[max(0, -lag):]))) for lag in range(-90, 91))


class RecordingTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.keyboard = OwnKeyboard(self.folder, WORKSHOP, PACKS / "cream", presses=110)
        self.actions = self.keyboard.actions

    def record(self, pack, kept):
        out = self.folder / "result.json"
        command = [WORKSHOP, "record", "--into", pack, "--name", "My Board", "--keep", kept, "--json"]
        with Background(["sh", "-c", f'exec "$0" "$@" 2>&1 >{out}', *command]) as program:
            program.wait_for("Recording from test_mic")
            self.keyboard.play_and_type()
            program.process.send_signal(signal.SIGINT)
            self.assertEqual(program.process.wait(60), 0, program.lines)
        return json.loads(out.read_text())

    def test_a_pack_of_every_group_comes_of_typing(self):
        pack, kept = self.folder / "mine", self.folder / "kept.wav"
        # Where the machine had too much to do, the player fell behind: no keyboard does that.
        for _ in range(8):
            result = self.record(pack, kept)
            if abs(lateness(kept, self.actions)) < 0.004:
                break
        else:
            self.fail("the machine never has the time to play a minute in a minute")
        self.assertEqual(result["keys"], len(self.actions), result)
        self.assertEqual(set(result["down"]), set(KEYS), result)
        self.assertEqual(len(result["down"]["alpha"]), 4, "every tier")
        self.assertGreater(result["up"], 10, result)
        subprocess.run([WORKSHOP, "check", pack], check=True, stdout=subprocess.DEVNULL)
        loudness = json.loads(subprocess.check_output([WORKSHOP, "loudness", pack, "--json"]))["lufs"]
        self.assertAlmostEqual(loudness, -28, delta=0.3)
        self.assert_takes_are_what_sounded(pack)
        lines = kept.with_suffix(".keys.csv").read_text().splitlines()
        self.assertEqual(lines[0], "time_ns,action,group,key")
        groups = {code: group for group, keys in KEYS.items() for _, code in keys}
        self.assertEqual([line.split(",")[1:3] for line in lines[1:]],
                         [["down" if down else "up", groups[code]] for _, _, code, down, _ in self.actions])
        fates = json.loads(subprocess.check_output([WORKSHOP, "slice", kept, "--keys", kept.with_suffix(".keys.csv"), "--json"]))
        self.assert_sounds_are_the_keys_own(fates)

    def assert_sounds_are_the_keys_own(self, sliced):
        """Good sounds begin where the keyboard sounded, but for one delay that all share."""
        offsets = sorted(sound["onset"] / 48000 - second for sound, (second, *_) in zip(sliced["keys"], self.actions)
                         if sound["fate"] == "good")
        self.assertGreater(len(offsets), len(self.actions) // 2)
        middle = offsets[len(offsets) // 2]
        strays = [offset - middle for offset in offsets if abs(offset - middle) > 0.004]
        self.assertEqual(strays, [])

    def assert_takes_are_what_sounded(self, pack):
        """Each take has the form of a sound of its group that was composed."""
        forms = []
        sound = mono(self.keyboard.sound)
        groups = json.loads((pack / "pack.json").read_text())["groups"]
        for group, codes in ((group, {code for _, code in KEYS[group]}) for group in groups):
            composed = [around_peak(sound, round(second * 48000)) for second, _, code, down, _ in self.actions if down and code in codes]
            for name in sum(groups[group]["down"].values(), []):
                likeness = max(like(around_peak(mono(pack / name), 0), each) for each in composed)
                self.assertGreater(likeness, 0.75, name)
                forms.append(likeness)
        self.assertGreater(sorted(forms)[len(forms) // 2], 0.93)

    def test_says_before_the_typing_that_a_folder_is_no_pack(self):
        letters = self.folder / "letters"
        letters.mkdir()
        (letters / "first.txt").write_text("dear")
        run = subprocess.run([WORKSHOP, "record", "--into", letters, "--seconds", "1"], capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stderr),
                         (1, f"tobrin-packs: {letters} exists and is no sound pack; it was left alone\n"))

    def test_says_which_microphones_there_are(self):
        run = subprocess.run([WORKSHOP, "record", "--into", self.folder / "mine", "--source", "nothing"], capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertEqual(run.stderr, "tobrin-packs: no microphone nothing; there are test_mic (test_mic)\n")
        self.assertFalse((self.folder / "mine").exists())


if __name__ == "__main__":
    unittest.main()
