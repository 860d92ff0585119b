#!/usr/bin/python3
"""The panel in a real window: panel_test.py [TEST] PROGRAM PACKS, in a desktop session.

Controls are found by their accessible names and worked by mouse and keyboard. The system's own Python has the
bindings for that.
"""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from desktopclients import screenreader  # noqa: E402
from desktopclients.filechooser import FileChooser  # noqa: E402
from desktopclients.legibility import BARS, legible_share  # noqa: E402
from desktopclients.screensaver import ScreenSaver  # noqa: E402
from desktopclients.traywatcher import TrayWatcher  # noqa: E402
from desktopclients.xclient import KeyGrab, OtherWindow  # noqa: E402
from listening import control, is_heard, panels, record, types_audibly, write_click_pack, xdotool  # noqa: E402
from listening.ownkeyboard import OwnKeyboard  # noqa: E402
from listening.panel import PATIENCE, PanelDriver, eventually, focused, named  # noqa: E402

PACKS, PROGRAM = pathlib.Path(sys.argv.pop()), sys.argv.pop()
ICONS = pathlib.Path(__file__).resolve().parents[2] / "Resources/icons"
CHORD = "ctrl+alt+super+"
# In the order of the Tab key; of a group, the chosen one.
STOPS = ["Sounds", "Preview", "Blue Click, Clicky", "Record Your Keyboard…", "Mute", "Volume", "Strength: Medium", "Key release sounds",
         "Stereo by key position", "Quiet during calls", "Open at login", "More…",
         "Turn sounds on/off with",
         "Shortcut keys: Ctrl+Alt+Super+K", "Shortcut: Ctrl+Alt+Super+K", "Packs Folder…", "Add Pack…", "Quit"]


