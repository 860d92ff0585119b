"""Files and variables of a desktop's configuration."""

import os
import pathlib
import subprocess


def write(name, text):
    path = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")


def be_wayland_session(display, desktop, **others):
    """For all that starts from here, and for what the message bus starts. Keys of Wayland sessions come from the
    kernel's devices; here the X server that the desktop runs on is all there is, and has the same keys."""
    os.environ.pop("QT_QPA_PLATFORM", None)
    os.environ.update(WAYLAND_DISPLAY=display, XDG_SESSION_TYPE="wayland", XDG_CURRENT_DESKTOP=desktop,
                      TOBRIN_KEYS="x11", **others)
    subprocess.run(["dbus-update-activation-environment", "--all"], check=True)
