"""XFCE's panel and window manager, on X11."""

import contextlib
import os
import pathlib
import subprocess

from desktopclients.xclient import OtherWindow
from listening import Background, panels, xdotool

PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
"""


class Xfce:
    name, packages = "xfce", ("xfce4-panel", "xfwm4")
    focus_follows_pointer = False
    hears_keys = True

    @contextlib.contextmanager
    def running(self):
        os.environ["XDG_CURRENT_DESKTOP"] = "XFCE"
        file = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(PANEL, encoding="utf-8")
        with Background(["xfwm4"]):
            yield

    def bar(self, colour):
        subprocess.run(["xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode", "-n", "-t", "bool",
                        "-s", str(colour == "dark").lower()], check=True)
        return Background(["xfce4-panel", "--disable-wm-check"])

    def check_popup(self, table):
        self._check_size(table, "the panel")

    def check_window(self, table):
        self._check_size(table, "the window")
        table.row("the window manager draws the title bar", _frame_height() > 0)

    @staticmethod
    def _check_size(table, what):
        words = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", *panels()).splitlines())
        width, height = int(words.get("WIDTH", 0)), int(words.get("HEIGHT", 0))
        table.row(f"{what} has its own size", 0 < width < 500, f"{width}x{height}")

    def point_at_panel(self, _place):
        pass  # the focus stays where it is

    def switch_window(self):
        other = OtherWindow()
        xdotool("windowactivate", other.id, "sleep", 1)
        other.close()


def _frame_height():
    """Pixels above the window's contents."""
    told = subprocess.run(["xprop", "-id", panels()[0], "_NET_FRAME_EXTENTS"], stdout=subprocess.PIPE, text=True, check=True)
    return int(told.stdout.rpartition("=")[2].split(",")[2])
