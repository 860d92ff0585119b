"""Which press made which sound, and how long it took.

A press at time p (taken just before the request to the X server leaves the typist's process) is answered by
the first sound not taken by an earlier press whose first sample the sink plays at s with

    p - 1 ms <= s <= p + window.

The millisecond is how far the recording's times may be off: they follow the sound server's clock, cycle by cycle.
With a window below the least time between presses a missing sound cannot be made up for by the next press's,
so one miss is counted as one; a sound later than that counts as missing.

Its latency is s - p. It holds the way through the X server, the program under test, the wait for the next cycle
of the sound server (uniform between 0 and one cycle, 5.3 ms at 256 frames, when presses do not keep step with
cycles) and the position inside the buffer. It holds no hardware: a null sink plays a buffer the moment its
cycle starts, while a sound card adds the buffers it keeps.
"""

import math
from dataclasses import dataclass

CLOCK_SLACK_NS = 1_000_000


@dataclass
class Match:
    press_ns: int
    latency_ms: float = None  # None: no sound answered
    peak_db: float = None


@dataclass
class Figures:
    presses: int
    missed: int
    p50: float
    p90: float
    p99: float
    worst: float


def match(presses, sounds, window_ms=50.0):
    """One Match for each press, in the order of time."""
    sounds = sorted(sounds, key=lambda sound: sound.ns)
    matches, following = [], 0
    for press in sorted(presses, key=lambda press: press.ns):
        while following < len(sounds) and sounds[following].ns < press.ns - CLOCK_SLACK_NS:
            following += 1
        answer = Match(press.ns)
        if following < len(sounds) and sounds[following].ns <= press.ns + window_ms * 1e6:
            answer.latency_ms = (sounds[following].ns - press.ns) / 1e6
            answer.peak_db = sounds[following].peak_db
            following += 1
        matches.append(answer)
    return matches


def figures(matches):
    """Percentiles by nearest rank: the p-th is the least value that p percent do not exceed."""
    latencies = sorted(each.latency_ms for each in matches if each.latency_ms is not None)

    def rank(percent):
        if not latencies:
            return math.nan
        return latencies[max(0, math.ceil(len(latencies) * percent / 100) - 1)]

    return Figures(len(matches), len(matches) - len(latencies), rank(50), rank(90), rank(99), rank(100))
