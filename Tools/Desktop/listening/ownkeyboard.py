"""A keyboard that sounds like a sound pack: the microphone gets what the pack sounds like, the X server gets the keys."""

import array
import json
import random
import subprocess
import time
import wave

from .tools import tool

# Of each group: key symbols of the X server, and the virtual codes of the same keys.
KEYS = {"alpha": [(0x61, 0), (0x73, 1), (0x64, 2), (0x66, 3), (0x68, 4), (0x67, 5), (0x6B, 40), (0x6C, 37)],
        "space": [(0x20, 49)], "enter": [(0xFF0D, 36)], "backspace": [(0xFF08, 51)], "modifier": [(0xFFE1, 56)]}
PAUSE = 0.6  # in front of the last key
LEAD = 1.0  # seconds of silence in front of the first key
PLAYER_LATENCY = 0.15  # s, about; more on a busy machine


def _compose(presses):
    """Seconds, symbol, code, whether it goes down, and how hard: in order."""
    draw = random.Random(7)
    groups = ["alpha"] * 6 + ["space", "enter", "backspace", "modifier"]
    actions, second = [], LEAD
    for index in range(presses):
        symbol, code = draw.choice(KEYS[groups[index % len(groups)]])
        hold = draw.uniform(0.09, 0.12)
        actions += [(second, symbol, code, True, 3 * draw.random()), (second + hold, symbol, code, False, 1)]
        second += hold + draw.uniform(0.12, 0.2)
    second += PAUSE
    return actions + [(second, 0x20, 49, True, 3), (second + 0.1, 0x20, 49, False, 1)]


def lateness(recording, actions):
    """Seconds by which the last press, after its pause, sounds later after the first one than was composed."""
    with wave.open(str(recording)) as file:
        samples = array.array("h", file.readframes(file.getnframes()))
    loud = [max(samples[at:at + 48]) > 300 for at in range(0, len(samples) - 48, 48)]  # each millisecond
    first, pause = loud.index(True), int(PAUSE * 800)
    last = max(at for at in range(pause, len(loud)) if loud[at] and not any(loud[at - pause:at]))
    return (last - first) / 1000 - (actions[-2][0] - actions[0][0])


class OwnKeyboard:
    def __init__(self, folder, workshop, pack, presses):
        self.actions = _compose(presses)
        script = folder / "keys.json"
        script.write_text(json.dumps([{"time": second, "code": code, "action": "down" if down else "up", "position": hard}
                                      for second, _, code, down, hard in self.actions]))
        self.sound = folder / "typing.wav"
        subprocess.run([workshop, "render", pack, "--script", script, "--out", self.sound], check=True, stdout=subprocess.DEVNULL)
        self._script = folder / "keys.txt"
        self._script.write_text("".join(f"{(second - LEAD) * 1000:.1f} {'press' if down else 'release'} {symbol}\n"
                                        for second, symbol, _, down, _ in self.actions))
        # A player that misses a cycle is late from then on: long ones are seldom missed.
        subprocess.run(["pw-metadata", "-n", "settings", "0", "clock.force-quantum", "2048"], check=True, stdout=subprocess.DEVNULL)

    def play_and_type(self):
        """The sound runs from when it is linked, the keys a second later."""
        player = subprocess.Popen(["pw-cat", "-p", "--target=0", "--latency=10ms", "--volume=0.4", self.sound])
        try:
            links = [["pw-link", f"pw-cat:output_{side}", "test_mic:input_MONO"] for side in ("FL", "FR")]
            while subprocess.run(links[0], stderr=subprocess.DEVNULL).returncode:
                time.sleep(0.02)
            linked = time.monotonic()
            subprocess.run(links[1], check=True)
            delay = (LEAD + PLAYER_LATENCY - (time.monotonic() - linked)) * 1000
            subprocess.run([tool("press-keys"), "--delay", f"{delay:.0f}", "--script", self._script], check=True,
                           stdout=subprocess.DEVNULL)
            time.sleep(0.5)
        finally:
            player.kill()
            player.wait()
