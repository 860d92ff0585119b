"""i3, which tiles windows on X11, with its own bar."""

import contextlib
import os
import pathlib

from configuration import write
from listening import Background
from listening.panel import eventually
from xwindows import XDesktop

CONFIG = "# i3 config file (v4)\nfont pango:DejaVu Sans 10\nipc-socket {socket}\n"
BAR = """bar {{
  position top
  tray_output screen
  colors {{ background {0} }}
}}
"""
COLOURS = {"dark": "#22242a", "light": "#f4f4f4"}


class I3(XDesktop):
    name, packages = "i3", ("i3-wm",)
    focus_follows_pointer = True

    @contextlib.contextmanager
    def running(self):
        os.environ["XDG_CURRENT_DESKTOP"] = "i3"
        yield

    @contextlib.contextmanager
    def bar(self, colour):
        with self._manager(BAR.format(COLOURS[colour])):
            yield

    def without_bar(self):
        return self._manager("")

    @contextlib.contextmanager
    def _manager(self, bar):
        socket = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "i3-ipc"
        write("i3/config", CONFIG.format(socket=socket) + bar)
        socket.unlink(missing_ok=True)
        with Background(["i3"]) as manager:
            eventually(socket.exists)
            yield
            manager.stop()


make = I3
