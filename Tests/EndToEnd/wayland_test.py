#!/usr/bin/python3
"""The program in a Wayland session: wayland_test.py [TEST] PROGRAM PACKS, in desktop-session --wayland."""

import os
import pathlib
import re
import socket
import subprocess
import sys
import time
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"
sys.path.insert(0, str(TOOLS))
from desktopclients import screenreader  # noqa: E402
from desktopclients.traywatcher import TrayWatcher  # noqa: E402
from listening import Background, panels, xdotool  # noqa: E402
from listening.panel import PATIENCE, PanelDriver, eventually, focused, named  # noqa: E402

PACKS, PROGRAM = pathlib.Path(sys.argv.pop()), pathlib.Path(sys.argv.pop())
LOCKED, SKIPPED = TOOLS / "with-locked-keyboard", 77
TITLE = "Tobrin needs access to the keyboard"
# Notes what it was asked for and does what is written next to that.
PKEXEC = '#!/bin/sh\nprintf "%s\\n" "$@" >"${0%/*}/asked"\n. "${0%/*}/answer"\n'


def locked():
    """What the program is run by; ends all as skipped where that cannot be."""
    if subprocess.run([LOCKED, "true"], check=False).returncode == SKIPPED:
        os._exit(SKIPPED)
    return LOCKED


