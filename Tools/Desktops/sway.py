"""sway with waybar: a tiling Wayland desktop in a window that is the whole X screen."""

import contextlib
import glob
import json
import os
import pathlib
import subprocess

from configuration import be_wayland_session, write
from desktoptrial import Desktop
from listening import Background, xdotool
from listening.panel import eventually

CONFIG = """output X11-1 resolution 1280x1000
xwayland disable
font pango:DejaVu Sans 10
bindsym Mod4+Left focus mode_toggle
"""
BAR = '{"height": 30, "modules-right": ["tray"], "tray": {"icon-size": 22}}'
STYLE = "* {{ border: none; min-height: 0; }} window#waybar {{ background: {}; }}"
COLOURS = {"dark": "#22242a", "light": "#f4f4f4"}


class Sway(Desktop):
    name, packages = "sway", ("sway", "waybar")
    focus_follows_pointer = True
    inside = (1100, 400)

    @contextlib.contextmanager
    def running(self):
        write("sway/config", CONFIG)
        environment = os.environ | {"WLR_BACKENDS": "x11", "WLR_RENDERER": "pixman"}
        with Background(["sway"], environment):
            run = os.environ["XDG_RUNTIME_DIR"]
            sockets = eventually(lambda: glob.glob(f"{run}/sway-ipc.*"))
            displays = eventually(lambda: glob.glob(f"{run}/wayland-?"))
            be_wayland_session(pathlib.Path(displays[0]).name, "sway", SWAYSOCK=sockets[0])
            with Background(["foot"]):
                eventually(lambda: self._window("foot"))
                yield

    def bar(self, colour):
        write("waybar/config", BAR)
        write("waybar/style.css", STYLE.format(COLOURS[colour]))
        return Background(["waybar"])

    def check_popup(self, table):
        self._check_floats(table, "the panel")
        table.row("the panel from the tray has no title bar", self._panel()["border"] in ("csd", "none"))

    def check_window(self, table):
        self._check_floats(table, "the window")
        table.row("the compositor draws the title bar", self._panel()["border"] == "normal")

    def _check_floats(self, table, what):
        table.row(f"{what} floats", self._panel()["type"] == "floating_con")

    def place_of_panel(self, _screen, _before):
        return tuple(self._panel()["rect"][side] for side in ("x", "y", "width", "height"))

    def size_of_window(self):
        panel = eventually(self._panel, 20)
        return tuple(panel["window_rect"][side] for side in ("width", "height")) if panel else (0, 0)

    def point_at_panel(self):
        # Two steps: the compositor focuses where the pointer moves.
        xdotool("mousemove", *self.inside, "sleep", 0.2, "mousemove_relative", 2, 2, "sleep", 0.5)

    def switch_window(self):
        xdotool("keydown", "super", "key", "Left", "sleep", 0.3, "keyup", "super")

    def _panel(self):
        return self._window("app.tobrin.Tobrin")

    def _window(self, app):
        done = subprocess.run(["swaymsg", "-r", "-t", "get_tree"], stdout=subprocess.PIPE, check=False)
        nodes = [json.loads(done.stdout)] if done.returncode == 0 else []
        for node in nodes:
            nodes += node["nodes"] + node["floating_nodes"]
            if node.get("app_id") == app:
                return node
        return None


make = Sway
