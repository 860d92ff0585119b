"""The X server's screen: pictures of it, and what changed in a part of it."""

import os
import subprocess
import time

WIDTH, HEIGHT = 1280, 1000
SIZE = f"{WIDTH}x{HEIGHT}x24"


class Screen:
    def __init__(self, folder, desktop):
        self._folder, self._desktop = folder, desktop

    def save(self, name):
        _grab(None, str(self._folder / f"{self._desktop}-{name}.png"))

    @staticmethod
    def pixels(place):
        """The colours at left, top, width and height, row by row."""
        data = _grab(place, "-f", "rawvideo", "-pix_fmt", "rgb24", "-")
        return [tuple(data[at:at + 3]) for at in range(0, len(data), 3)]

    def settled(self, place, seconds=60):
        """The same once nothing has changed there for three seconds; desktops draw themselves in steps."""
        deadline, seen = time.monotonic() + seconds, None
        while (now := self.pixels(place)) != seen and time.monotonic() < deadline:
            seen = now
            time.sleep(3)
        return now

    def difference(self, before, place):
        """Left, top, width and height of what is new at a place; None where nothing is."""
        left, top, width, _ = place
        new = [at for at, (old, now) in enumerate(zip(before, self.pixels(place))) if old != now]
        if not new:
            return None
        columns, rows = [at % width for at in new], [at // width for at in new]
        return (left + min(columns), top + min(rows), max(columns) - min(columns) + 1, max(rows) - min(rows) + 1)


def _grab(place, *output):
    left, top, *size = place or (0, 0)
    return subprocess.run(["ffmpeg", "-y", "-loglevel", "error", "-f", "x11grab", "-draw_mouse", "0",
                           *(["-video_size", "{}x{}".format(*size)] if size else []),
                           "-i", f"{os.environ['DISPLAY']}+{left},{top}", "-frames:v", "1", *output],
                          check=True, stdout=subprocess.PIPE).stdout
