#!/usr/bin/env python3
"""What happens around a microphone, the self-test, and files that are no packs:
diagnostics_test.py PROGRAM PACKS, in a desktop session."""

import os
import pathlib
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import (Background, DesktopTest, Tobrin, control, find_sounds, match, press_keys,  # noqa: E402
                       record, write_click_pack)

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()
os.environ["TOBRIN_PACKS"] = PACKS
RELEASE_SECONDS = 1.0
PULSE_CLIENT = ("parec", "--raw", "-d", "test_mic", "/dev/null")
MONITOR_CLIENT = ("parec", "--raw", "-d", "test_sink.monitor", "/dev/null")


class MicTest(DesktopTest):
    def test_the_watch_names_who_calls(self):
        with Background([PROGRAM, "--micwatch", "60"]) as watch:
            watch.wait_for("mic in use: no")
            with Background(MONITOR_CLIENT):
                self.assertTrue(watch.quiet_for(1.5), "a monitor is no microphone")
            for client in (("pw-record", "--target", "test_mic", str(self.folder / "call.wav")), PULSE_CLIENT):
                with Background(client):
                    watch.wait_for("mic in use: sounds pause", 5)
                    self.assertIn(f"recording: {client[0]}", watch.wait_for("recording: ", 5))
                watch.wait_for("mic free: sounds resume", 5)

    def test_a_call_silences_typing_and_gives_it_back_whole(self):
        packs, wav = write_click_pack(self.folder), self.folder / "heard.wav"
        with record(wav) as recorder, Tobrin(PROGRAM, packs, pack="click", releaseSounds=False) as program:
            self.assertTrue(program.wait_until_heard(recorder), program.lines)
            with Background(PULSE_CLIENT):
                time.sleep(0.5)
                silent = press_keys("--text", "silence", "--interval", 150)
            time.sleep(RELEASE_SECONDS + 0.3)
            freed = press_keys("--delay", 0, "--text", "freed", "--interval", 250)
            recorder.quiet_for(0.5)
            self.assertEqual(program.stop(), 0)
        sounds = find_sounds(wav)
        self.assertFalse([each for each in sounds if silent[0].ns < each.ns < silent[-1].ns])
        matches = match([key for key in freed if key.down], sounds, window_ms=140)
        self.assertTrue(all(each.latency_ms is not None for each in matches), matches)
        peaks = [each.peak_db for each in matches]
        # A click's first samples are its loudest: had its beginning been lost, it would be fainter.
        self.assertGreater(peaks[0], min(peaks[1:]) - 3, peaks)


class DoubleClickTest(DesktopTest):
    def test_the_desktop_shows_why_a_file_is_no_pack(self):
        broken = self.folder / "broken & more.tobrinpack"
        broken.write_text("hello")
        with Background(["dbus-monitor", "--session", "member=Notify"]) as bus:
            bus.wait_for("NameLost")  # it listens
            done = subprocess.run([PROGRAM, broken], capture_output=True, text=True, timeout=60, check=False)
            self.assertEqual(done.returncode, 1, done.stderr)
            self.assertIn("is no archive that can be read", done.stderr)
            bus.wait_for("broken &amp; more.tobrinpack can't be added: ")


class SelfTest(unittest.TestCase):
    def run_self_test(self):
        done = subprocess.run([PROGRAM, "--selftest"], stdout=subprocess.PIPE, text=True, timeout=60, check=False)
        return done.returncode, done.stdout.splitlines()

    def left_behind(self):
        folders = [os.environ[name] for name in ("HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME")]
        files = {str(file) for folder in folders for file in pathlib.Path(folder).rglob("*")}
        return {file for file in files if "tobrin" in file.lower()}

    def test_passes_here_fails_in_words_without_sound_and_leaves_nothing(self):
        before = self.left_behind()
        status, lines = self.run_self_test()
        self.assertEqual((status, lines[-1]), (0, "All checks passed."), lines)
        self.assertEqual([line for line in lines[:-1] if not line.startswith(("PASS  ", "SKIP  "))], [])
        control("stop-sound")
        try:
            status, lines = self.run_self_test()
            watch = subprocess.run([PROGRAM, "--micwatch", "0.1"], stdout=subprocess.PIPE, text=True, check=True).stdout
        finally:
            control("restart-sound")
        self.assertIn("recording: unknown (the sound server does not say)", watch)
        self.assertEqual(status, 1, lines)
        self.assertTrue(any(line.startswith("FAIL  audio engine running: ") for line in lines), lines)
        self.assertRegex(lines[-1], r"^\d check\(s\) failed\.$")
        self.assertEqual(self.left_behind(), before)


if __name__ == "__main__":
    unittest.main()
