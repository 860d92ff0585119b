"""GNOME's shell on Wayland, in a window that is the whole X screen, with the extension for tray icons."""

import contextlib
import os
import pathlib
import subprocess
import time

from configuration import be_wayland_session
from desktoptrial import Desktop
from listening import Background, xdotool
from listening.panel import eventually
from screen import HEIGHT, WIDTH

DISPLAY = "wayland-gnome"
SETTINGS = {"enabled-extensions": "['ubuntu-appindicators@ubuntu.com']", "welcome-dialog-last-shown-version": "'999'"}


class Gnome(Desktop):
    name, packages = "gnome", ("gnome-shell", "gnome-shell-extension-appindicator")
    bars = ("dark",)  # its bar has one colour
    bar_place = (800, 0, WIDTH - 800, 32)
    elsewhere = (1200, 600)
    draws_frames = tells_front = places_panel = False
    clicks = 2  # one opens the menu

    @contextlib.contextmanager
    def running(self):
        for key, value in SETTINGS.items():
            subprocess.run(["gsettings", "set", "org.gnome.shell", key, value], check=True)
        with self._shell():
            be_wayland_session(DISPLAY, "GNOME")
            with Background(["mousepad"]):
                xdotool("sleep", 5, "key", "super+Up")  # fills the screen behind the panel
                yield

    @contextlib.contextmanager
    def _shell(self):
        socket = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / DISPLAY
        environment = os.environ | {"MUTTER_DEBUG_DUMMY_MODE_SPECS": f"{WIDTH}x{HEIGHT}",
                                    "XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_TYPE": "wayland"}
        with Background(["gnome-shell", "--nested", "--wayland", "--wayland-display", DISPLAY], environment):
            eventually(socket.exists)
            time.sleep(5)
            xdotool("key", "super")  # it starts with all windows in view
            yield

    @contextlib.contextmanager
    def bar(self, _colour):
        subprocess.run(["gnome-extensions", "enable", "ubuntu-appindicators@ubuntu.com"], check=True)
        yield
        subprocess.run(["gnome-extensions", "disable", "ubuntu-appindicators@ubuntu.com"], check=True)


make = Gnome
