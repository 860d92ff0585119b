"""How loud a recording is, and when: for sounds whose level matters more than their beginning."""

import array
import math
import struct


def frames(path):
    """All samples of a WAV file of 32-bit floats as record-sink writes it, and its channels."""
    data = path.read_bytes()
    channels, = struct.unpack_from("<H", data, 22)
    at = 12
    while data[at:at + 4] != b"data":
        at += 8 + struct.unpack_from("<I", data, at + 4)[0]
    size = min(struct.unpack_from("<I", data, at + 4)[0], len(data) - at - 8)
    return array.array("f", data[at + 8:at + 8 + size // 4 * 4]), channels


def steepest_fall(path):
    """The greatest fall from one sample to the next of the left channel, and the channel's greatest sample."""
    samples, channels = frames(path)
    left = samples[::channels]
    return max(before - after for before, after in zip(left, left[1:])), max(left)


def plateaus_db(path, floor_db=-60.0, window=480):
    """Level of each stretch above the floor, in dB of RMS: the median of its windows, so that the
    beginning and the end of a steady tone weigh nothing."""
    samples, channels = frames(path)
    length = window * channels
    levels = []
    for start in range(0, len(samples) - length, length):
        power = sum(each * each for each in samples[start:start + length]) / length
        levels.append(10 * math.log10(power) if power > 0 else -math.inf)
    stretches, current = [], []
    for level in levels + [-math.inf]:
        if level > floor_db:
            current.append(level)
        elif current:
            stretches.append(sorted(current)[len(current) // 2])
            current = []
    return stretches