class PanelTest(PanelDriver):
    program = PROGRAM
    packs = PACKS

    def test_every_switch_is_saved_and_shown(self):
        self.start_with_panel(volume=0.5)
        for name, key, off, on in (("Sounds", "enabled", False, True), ("Key release sounds", "releaseSounds", False, True),
                                   ("Stereo by key position", "spatial", 0.0, 0.5),
                                   ("Quiet during calls", "quietDuringCalls", False, True),
                                   ("Turn sounds on/off with", "shortcutEnabled", False, True)):
            for value in (off, on):
                self.click(name)
                self.saves(key, value)
                self.assertTrue(eventually(lambda: named(name).checked == (value == on)), name)
        self.assertEqual(self.saved()["engineSettings"]["volume"], 0.5, "nothing else was touched")
        self.click("More…")
        for name, key in (("Quiet while the screen is locked", "quietWhileLocked"),
                          ("Mask keys while the sound is recorded", "maskWhileRecorded")):
            self.click(name)
            self.assertTrue(eventually(lambda: self.saved().get("comforts", {}).get(key) is False), self.saved())
        self.shows("No window manager tells which app is in front.")
        self.assertFalse(named("Quiet in full-screen apps"), "a switch that could do nothing")
        self.click("Back")
        entry = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "autostart/app.tobrin.Tobrin.desktop"
        self.click("Open at login")
        self.assertTrue(eventually(entry.exists))
        self.click("Packs Folder…")
        self.assertTrue(eventually((pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Tobrin/Packs").is_dir))

    def test_packs_and_volume_are_heard(self):
        program = self.start_with_panel(quietDuringCalls=False)
        with record(self.folder / "heard.wav") as recorder:
            self.assertTrue(program.wait_until_heard(recorder))
            for share, volume, audible in ((0.0, 0.0, False), (1.0, 1.0, True)):
                self.click("Volume", share)
                self.saves("volume", volume)
                self.assertEqual(types_audibly(recorder), audible)
                recorder.quiet_for(0.5)
            for name in ("Panda, Tactile", "Preview"):
                recorder.forget()
                self.click(name)
                recorder.wait_for("sound")
                recorder.quiet_for(0.5)
            self.click("More…")
            self.click("Part of a keyboard's name")
            xdotool("type", "xtest")
            xdotool("key", "Return")
            self.shows("Take out xtest")
            recorder.quiet_for(0.5)
            self.assertFalse(types_audibly(recorder), "a keyboard that is held back")
            self.click("Take out xtest")
            self.assertTrue(eventually(lambda: types_audibly(recorder)))
            self.click("Back")
            self.shows("Panda · Tactile", "Panda · Fixed strength")
            saver = ScreenSaver()
            self.addCleanup(saver.close)
            for locked in (True, False):
                saver.set_active(locked)
                self.shows("Paused while the screen is locked" if locked else "Panda · Fixed strength")
                self.assertEqual(types_audibly(recorder), not locked)
            self.click("More…")
            for switches, button, audible in (([], 1, False), (["Mouse buttons sound"], 1, True), ([], 4, False),
                                              (["The wheel sounds, too"], 4, True), (["Mouse buttons sound"], 1, False)):
                for switch in switches:
                    self.click(switch)
                recorder.quiet_for(0.5)
                self.assertEqual(is_heard(recorder, ["xdotool", "mousemove", "5", "5", "click", str(button)]), audible, (switches, button))
            self.click("Back")
        self.assertEqual(self.saved()["selectedPack"], "panda")
        self.click("Strength: Slam")
        self.saves("fixedTier", 3)
        self.click("Quit")
        self.assertEqual(program.process.wait(PATIENCE), 0)

    def test_another_output_is_chosen_and_remembered(self):
        def pactl(*words):
            return subprocess.run(["pactl", *words], check=True, stdout=subprocess.PIPE, text=True).stdout.strip()

        def plug():
            return pactl("load-module", "module-null-sink", "sink_name=desk", "sink_properties=device.description=Desk")

        module = plug()
        self.addCleanup(lambda: pactl("unload-module", "module-null-sink"))
        program = self.start_with_panel(quietDuringCalls=False)
        self.click("More…")
        self.click("Plays on: Desk")
        self.click("Louder", 1.0)
        self.assertTrue(eventually(lambda: self.saved()["comforts"]["outputLoudness"].get("desk", {}).get("boost") == 2), self.saved())
        with record(self.folder / "usual.wav", "test_sink") as usual, record(self.folder / "desk.wav", "desk") as desk:
            self.assertTrue(types_audibly(desk))
            usual.forget()
            self.assertFalse(types_audibly(usual))
        pactl("unload-module", module)
        self.shows("Plays on: Desk (away)", "It sounds on test_sink now.")
        with record(self.folder / "usual.wav", "test_sink") as usual:
            self.assertTrue(types_audibly(usual))
        program.stop(signal.SIGTERM)
        plug()
        program = self.start_with_panel(first=True)
        with record(self.folder / "desk.wav", "desk") as desk:
            self.assertTrue(program.wait_until_heard(desk))
        self.assertEqual(self.saved()["comforts"]["output"], "desk")

    def test_the_shortcut_works_from_elsewhere_and_says_when_it_cannot(self):
        self.start_with_panel()
        for on in (False, True):
            xdotool("key", CHORD + "k")
            self.saves("enabled", on)
            self.assertTrue(eventually(lambda: named("Sounds").checked == on))
        other = KeyGrab("s")
        self.click("Shortcut: Ctrl+Alt+Super+S")
        self.shows("Ctrl+Alt+Super+S is already used by another app. Pick another.")
        self.click("Shortcut: Ctrl+Alt+Super+T")
        self.shows("Ctrl+Alt+Super+T in any app to turn sounds on or off")
        other.close()
        self.click("Shortcut: Ctrl+Alt+Super+S")
        self.shows("Ctrl+Alt+Super+S in any app to turn sounds on or off")
        xdotool("key", CHORD + "s")
        self.saves("enabled", False)
        self.click("Shortcut keys: Ctrl+Alt+Super+S")
        self.shows("Shortcut keys: Press a key with Ctrl, Alt or Super…")
        xdotool("key", CHORD + "s")  # let go meanwhile, and chosen again
        self.shows("Shortcut keys: Ctrl+Alt+Super+S")
        self.click("Shortcut keys: Ctrl+Alt+Super+S")
        xdotool("key", "Tab")
        self.assertTrue(eventually(lambda: focused() == "Shortcut: Ctrl+Alt+Super+S"), "left as it was")
        self.click("Shortcut keys: Ctrl+Alt+Super+S")
        xdotool("key", CHORD + "Tab")
        self.click("Shortcut keys: Ctrl+Alt+Super+Tab")
        xdotool("key", "x", "ctrl+shift+F5")
        self.shows("Shortcut keys: Ctrl+Shift+F5", "Ctrl+Shift+F5 in any app to turn sounds on or off")
        xdotool("key", "ctrl+shift+F5")
        self.saves("enabled", True)

    def test_the_keyboard_alone_reaches_and_works_everything(self):
        self.start_with_panel()
        xdotool("windowfocus", "--sync", panels()[0])
        reached = []
        for _ in STOPS:
            xdotool("key", "Tab")
            eventually(lambda: focused() not in [None, *reached[-1:]], 5)
            reached.append(focused())
        self.assertEqual(reached, STOPS)
        xdotool("key", *["shift+Tab"] * 3, "Right")
        self.assertTrue(eventually(lambda: focused() == "Shortcut: Ctrl+Alt+Super+S"))
        self.saves("shortcut", {"keyCode": 1, "modifiers": 11})
        xdotool("key", "shift+Tab", "shift+Tab", "space")
        self.saves("shortcutEnabled", False)
        xdotool("key", *["shift+Tab"] * 6, "Left")
        self.saves("fixedTier", 0)
        for keys, volume in ((("shift+Tab", "Right", "Right"), 0.8), (("Home",), 0), (("Page_Up",), 0.2), (("End",), 1),
                             (("Page_Down",), 0.8), (("shift+Tab", "Return"), 0), (("space",), 0.8)):
            xdotool("key", *keys)
            self.assertTrue(eventually(lambda: abs(self.saved()["engineSettings"]["volume"] - volume) < 1e-5), (keys, self.saved()))
        xdotool("key", "shift+Tab", "shift+Tab")
        for key, pack in (("Down", "panda"), ("Right", "typewriter"), ("Home", "blue-click"), ("End", "typewriter"), ("d", "dome")):
            xdotool("key", key, "Return")
            self.assertTrue(eventually(lambda: self.saved().get("selectedPack") == pack), (key, self.saved()))
        self.click("More…")
        self.assertTrue(eventually(lambda: focused() == "Back"))
        xdotool("key", "Escape")
        self.assertTrue(eventually(lambda: focused() == "More…"), focused())
        self.close_by_keyboard()

    def test_the_first_start_shows_itself_and_the_next_is_quiet(self):
        tray = TrayWatcher()
        self.addCleanup(tray.close)
        welcome = "Type anything: it sounds in every app."
        with record(self.folder / "heard.wav") as recorder:
            program = self.start(first=True)
            recorder.wait_for("sound")
        self.shows(welcome)
        xdotool("key", "a")
        self.assertTrue(eventually(lambda: not named(welcome)))
        program.__exit__()
        self.start(first=True)
        self.assertTrue(eventually(lambda: tray.items))
        time.sleep(1)
        self.assertFalse(panels(), "it is in the tray")
        tray.close()

    def test_missing_late_and_broken_packs(self):
        packs = self.folder / "packs"
        packs.mkdir()
        self.start_with_panel(packs)
        self.shows("No sound packs found.", "No pack · Fixed strength")
        self.close_by_keyboard()
        shutil.copytree(PACKS / "cream", packs / "cream")
        shutil.copytree(PACKS / "dome", packs / "dome")
        for sound in (packs / "dome").rglob("*.wav"):
            sound.write_bytes(b"no sound")
        notes = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Tobrin/Packs/notes"
        notes.mkdir(parents=True)
        self.bring_up()
        self.shows("Cream · Fixed strength")
        self.click("notes, No pack")
        self.assertIn("No pack.json in", named("notes, No pack").description)
        self.click("Dome, Silent tactile")
        broken = eventually(lambda: next((each for each in screenreader.showing() if "couldn't load" in each.name), None))
        self.assertTrue(broken and broken.role == "alert" and broken.name.startswith("Dome couldn't load: "), broken)
        shutil.copytree(PACKS / "dome", packs / "dome", dirs_exist_ok=True)
        self.click("Try Again")
        self.assertTrue(eventually(lambda: not named(broken.name)), "mended, and chosen again")
        control("kill-sound")
        silent = eventually(lambda: next((each for each in screenreader.showing() if each.role == "alert"), None))
        self.assertEqual(silent.name, "No sound: the PipeWire server went away.")
        self.shows("No sound")
        control("start-sound")
        self.assertTrue(eventually(lambda: not named(silent.name)), "it plays again")

    def test_packs_are_added_removed_and_brought_back(self):
        own = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Tobrin/Packs"
        self.start_with_panel(pack="panda")
        self.click("Add Pack…")
        self.shows("Drop packs here: files, archives or folders.")  # there is no portal yet
        chooser = FileChooser()
        self.addCleanup(chooser.close)
        write_click_pack(self.folder / "sources")
        archive = pathlib.Path(shutil.make_archive(str(self.folder / "click"), "zip", self.folder / "sources"))
        broken = self.folder / "broken.zip"
        broken.write_bytes(b"no archive")
        chooser.choice = [archive, broken]
        with record(self.folder / "heard.wav") as recorder:
            self.click("Add Pack…")
            recorder.wait_for("sound")
        self.shows("Click · Fixed strength", "Click · test")
        alert = eventually(lambda: next((each for each in screenreader.showing() if each.role == "alert"), None))
        self.assertTrue(alert and alert.name.startswith("broken.zip can't be added: "), alert)
        self.assertTrue((own / "click/pack.json").exists())

        self.click("Move Click to the trash")
        self.shows("Click is in the trash.", "Typewriter · Fixed strength")
        self.assertFalse(named("Click, test") or named(alert.name) or list(own.iterdir()))
        self.click("Undo")
        self.shows("Click · Fixed strength")
        self.click("Click, test")
        xdotool("key", "Delete")
        self.shows("Click is in the trash.")
        self.assertTrue(eventually(lambda: focused() == "Typewriter, Novelty"), focused())

    def hostile_packs(self):
        """Packs whose authors thought of no panel, and so many that the grid scrolls."""
        names = ("W" * 65, "Two\nlines\nand more", "\u202eפסנתר כתיבה עם שם ארוך מאוד", "⌨️👩‍👩‍👧‍👦" * 20, "a & b <b>", *map(str, range(9)))
        for number, name in enumerate(names):
            folder = shutil.copytree(PACKS / "cream", self.folder / f"packs/{number}")
            manifest = json.loads((folder / "pack.json").read_text(encoding="utf-8"))
            manifest |= {"id": str(number), "name": name, "kind": name * 2, "summary": name * 5, "author": name, "license": "l" * 400}
            (folder / "pack.json").write_text(json.dumps(manifest), encoding="utf-8")
        return self.folder / "packs"

    def test_ones_own_keyboard_is_recorded_and_leaving_keeps_nothing(self):
        keyboard = OwnKeyboard(self.folder, pathlib.Path(PROGRAM).with_name("tobrin-packs"), PACKS / "cream", presses=60)
        self.start_with_panel()
        for _ in range(5):  # where the machine had too much to do, the player fell behind: no keyboard does that
            self.click("Record Your Keyboard…")
            self.shows("test_mic", "Type a few keys.")
            self.click("Start")
            self.shows("Type softly, as if somebody slept next door.", "Softly: 0 of 20")
            with record(self.folder / "heard.wav") as recorder:
                keyboard.play_and_type()
                self.assertFalse([line for line in recorder.lines if "sound" in line], "it hears, and is silent itself")
            if eventually(lambda: named("Softly: 20 of 20"), 10):
                break
            self.click("Cancel")
        self.shows("Softly: 20 of 20")
        self.click("Pause")
        self.shows("Paused. Nothing is recorded.")
        for key, stop in (("Tab", "Skip"), ("Tab", "Finish"), ("Return", "Name of the pack")):  # by the keyboard
            xdotool("key", key)
            self.assertTrue(eventually(lambda: focused() == stop), (stop, focused()))
        xdotool("key", "ctrl+a", "type", "Desk")
        self.click("Keep")
        self.assertTrue(eventually(lambda: self.saved().get("selectedPack") == "desk"), self.saved())
        self.shows("Desk, Recorded")
        self.click("Record Your Keyboard…")
        self.shows("Type a few keys.")
        xdotool("key", "Escape")
        self.shows("Record Your Keyboard…")
        packs = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Tobrin/Packs"
        self.assertEqual([pack.name for pack in packs.iterdir()], ["desk"])

    def test_nothing_is_cut_at_any_size(self):
        hostile = self.hostile_packs()
        for dpi, factor in ((96, 1), (144, 1), (192, 1.5)):
            os.environ.update(QT_FONT_DPI=str(dpi), QT_SCALE_FACTOR=str(factor))
            scale = dpi / 96 * factor  # pixels of the screen in one of the panel's
            program = self.start_with_panel(*([hostile] if dpi == 144 else []))
            for width in (None, 1200, 300 * scale):
                for page, last in ((None, "Quit"), ("More…", "Back")):
                    with self.subTest(dpi=dpi, factor=factor, width=width, page=page):
                        if page:
                            named(page).press()
                        elif width is not None:
                            xdotool("windowsize", "--sync", panels()[0], int(width), 2700)
                            self.assertTrue(eventually(lambda: abs(self.frame()[2] * scale - width) <= scale), self.frame())
                        self.assertTrue(eventually(lambda: self.fits(last)), screenreader.showing())
                named("Back").press()
            program.__exit__()

    @staticmethod
    def frame():
        return next(each for each in screenreader.showing() if each.role == "frame").place

    def fits(self, last="Quit"):
        left, _, span, _ = self.frame()
        # The packs scroll by themselves, in a panel that is looked at in their place.
        places = [each.place for each in screenreader.showing()
                  if each.role not in ("application", "panel", "frame") and each.group != "Packs"]
        lowest = {}
        for x, y, width, height in places:
            # What stands in one column stands one below the other.
            if not (left <= x < x + width <= left + span and height > 0 and y >= lowest.get(x, y)):
                return False
            lowest[x] = y + height
        return bool(named(last))

    def legible_pictures(self, tray):
        pictures = tray.look("IconPixmap")
        for width, _, argb in pictures:
            for bar, colour in BARS.items():
                self.assertGreater(legible_share(argb, colour), 0.2, (bar, width))
        return [argb for _, _, argb in pictures]

    def test_the_tray_item_comes_late_and_works(self):
        themed = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "icons/hicolor/scalable/status"
        shutil.copytree(ICONS, themed)
        program = self.start()
        self.assertTrue(eventually(panels, 3), "a window at once, where there is no tray")
        self.close_by_keyboard()
        tray = TrayWatcher()
        self.addCleanup(lambda: tray.close())
        self.assertTrue(eventually(lambda: tray.items, 20))
        for words in (["--at-login"], ["-session", "1021_2"]):
            self.assertEqual(subprocess.run([PROGRAM, *words], check=False, capture_output=True).stderr, b"")
        self.assertFalse(eventually(panels, 1), "the desktop started a second one, not the user")
        self.assertEqual(tray.look("IconName"), "app.tobrin.Tobrin-playing")
        playing = self.legible_pictures(tray)
        tray.choose("Sounds")
        self.saves("enabled", False)
        self.assertTrue(eventually(lambda: tray.look("IconName") == "app.tobrin.Tobrin-silent"))
        for one, other in zip(playing, self.legible_pictures(tray)):
            self.assertGreater(sum(a != b for a, b in zip(one, other)) / len(one), 0.1, "told apart")
        tray.choose("Panda")
        program.wait_for("pack: Panda")
        self.assertEqual([name for name, entry in tray.menu().items() if entry[1].get("toggle-state") == 1], ["Panda"])

        tray.click()
        self.assertTrue(eventually(panels))
        # A key that is grabbed takes the focus only for a while.
        eventually(lambda: xdotool("getwindowfocus").split() == panels())
        chord = [word for key in ("ctrl", "alt", "super", "k") for word in ("keydown", key)]
        xdotool(*chord, "sleep", 1, *[word.replace("down", "up") for word in chord], "sleep", 0.5)
        self.saves("enabled", True)
        self.assertEqual(len(panels()), 1)
        tray.click()
        self.assertTrue(eventually(lambda: not panels()))

        tray.close()
        tray = TrayWatcher()
        self.assertTrue(eventually(lambda: tray.items, 20), "a tray that starts again gets the item again")
        tray.choose("Quit")
        self.assertEqual(program.process.wait(PATIENCE), 0)

    def start_beside_another_window(self):
        tray = TrayWatcher()
        self.addCleanup(tray.close)
        self.start()
        self.assertTrue(eventually(lambda: tray.items))
        other = OtherWindow()
        self.addCleanup(other.close)
        return tray, other

    def test_a_recording_outlasts_what_brings_its_window_back(self):
        tray, other = self.start_beside_another_window()
        tray.click()
        self.click("Record Your Keyboard…")
        for bring_back in (tray.click, self.start_again, lambda: tray.choose("Open Tobrin")):
            self.shows("Cancel")
            bring_back()
            xdotool("sleep", 0.5, "mousemove", 1390, 5, "windowfocus", other.id, "sleep", 2)
        self.assertTrue(named("Cancel"), "it goes on")
        self.click("Cancel")
        tray.click()
        self.assertTrue(eventually(lambda: not panels()), "nothing is lost any more")

    def test_focus_that_follows_the_pointer_leaves_the_panel_open(self):
        tray, other = self.start_beside_another_window()
        inside, away, focus = ("mousemove", 1300, 200), ("mousemove", 1390, 5), ("windowfocus", other.id)
        pause = ("sleep", 0.5)
        for case, words, stays in (("pointer first", (*inside, *pause, *away, *focus), True),
                                   ("focus first", (*inside, *pause, *focus, *away), True),
                                   ("on its way to the panel", (*away, *pause, *focus, *pause, *inside), True),
                                   ("a click elsewhere", (*inside, *pause, *away, *pause, *focus), False),
                                   ("by another program", (*inside, *pause, *focus), False),
                                   ("by keyboard", (*inside, *pause, "keydown", "alt", *focus, *away, *pause, "keyup", "alt"), False)):
            with self.subTest(case):
                xdotool(*away)
                tray.click()
                self.assertTrue(eventually(lambda: panels() and xdotool("getwindowfocus").split() == panels()))
                xdotool(*words, "sleep", 2 if stays else 0)
                self.assertTrue(eventually(lambda: bool(panels()) == stays, 4))
                if stays:
                    tray.click()
                self.assertTrue(eventually(lambda: not panels()))
                time.sleep(0.3)  # a click sooner than that is the one that closed it


if __name__ == "__main__":
    unittest.main()
