"""Press to sound, in turn with the least that an instrument can do, on an idle and on a busy machine.

Both answer the same kind of typing: 1,000 presses at random moments, 45 to 65 ms apart, in blocks that alternate
between the two, each block with a new process. The program plays a pack of one click that is loud from its first
sample, so that the figures hold the program and nothing of a pack's attack. The click lasts two cycles of the sound
server: where a cycle is lost it is late, not missing.
"""

import contextlib
import math
import os
import pathlib
import signal
import statistics
import subprocess
import sys

from listening import Background, Tobrin, figures, find_sounds, match, press_keys, record, tool

WINDOW_MS = 40.0  # below the least time between two presses
GAP = "45:65"
PEER = "impulse instrument"
# How far beyond the impulse instrument, by state of the machine: p50, p90, p99.
GOALS = {"idle": (1.38, 1.35, 1.30), "busy": (1.50, 1.55, 1.58)}
# For key capture, decision and hand-over to the mixer, ms.
OWN_SHARE_MS = {"idle": 1.1, "busy": 1.5}


@contextlib.contextmanager
def every_core_busy():
    loops = [subprocess.Popen([sys.executable, "-c", "while True: pass"]) for _ in range(os.cpu_count())]
    try:
        yield
    finally:
        for loop in loops:
            loop.kill()
            loop.wait()


def settled_tobrin(program, packs, recorder, force=False):
    tobrin = Tobrin(program, packs, pack="click", volume=1.0, forceSensing=force, releaseSounds=False, spatial=0.0,
                    quietDuringCalls=False, shortcutEnabled=False)
    if not tobrin.wait_until_heard(recorder):
        raise RuntimeError(f"the program is silent: {tobrin.lines}")
    return tobrin


def ready_instrument(recorder):
    instrument = Background([tool("impulse-instrument")])
    instrument.wait_for("ready")
    recorder.quiet_for(0.3)
    return instrument


def answered(start, presses, seed, folder):
    """Types one block at what `start(recorder)` starts."""
    wav = pathlib.Path(folder) / "block.wav"
    with record(wav) as recorder, start(recorder) as instrument:
        keys = press_keys("--random", presses, "--gap", GAP, "--seed", seed, "--delay", 200)
        recorder.quiet_for(0.3)
        instrument.stop(signal.SIGTERM)
    sounds = [sound for sound in find_sounds(wav, -50) if sound.ns >= keys[0].ns]
    return match([key for key in keys if key.down], sounds, WINDOW_MS)


def measure(program, packs, presses, blocks, folder):
    """Matches of the program and of the impulse instrument, a list for each block."""
    ours, limit = [], []
    for block in range(blocks):
        ours.append(answered(lambda recorder: settled_tobrin(program, packs, recorder), presses, block + 1, folder))
        limit.append(answered(ready_instrument, presses, block + 1, folder))
    return ours, limit


def write_shaking(folder):
    """A second of a case that shakes now more, now less, so that the meter shows another force for every key."""
    trace = pathlib.Path(folder) / "shaking.csv"
    rows = (f"{i * 1_000_000},0,0,{1 + (0.08 + 0.06 * math.sin(i / 17)) * (-1) ** i:.6f}" for i in range(1000))
    trace.write_text("time_ns,x,y,z\n" + "\n".join(rows) + "\n", encoding="utf-8")
    return trace


def with_panel(program, packs, recorder):
    tobrin = settled_tobrin(program, packs, recorder, force=True)
    subprocess.run([program], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^Tobrin$"], check=True,
                   stdout=subprocess.DEVNULL)
    return tobrin


def report_panel(report, program, packs, presses, blocks, folder):
    """What the open panel adds, its meter moving with every key, to the same typing without it."""
    os.environ["TOBRIN_MOTION_TRACE"] = str(write_shaking(folder))
    closed, shown = [], []
    for block in range(blocks):
        closed += answered(lambda recorder: settled_tobrin(program, packs, recorder, force=True), presses, block + 1,
                           folder)
        shown += answered(lambda recorder: with_panel(program, packs, recorder), presses, block + 1, folder)
    del os.environ["TOBRIN_MOTION_TRACE"]
    without, beside = figures(closed), figures(shown)
    report.under("added by the panel's moving meter, p99", max(0.0, beside.p99 - without.p99), "ms", 1)
    report.under(f"misses in {beside.presses:,} beside it", max(0, beside.missed - without.missed), "keys", 0)


def spread_of_blocks(blocks):
    medians = sorted(figures(block).p50 for block in blocks)
    if len(medians) < 4:
        return 0.0
    low, middle, high = statistics.quantiles(medians, n=4)
    return (high - low) / middle


def report_latency(report, state, ours, limit):
    mine, theirs = figures(sum(ours, [])), figures(sum(limit, []))
    spread = spread_of_blocks(ours)
    for name, goal in zip(("p50", "p90", "p99"), GOALS[state]):
        report.beside(f"press to sound, {state}, {name}", getattr(mine, name), "ms", PEER, getattr(theirs, name), goal,
                      spread)
    report.under(f"the program's own share, {state}, p50", max(0.0, mine.p50 - theirs.p50), "ms", OWN_SHARE_MS[state])
    # What the machine itself loses, the impulse instrument loses as well.
    report.under(f"misses in {mine.presses:,} beyond those of the {PEER}, {state}", max(0, mine.missed - theirs.missed),
                 "keys", 0)
