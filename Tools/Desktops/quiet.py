"""Quiet in the app in front, as it is chosen in the panel, and in full screen; what is heard is measured."""

import os
import pathlib
import subprocess
import time

from desktopclients import screenreader
from installed import PROGRAM, is_open
from listening import Background, record, xdotool
from listening.panel import eventually, named

FULL_SCREEN, NOT_TOLD = "Quiet in full-screen apps", "This desktop does not tell which app is in front."


def sounds_of_typing():
    with record(pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "quiet.wav") as recorder:
        xdotool("type", "--delay", 200, "quiet now")
        recorder.quiet_for(0.5)
    return recorder.lines.count("sound")


def offer():
    return next((each for each in screenreader.showing()
                 if each.role == "push button" and each.name.startswith("Quiet in ")), None)


def close_panel():
    for _ in range(2):  # the page, then the panel
        xdotool("key", "Escape", "sleep", 1)
    eventually(lambda: not is_open(), 10)
    time.sleep(1)


def open_page():
    subprocess.run([PROGRAM], stdout=subprocess.DEVNULL, check=False, timeout=30)
    eventually(lambda: named("More…"), 20).press()
    time.sleep(1)


def check_quiet(table, program, is_told):
    """Sounds are on; the panel may be open."""
    close_panel()
    with Background(["mousepad", "--disable-server"]) as editor:
        time.sleep(5)  # a new window has the focus
        open_page()
        if not is_told:
            table.row("the panel says that the app in front is not told", named(NOT_TOLD) and not named(FULL_SCREEN))
            return close_panel()
        button = eventually(offer, 10)
        if not table.row("the panel offers the app in front", button, button.name if button else "nothing"):
            return close_panel()
        named(FULL_SCREEN).press()
        close_panel()
        before = sounds_of_typing()
        xdotool("key", "F11", "sleep", 2)
        in_full_screen = sounds_of_typing()
        xdotool("key", "F11", "sleep", 2)
        after = sounds_of_typing()
        table.row("quiet in full screen", before and after and not in_full_screen, f"{before}, {in_full_screen}, {after} sounds")
        open_page()
        eventually(offer, 10).press()
        close_panel()
        chosen = sounds_of_typing()
        editor.process.terminate()
        editor.process.wait()
        time.sleep(1)
        elsewhere = sounds_of_typing()
        table.row("quiet in the chosen app", elsewhere and not chosen, f"{chosen}, elsewhere {elsewhere} sounds")
    table.row("no app is named on the terminal", not any("ousepad" in line for line in program.lines))