class WaylandTest(PanelDriver):
    program, packs = PROGRAM, PACKS

    def is_open(self):
        return named("Quit") is not None

    def is_active(self):
        return any(each.role == "frame" and "active" in each.states for each in screenreader.showing())

    @staticmethod
    def frame():
        return next(each for each in screenreader.showing() if each.role == "frame").place

    def ends_below_its_contents(self):
        _, top, _, height = self.frame()
        return 0 <= top + height - named("Quit").at()[1] < 40

    def place(self):
        """The panel's left and upper edge on the screen; only a picture of it shows that."""
        width, height = map(int, xdotool("getdisplaygeometry").split())
        picture = subprocess.run(["ffmpeg", "-loglevel", "error", "-f", "x11grab", "-draw_mouse", "0", "-i",
                                  os.environ["DISPLAY"], "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
                                 check=True, stdout=subprocess.PIPE).stdout
        rows = [picture[y * width * 3:(y + 1) * width * 3] for y in range(height)]
        edge = bytes.fromhex("dfdfe7") * 100  # the outline's upper side
        top = next((y for y in range(height) if edge in rows[y]), None)
        if top is None:
            return None
        left = rows[top].index(edge) // 3
        return left, top

    def test_without_access_it_says_so_asks_for_it_and_goes_on_once_it_has_it(self):
        answer = self.folder / "answer"
        (self.folder / "pkexec").write_text(PKEXEC, encoding="utf-8")
        (self.folder / "pkexec").chmod(0o755)
        os.environ["PATH"] = f"{self.folder}:{os.environ['PATH']}"
        self.within = (locked(),)
        program = self.start_with_panel()
        self.assertIn("keys: no permission to read /dev/input/event0; there is no system message bus", program.lines)
        self.assertIn("status: Needs access to the keyboard", program.lines)
        self.shows(TITLE, "Needs access to the keyboard")
        named("Allow Access…").press()
        self.shows(TITLE, "Access to keys can't be set up: the service tobrin-keys is not installed")
        keyboard, rule = (pathlib.Path(f"/proc/{program.process.pid}/root/{path}")
                          for path in ("dev/input/event0", "etc/udev/rules.d/70-tobrin-keys.rules"))
        rule.touch()
        keyboard.chmod(0o600)
        program.wait_for("keys: kernel keyboards (evdev)")
        self.assertTrue(eventually(lambda: not named(TITLE)))
        refusal = "Access to keys can't be taken back: Not authorized"
        for script, alert in (("echo Not authorized >&2; exit 127", True), ("exit 126", False)):
            answer.write_text(script, encoding="utf-8")
            eventually(lambda: named("Take Back")).press()
            self.assertTrue(eventually(lambda: (named(refusal) is not None) == alert), script)
        answer.write_text("rm /etc/udev/rules.d/*; chmod 0 /dev/input/event0", encoding="utf-8")
        eventually(lambda: named("Take Back")).press()
        self.shows(TITLE, "Needs access to the keyboard")
        asked = (self.folder / "asked").read_text(encoding="utf-8").splitlines()
        self.assertEqual(asked, [str(PROGRAM.parent / "tobrin-key-access"), "--remove"])
        keyboard.chmod(0o600)
        self.assertTrue(eventually(lambda: not named(TITLE)), "taken away and given back")
        self.assertFalse(named("Take Back"), "given by the system, not by its user")
        self.shows("Blue Click · Fixed strength",
                   "Ctrl+Alt+Super+K in any app to turn sounds on or off. Other apps see these keys too.")
        self.assertTrue(eventually(self.ends_below_its_contents), screenreader.showing())

        program.stop()
        log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        log.bind(str(self.folder / "log"))
        log.settimeout(PATIENCE)
        self.within = (LOCKED, "sh", "-c", f'rm -r /dev/input; ln -s {self.folder}/log /dev/log; exec "$0"')
        program = self.start_with_panel()
        eventually(lambda: named("Allow Access…")).press()
        self.shows(TITLE, "Access to keys can't be set up: this system has no input devices")
        while not log.recv(1000).endswith(b": Tobrin: Access to keys can't be set up: this system has no input devices"):
            pass
        log.close()

    def test_the_panel_is_a_small_window_that_moves_closes_and_comes_back(self):
        self.within = ("sh", "-c", f'WAYLAND_DEBUG=1 exec "$0" 2>{self.folder}/said')
        program = self.start_with_panel()
        self.assertEqual(panels(), [], "not by way of X11")
        said = (self.folder / "said").read_text(encoding="utf-8")
        least, most = (re.findall(rf"set_{each}_size\((\d\d+, \d\d+)\)", said) for each in ("min", "max"))
        self.assertTrue(least and least[-1:] == most[-1:], f"one size, so that tiling desktops let it float: {least} {most}")
        maps = pathlib.Path(f"/proc/{program.process.pid}/maps").read_text(encoding="utf-8")
        self.assertNotRegex(maps, "libLLVM|_dri.so|libEGL_", "no graphics drivers for a panel drawn in software")
        self.assertTrue(eventually(self.is_active))
        xdotool("key", "Tab", "space")
        self.saves("enabled", False)
        self.assertEqual(focused(), "Sounds")
        for name, key, value in (("Key release sounds", "releaseSounds", False), ("Strength: Hard", "fixedTier", 2)):
            named(name).press()
            self.saves(key, value)

        x, y = origin = eventually(self.place)
        # The compositor adds up what the pointer moves by, and may have missed where it began: into a corner first.
        for place in ((999, 1199), (0, 0), (x + 50, y + 10)):
            xdotool("mousemove", *place, "sleep", 0.1)
        xdotool("mousedown", 1)
        self.assertTrue(eventually(lambda: xdotool("mousemove_relative", 4, 3) or self.place() not in (None, origin)))
        xdotool("mouseup", 1)
        with Background(["weston-simple-shm"]):
            self.assertTrue(eventually(lambda: not self.is_active()))
            self.bring_up()
            self.assertTrue(eventually(self.is_active), "in front again")
        self.assertTrue(eventually(lambda: xdotool("key", "Escape") or not self.is_open()))
        self.bring_up()
        eventually(lambda: named("Close")).press()
        self.assertTrue(eventually(lambda: not self.is_open()))
        self.assertIsNone(program.process.poll())
        self.assertEqual(program.stop(), 0, program.lines)

    def test_the_tray_item_opens_it_and_it_leaves_with_the_focus(self):
        tray = TrayWatcher()
        self.addCleanup(tray.close)
        self.start()
        self.assertTrue(eventually(lambda: tray.items))
        self.assertEqual(tray.look("IconName"), "", "no theme has it here")
        tray.click()
        self.assertTrue(eventually(self.is_open))
        self.assertTrue(eventually(self.is_active))
        with Background(["weston-simple-shm"]):
            self.assertTrue(eventually(lambda: not self.is_open()))
        time.sleep(0.3)  # a click sooner than that is the one that closed it
        tray.click()
        self.assertTrue(eventually(self.is_open))
        before = self.frame()
        named("Add Pack…").press()  # there is no portal
        self.shows("Drop packs here: files, archives or folders.")
        time.sleep(0.5)
        self.assertEqual(self.frame(), before, "it does not grow over the tray's bar")

    def test_the_self_test_names_what_is_missing(self):
        done = subprocess.run([locked(), PROGRAM, "--selftest"], stdout=subprocess.PIPE, text=True, timeout=60, check=False,
                              env=os.environ | {"TOBRIN_PACKS": str(PACKS)})
        self.assertEqual(done.returncode, 1)
        self.assertIn("FAIL  keyboard tap (access to the keyboard): no permission to read /dev/input/event0", done.stdout)


if __name__ == "__main__":
    unittest.main()
