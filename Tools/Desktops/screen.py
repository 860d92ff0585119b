"""The X server's screen: pictures of it, and what changed in the bar at its upper edge."""

import os
import subprocess

WIDTH, BAR_HEIGHT = 1280, 30


class Screen:
    def __init__(self, folder, desktop):
        self._folder, self._desktop = folder, desktop

    def save(self, name):
        _grab(None, str(self._folder / f"{self._desktop}-{name}.png"))

    def pixels(self, place):
        """The colours at left, top, width and height, row by row."""
        data = _grab(place, "-f", "rawvideo", "-pix_fmt", "rgb24", "-")
        return [tuple(data[at:at + 3]) for at in range(0, len(data), 3)]

    def bar(self):
        return self.pixels((0, 0, WIDTH, BAR_HEIGHT))

    def difference(self, before):
        """Left, top, width and height of what is new in the bar; None where nothing is."""
        new = [at for at, (old, now) in enumerate(zip(before, self.bar())) if old != now]
        if not new:
            return None
        columns, rows = [at % WIDTH for at in new], [at // WIDTH for at in new]
        return min(columns), min(rows), max(columns) - min(columns) + 1, max(rows) - min(rows) + 1


def _grab(place, *output):
    left, top, *size = place or (0, 0)
    return subprocess.run(["ffmpeg", "-y", "-loglevel", "error", "-f", "x11grab", "-draw_mouse", "0",
                           *(["-video_size", "{}x{}".format(*size)] if size else []),
                           "-i", f"{os.environ['DISPLAY']}+{left},{top}", "-frames:v", "1", *output],
                          check=True, stdout=subprocess.PIPE).stdout
