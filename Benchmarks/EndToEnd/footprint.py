"""What the program costs while no key is pressed: memory, wake-ups, and the time it takes to be there."""

import contextlib
import os
import pathlib
import signal
import statistics
import time

from desktopclients.traywatcher import TrayWatcher
from listening import Tobrin, find_sounds, press_keys, record

STARTS = 7
QUIET_SECONDS = 20
GIVEN_BACK_SECONDS = 6  # free heap is given back to the system by then
SETTLING_SECONDS = 15  # what is prepared after the start is done by then


def resident_mib(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text(encoding="ascii").splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1]) / 1024
    raise RuntimeError("no VmRSS")


def context_switches(pid):
    """Of all threads: how often the process was woken, plus how often it had to wait its turn."""
    total = 0
    for thread in pathlib.Path(f"/proc/{pid}/task").iterdir():
        for line in (thread / "status").read_text(encoding="ascii").splitlines():
            if "ctxt_switches" in line:
                total += int(line.split()[1])
    return total


def report_memory(report, program, packs):
    def weigh(tobrin, state, limit):
        time.sleep(GIVEN_BACK_SECONDS)
        report.under(f"resident memory, {state}", resident_mib(tobrin.process.pid), "MiB", limit)

    display = os.environ.pop("DISPLAY")
    with Tobrin(program, packs) as tobrin:
        os.environ["DISPLAY"] = display
        tobrin.wait_for("status:")
        weigh(tobrin, "without a display", 24)
        tobrin.stop(signal.SIGTERM)
    with contextlib.closing(TrayWatcher()) as tray, Tobrin(program, packs) as tobrin:
        tobrin.wait_for("status:")
        weigh(tobrin, "with the tray", 36)
        tray.click()
        weigh(tobrin, "panel open", 64)
        tobrin.stop(signal.SIGTERM)


def report_wakeups(report, program, packs):
    """Switched off it is suspended at once; left alone it is after three minutes."""
    with Tobrin(program, packs, enabled=False) as tobrin:
        tobrin.wait_for("status:")
        time.sleep(SETTLING_SECONDS)
        before = context_switches(tobrin.process.pid)
        time.sleep(QUIET_SECONDS)
        woken = context_switches(tobrin.process.pid) - before
        report.under("wake-ups while suspended", woken / QUIET_SECONDS, "a second", 1)
        tobrin.stop(signal.SIGTERM)


def start_to_sound_ms(program, packs, folder):
    """From the start of the process to the first sound, with keys pressed every few milliseconds."""
    wav = pathlib.Path(folder) / "start.wav"
    with record(wav) as recorder:
        began = time.monotonic_ns()
        with Tobrin(program, packs, shortcutEnabled=False) as tobrin:
            press_keys("--delay", 0, "--random", 150, "--gap", "8:12")
            recorder.quiet_for(0.5)
            tobrin.stop(signal.SIGTERM)
    sounds = find_sounds(wav)
    return (sounds[0].ns - began) / 1e6 if sounds else float("inf")


def report_start(report, program, packs, folder):
    times = sorted(start_to_sound_ms(program, packs, folder) for _ in range(STARTS))
    low, middle, high = statistics.quantiles(times, n=4)
    report.under("start to first key heard, with a display", middle, "ms", 300, (high - low) / middle)


def report_first_key_after_suspension(report, program, packs, folder):
    """Waits for the three minutes after which the output is suspended, then types one key."""
    wav = pathlib.Path(folder) / "resume.wav"
    with Tobrin(program, packs, releaseSounds=False) as tobrin:
        tobrin.wait_for("status:")
        time.sleep(200)
        with record(wav) as recorder:
            keys = press_keys("--text", "a")
            recorder.quiet_for(0.5)
        tobrin.stop(signal.SIGTERM)
    sounds = [sound for sound in find_sounds(wav) if sound.ns > keys[0].ns]
    latency = (sounds[0].ns - keys[0].ns) / 1e6 if sounds else float("inf")
    report.under("first key after three quiet minutes", latency, "ms", 40)
