"""Plasma on Wayland, in a window that is the whole X screen, with its own portal."""

import contextlib
import os
import pathlib

from configuration import be_wayland_session, write
from desktoptrial import Desktop
from listening import Background
from listening.panel import eventually
from screen import HEIGHT, WIDTH, Screen

DISPLAY = "wayland-plasma"


class Plasma(Desktop):
    name, packages = "plasma", ("plasma-workspace", "kwin-wayland", "xdg-desktop-portal-kde")
    bar_place = (640, HEIGHT - 44, 500, 44)
    elsewhere = (60, 400)
    route = "desktop"

    @contextlib.contextmanager
    def running(self):
        os.environ.pop("QT_QPA_PLATFORM", None)
        socket = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / DISPLAY
        compositor = ["kwin_wayland", "--x11-display", os.environ["DISPLAY"], "--width", str(WIDTH),
                      "--height", str(HEIGHT), "--socket", DISPLAY, "--no-lockscreen"]
        with Background(compositor, os.environ | {"KWIN_COMPOSE": "Q", "XDG_CURRENT_DESKTOP": "KDE"}):
            eventually(socket.exists)
            be_wayland_session(DISPLAY, "KDE", KDE_FULL_SESSION="true", KDE_SESSION_VERSION="5",
                               QT_QUICK_BACKEND="software")
            yield

    @contextlib.contextmanager
    def bar(self, colour):
        write("plasmarc", f"[Theme]\nname=breeze-{colour}\n")
        with Background(["kded5"]), Background(["plasmashell"]):
            eventually(lambda: len(set(Screen.pixels(self.bar_place))) > 3)  # one while it is empty
            yield


make = Plasma
