"""The program under test, in a private desktop session."""

import json
import math
import os
import pathlib
import struct
import subprocess
import time
import wave

from .tools import Background, tool

CONTROL = pathlib.Path(__file__).resolve().parent.parent / "desktop-ctl"
_A_KEY = "0x61"


class Tobrin(Background):
    """Runs the program with these engine settings (those not named have their defaults) and, where no pack is named,
    the first: a program that has to choose plays a phrase of its choice into the recording. On a `first` start nothing
    is saved yet."""

    def __init__(self, program, packs, arguments=(), pack="", first=False, **settings):
        self.settings_file = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "Tobrin" / "settings.json"
        self.settings_file.parent.mkdir(parents=True, exist_ok=True)
        found = sorted(manifest.parent.name for manifest in pathlib.Path(packs).glob("*/pack.json"))
        saved = {"engineSettings": settings}
        if pack or found:
            saved["selectedPack"] = pack or found[0]
        if not first:
            self.settings_file.write_text(json.dumps(saved), encoding="utf-8")
        super().__init__([str(program), *arguments], env=os.environ | {"TOBRIN_PACKS": str(packs)})

    def wait_until_heard(self, recorder, seconds=30.0):
        """Types until the recording has sound, then until it is quiet again; False when it stays silent."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline and self.process.poll() is None:
            if types_audibly(recorder):
                return recorder.quiet_for(0.5)
        return False


def types_audibly(recorder, seconds=0.4):
    """Whether one key makes a sound."""
    return is_heard(recorder, [tool("press-keys"), "--delay", "0", "--text", "a"], seconds)


def is_heard(recorder, command, seconds=0.4):
    """Whether what a command does makes a sound."""
    recorder.forget()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    try:
        recorder.wait_for("sound", seconds)
    except TimeoutError:
        return False
    return True


def control(command):
    """Disturbs the session's services; see desktop-ctl."""
    subprocess.run([CONTROL, command], check=True, stdout=subprocess.DEVNULL)


def write_click_pack(folder):
    """A pack of one sound, 10 ms long and loud from its first sample: what is late is the program, not the pack."""
    click = [0.85 * math.exp(-i / 120) for i in range(480)]
    return write_pack(folder, "click", {"medium": click}, up=["medium.wav"])


def write_pack(folder, name, sounds, **group):
    """A pack below `folder` with one mono take (samples up to 1, at 48 kHz) for each tier named."""
    pack = pathlib.Path(folder) / name
    pack.mkdir(parents=True)
    for tier, samples in sounds.items():
        with wave.open(str(pack / f"{tier}.wav"), "wb") as sound:
            sound.setnchannels(1)
            sound.setsampwidth(2)
            sound.setframerate(48000)
            sound.writeframes(b"".join(struct.pack("<h", round(32767 * each)) for each in samples))
    group["down"] = {tier: [f"{tier}.wav"] for tier in sounds}
    manifest = {"formatVersion": 1, "id": name, "name": name.title(), "kind": "test", "groups": {"alpha": group}}
    (pack / "pack.json").write_text(json.dumps(manifest), encoding="utf-8")
    return pathlib.Path(folder)
