"""Desktops of X11: their window manager is asked by way of the X server."""

import subprocess

from desktopclients.xclient import OtherWindow
from desktoptrial import Desktop
from listening import panels, xdotool


class XDesktop(Desktop):
    route = "exclusive"

    def check_window(self, table):
        table.row("the window manager draws the title bar", _frame_height() > 0)
        table.row("the window has the program's icon", "Icon (" in _asked("xprop", "_NET_WM_ICON"))

    def size_of_window(self):
        words = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", *panels()).splitlines())
        return int(words.get("WIDTH", 0)), int(words.get("HEIGHT", 0))

    def switch_window(self):
        other = OtherWindow()
        xdotool("windowactivate", other.id, "sleep", 2)
        other.close()


def _asked(*command):
    """What xprop or xwininfo say of the panel's window."""
    program, *words = command
    return subprocess.run([program, "-id", panels()[0], *words], stdout=subprocess.PIPE, text=True, check=True).stdout


def _frame_height():
    """Pixels above the window's contents."""
    return int(_asked("xwininfo").partition("Relative upper-left Y:")[2].split()[0])
