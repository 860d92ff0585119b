"""The program as its package installed it, and what people do with it on every desktop."""

import os
import pathlib
import subprocess
import time

from desktopclients import screenreader
from listening import Background, Tobrin, press_toggle, xdotool
from listening.panel import eventually, named

PROGRAM, PACKS = "/usr/bin/tobrin", "/usr/share/tobrin/Packs"
SENTENCE = "the quick brown fox"
WORDS = {"exclusive": "Tobrin alone", "desktop": "the desktop", "shared": "other programs, too"}
HINTS = {"exclusive": "on or off", "desktop": "settings can change the keys.",
         "shared": "Other apps see these keys too."}


def started(**settings):
    """The program, with all that comes to its terminal among its lines."""
    return Tobrin("/bin/sh", PACKS, ["-c", f"exec {PROGRAM} 2>&1"], **settings)


def is_open():
    return named("Quit") is not None


def sounds_are_on(program):
    return '"enabled": false' not in program.settings_file.read_text(encoding="utf-8")


def type_in_editor():
    """Types into an editor, saves, and returns what the file then contains."""
    file = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "letter.txt"
    file.write_text("", encoding="utf-8")
    with Background(["mousepad", "--disable-server", str(file)]) as editor:
        if "WAYLAND_DISPLAY" in os.environ:
            time.sleep(5)  # a new window has the focus
        else:
            window = eventually(lambda: xdotool("search", "--onlyvisible", "--name", "letter.txt").split())
            xdotool("windowfocus", "--sync", window[0], "sleep", 1)
        xdotool("type", "--delay", 200, SENTENCE)
        xdotool("sleep", 0.5, "key", "ctrl+s")
        eventually(lambda: SENTENCE in file.read_text(encoding="utf-8"), 20)
        editor.process.terminate()
        editor.process.wait()
    return file.read_text(encoding="utf-8").strip()


def check_second_start(table):
    second = subprocess.run([PROGRAM], stdout=subprocess.PIPE, text=True, check=False, timeout=30)
    says = second.stdout == "Tobrin is already running.\n"
    table.row("a second start opens the panel", says and eventually(is_open, 20))


def check_hint(table, route):
    """The panel is open; it says who else has the shortcut's keys."""
    hint = eventually(lambda: next((each for each in shown_texts() if " in any app " in each), ""), 20)
    table.row("the panel says who has the shortcut", hint.endswith(HINTS[route]), WORDS[route])


def shown_texts():
    return [control.name for control in screenreader.showing()]


def check_shortcut(table, program):
    """Sounds are off before, and on after it."""
    table.row("the shortcut switches sounds on and off",
              all(switches("k", program, on) for on in (True, False, True)))


def check_other_shortcut(table, program):
    """The panel is open and sounds are on."""
    if choice := eventually(lambda: named("Shortcut: Ctrl+Alt+Super+S"), 20):
        choice.press()
    time.sleep(2)
    table.row("another shortcut, chosen in the panel, works", all(switches("s", program, on) for on in (False, True)))


def switches(letter, program, on):
    press_toggle(letter)
    return eventually(lambda: sounds_are_on(program) == on, 20)
