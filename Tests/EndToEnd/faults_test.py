#!/usr/bin/env python3
"""Everything around the program breaks while keys are pressed: faults_test.py PROGRAM, in a desktop session.

Each fault is caused and mended TOBRIN_FAULT_ROUNDS times (2). After each the program still runs, is heard within a
second, falls silent when the typing ends, and its settings are whole. Prints a line a fault.
"""

import json
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import time
import unittest
import unittest.mock

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from desktopclients.loginmanager import LoginManager  # noqa: E402
from listening import (Background, DesktopTest, Tobrin, control, press_keys, press_toggle, record,  # noqa: E402
                       tool, write_click_pack)

PROGRAM = sys.argv[1]
ROUNDS = int(os.environ.get("TOBRIN_FAULT_ROUNDS", "2"))


def run(*words):
    return subprocess.run(list(map(str, words)), check=True, stdout=subprocess.PIPE, text=True).stdout.strip()


class FaultsTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.packs = write_click_pack(self.folder / "packs")

    def while_typing(self, cause, mend=lambda: None, rounds=ROUNDS):
        """Breaks and repairs while keys are pressed; the seconds from each repair to the next sound."""
        took = []
        with record(self.folder / "heard.wav") as recorder, self.started(recorder) as program:
            saved = self.saved(program)
            with Background([tool("press-keys"), "--random", "3000", "--gap", "150:200"]) as typist:
                for _ in range(rounds):
                    cause()
                    time.sleep(0.3)
                    mend()
                    recorder.forget()
                    began = time.monotonic()
                    recorder.wait_for("sound", 20)
                    took.append(time.monotonic() - began)
                    self.assertIsNone(program.process.poll(), program.lines)
                typist.stop(signal.SIGKILL)
            press_keys("--text", "end")  # what the killed typist held is released by its X server
            self.assertTrue(recorder.quiet_for(1.0), "a voice is stuck")
            press_keys("--text", "a")
            recorder.wait_for("sound", 5)
            self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
            self.assertEqual(self.saved(program), saved)
        self.told(rounds, took)

    @staticmethod
    def saved(program):
        """What the user has set; the devices that were met are noted beside it."""
        settings = json.loads(program.settings_file.read_text(encoding="utf-8"))
        return {key: value for key, value in settings.items() if key != "comforts"}

    def started(self, recorder):
        program = Tobrin(PROGRAM, self.packs, pack="click", quietDuringCalls=False, releaseSounds=False)
        self.addCleanup(program.__exit__)
        self.assertTrue(program.wait_until_heard(recorder), program.lines)
        return program

    def told(self, rounds, took):
        print(f"fault: {self.id().split('test_')[-1]}: {rounds} times, heard again after "
              f"{statistics.median(took):.2f} s, at worst {max(took):.2f} s", flush=True)
        self.assertLess(statistics.median(took), 1.0)

    def test_sound_server_crashes(self):
        self.while_typing(lambda: control("kill-sound"), lambda: control("start-sound"))

    def test_default_sink_switched(self):
        """To one of another rate, to one of another shape, and back."""
        for name, shape in (("other_rate", "rate=44100 channels=2"), ("mono", "rate=48000 channels=1")):
            run("pactl", "load-module", "module-null-sink", f"sink_name={name}", *shape.split())
        order = ["other_rate", "mono", "test_sink"] * ROUNDS
        self.addCleanup(run, "pactl", "set-default-sink", "test_sink")
        self.while_typing(lambda: run("pactl", "set-default-sink", order.pop()), rounds=len(order))

    def test_sink_in_use_vanishes(self):
        def plug():
            module = run("pactl", "load-module", "module-null-sink", "sink_name=headset", "rate=44100")
            run("pactl", "set-default-sink", "headset")
            time.sleep(0.3)
            run("pactl", "unload-module", module)

        self.while_typing(plug)

    def test_sound_card_never_answers(self):
        pipe = self.folder / "pipe"  # opening it waits for a reader
        os.mkfifo(pipe)
        configuration = self.folder / "asound.conf"
        configuration.write_text(f'pcm.!default {{ type file slave.pcm {{ type null }} format raw file "{pipe}" }}', encoding="utf-8")
        control("kill-sound")
        self.addCleanup(control, "start-sound")
        with unittest.mock.patch.dict(os.environ, ALSA_CONFIG_PATH=str(configuration)):
            program = Tobrin(PROGRAM, self.packs, pack="click")
        self.addCleanup(program.__exit__)
        program.wait_for("does not answer")
        program.process.send_signal(signal.SIGTERM)
        self.assertEqual(program.process.wait(6), 0, program.lines)

    def test_session_bus_dies(self):
        self.addCleanup(control, "restart-sound")
        # The sound server's policy dies with the bus.
        self.while_typing(lambda: control("kill-bus"), lambda: (control("start-bus"), control("restart-sound")))

    def test_machine_sleeps(self):
        manager = LoginManager()
        self.while_typing(lambda: manager.sleeping(True), lambda: manager.sleeping(False))

    def test_pack_folder_vanishes(self):
        kept = self.folder / "kept"
        shutil.copytree(self.packs, kept)
        self.while_typing(lambda: shutil.rmtree(self.packs), lambda: shutil.copytree(kept, self.packs))

    def test_settings_cannot_be_written(self):
        """A full disk, then one that is read-only: the old file stays whole, the next change is kept."""
        place = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "Tobrin"
        place.mkdir(exist_ok=True)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "tmpfs", str(place)], check=False,
                                 capture_output=True)
        if mounted.returncode != 0:
            self.skipTest(f"mounting is not permitted here: {mounted.stderr.decode().strip()}")
        self.addCleanup(run, "umount", "-l", place)
        filler = place / "filler"

        def fill():
            with filler.open("wb") as file:
                try:
                    file.write(bytes(65536))
                except OSError:
                    pass  # full

        with record(self.folder / "heard.wav") as recorder, self.started(recorder) as program:
            for cause, mend in ((fill, filler.unlink), (lambda: run("mount", "-o", "remount,ro", place),
                                                        lambda: run("mount", "-o", "remount,rw", place))):
                before = program.settings_file.read_bytes()
                cause()
                press_toggle()
                recorder.quiet_for(0.5)
                press_keys("--text", "a")
                with self.assertRaises(TimeoutError, msg="switched off, though it could not be saved"):
                    recorder.forget()
                    recorder.wait_for("sound", 0.5)
                self.assertEqual(program.settings_file.read_bytes(), before)
                mend()
                self.assertEqual(os.listdir(place), ["settings.json"], "nothing is left lying about")
                press_toggle()
                recorder.quiet_for(0.5)
                press_keys("--text", "a")
                recorder.wait_for("sound", 5)
                self.assertTrue(json.loads(program.settings_file.read_text(encoding="utf-8")))
            self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
        print("fault: settings_cannot_be_written: disk full and read-only, nothing lost")

    def test_settings_cannot_be_read(self):
        place = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "Tobrin" / "settings.json"
        with record(self.folder / "heard.wav") as recorder:
            program = Tobrin(PROGRAM, self.packs, pack="click")
            program.stop(signal.SIGKILL)
            program.__exit__()
            half = b'{"engineSettings": {"volume": 0.5, "ena'
            deep = b'{"engineSettings": ' + b"[" * 100_000 + b"]" * 100_000 + b"}"
            for content, name in ((half, "settings.json.broken"), (deep, "settings.json.broken.2")):
                place.write_bytes(content)
                with Background([PROGRAM], env=os.environ | {"TOBRIN_PACKS": str(self.packs)}) as program:
                    self.assertTrue(Tobrin.wait_until_heard(program, recorder), program.lines)
                    self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
                self.assertEqual(place.with_name(name).read_bytes(), content)

    def test_the_display_vanishes(self):
        """The user's session ends with it, and so does the program, in order. The last test: this session ends, too."""
        program = Tobrin(PROGRAM, self.packs, pack="click")
        program.wait_for("status:")
        control("kill-display")
        self.assertEqual(program.process.wait(20), 1)
        program.__exit__()
        self.assertTrue(json.loads(program.settings_file.read_text(encoding="utf-8")))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
