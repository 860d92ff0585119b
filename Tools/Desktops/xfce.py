"""XFCE's panel and window manager, on X11."""

import contextlib
import os
import subprocess

from configuration import write
from listening import Background
from xwindows import XDesktop

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


class Xfce(XDesktop):
    name, packages = "xfce", ("xfce4-panel", "xfwm4")

    @contextlib.contextmanager
    def running(self):
        os.environ["XDG_CURRENT_DESKTOP"] = "XFCE"
        write("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", PANEL)
        with Background(["xfwm4"]):
            yield

    def bar(self, colour):
        subprocess.run(["xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode", "-n", "-t", "bool",
                        "-s", str(colour == "dark").lower()], check=True)
        return Background(["xfce4-panel", "--disable-wm-check"])


make = Xfce
