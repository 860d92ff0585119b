"""What is tried in every desktop: the tray's icon, the panel, keys, the shortcut, a second start, no tray."""

import contextlib
import os
import pathlib
import time

from desktopclients import screenreader
from desktopclients.legibility import legible_share
from installed import (SENTENCE, check_hint, check_other_shortcut, check_second_start, check_shortcut, is_open,
                       sounds_are_on, started, type_in_editor)
from listening import record, xdotool
from listening.panel import eventually, named
from quiet import check_quiet
from screen import HEIGHT, WIDTH, Screen
from table import Table

LEGIBLE = 0.15  # share of the icon's place


class Desktop:
    """What differs from desktop to desktop; most are as it says here."""

    has_sound = True
    bars = ("dark", "light")
    bar_place = (0, 0, WIDTH, 30)  # where the tray is: left, top, width, height
    elsewhere, inside = (60, 900), (640, 400)  # a terminal or nothing, the panel
    focus_follows_pointer = False
    clicks = 1  # on the tray's icon, to open the panel
    route = "shared"  # of the shortcut
    draws_frames = True
    tells_front = True  # which app is in front
    places_panel = True  # by the tray

    @property
    def beyond_bar(self):
        """The screen without the bar."""
        _, top, _, height = self.bar_place
        return (0, height, WIDTH, HEIGHT - height) if top == 0 else (0, 0, WIDTH, top)

    def trial(self, pictures):
        return DesktopTrial(self, pictures)

    def without_bar(self):
        return contextlib.nullcontext()

    def check_popup(self, table):
        pass

    def check_window(self, table):
        pass

    def point_at_panel(self):
        pass  # the focus stays where it is

    def switch_window(self):
        xdotool("mousemove", *self.elsewhere, "sleep", 0.3, "click", 1)

    def place_of_panel(self, screen, before):
        """Left, top, width and height; `before` is what `beyond_bar` showed without it."""
        return screen.difference(before, self.beyond_bar) or (0, 0, 0, 0)

    def size_of_window(self):
        window = next((each for each in screenreader.showing() if each.role in ("frame", "window", "filler")), None)
        return window.place[2:] if window else (0, 0)


class DesktopTrial:
    def __init__(self, desktop, pictures):
        self.desktop = desktop
        self.screen = Screen(pictures, desktop.name)
        self.table = Table(desktop.packages)

    def run(self):
        screenreader.start()
        with self.desktop.running():
            for bar in self.desktop.bars:
                with self.desktop.bar(bar):
                    self.try_bar(bar)
            self.try_without_bar()
        return self.table.finish()

    def try_bar(self, bar):
        time.sleep(3)
        empty = self.screen.settled(self.desktop.bar_place)
        with started() as program:
            program.wait_for("status:")
            place = eventually(lambda: self.screen.difference(empty, self.desktop.bar_place), 20)
            if not self.table.row(f"tray icon on a {bar} bar", place):
                return
            self.screen.settled(self.desktop.bar_place)
            place = self.screen.difference(empty, self.desktop.bar_place)
            sounding = self.check_icon(bar, "sounding", place)
            self.try_panel(place, program)
            silent = self.check_icon(bar, "silent", place)
            self.table.row(f"sounding and silent look different, {bar} bar", sounding != silent)
            if bar == self.desktop.bars[0]:
                self.try_keys(program)
                check_second_start(self.table)
                check_other_shortcut(self.table, program)
                check_quiet(self.table, program, self.desktop.tells_front)

    def check_icon(self, bar, state, place):
        xdotool("mousemove", *self.desktop.elsewhere, "sleep", 1)
        self.screen.save(f"{bar}-{state}")
        pixels = self.screen.pixels(place)
        behind = max(set(pixels), key=pixels.count)
        share = legible_share(b"".join(b"\xff" + bytes(each) for each in pixels), behind)
        self.table.row(f"icon legible, {state}, {bar} bar", share >= LEGIBLE, f"{share:.0%}")
        return pixels

    def open_panel(self, place):
        left, top, width, height = place
        xdotool("mousemove", left + width // 2, top + height // 2, "sleep", 0.5,
                "click", "--repeat", self.desktop.clicks, "--delay", 100, 1)
        return eventually(is_open, 20)

    def try_panel(self, place, program):
        clicks = "a click opens" if self.desktop.clicks == 1 else "two clicks open"
        before = self.screen.pixels(self.desktop.beyond_bar)
        self.table.row(f"{clicks} the panel", self.open_panel(place))
        self.check_size("the panel")
        if self.desktop.places_panel:
            self.check_place(before, place)
        self.desktop.check_popup(self.table)
        check_hint(self.table, self.desktop.route)
        time.sleep(0.5)
        self.screen.save("panel")
        self.desktop.point_at_panel()
        if self.desktop.focus_follows_pointer:
            self.pass_by(place)
        if not is_open():
            return
        named("Sounds").press()
        self.table.row("the switch of sounds is saved", eventually(lambda: not sounds_are_on(program)))
        self.desktop.switch_window()
        self.table.row("a switch of window closes it", eventually(lambda: not is_open(), 20))

    def pass_by(self, place):
        xdotool("mousemove", *self.desktop.elsewhere, "sleep", 2)
        if not self.table.row("the pointer passes, the panel stays", is_open()):
            self.open_panel(place)
        self.desktop.point_at_panel()

    def check_place(self, before, icon):
        """The panel is at the bar and at the icon's place along it."""
        time.sleep(1)
        left, top, width, height = self.desktop.place_of_panel(self.screen, before)
        _, bar_top, _, bar_height = self.desktop.bar_place
        gap = top - bar_height if bar_top == 0 else bar_top - (top + height)
        beside = left <= icon[0] + icon[2] and icon[0] <= left + width
        self.table.row("the panel opens by the tray", 0 <= gap <= 24 and beside, f"{gap} pixels off the bar")

    def check_size(self, what):
        width, height = self.desktop.size_of_window()
        self.table.row(f"{what} has its own size", 0 < width < 500, f"{width}x{height}")

    def try_keys(self, program):
        """Sounds are off."""
        check_shortcut(self.table, program)
        with record(pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "heard.wav") as recorder:
            written = type_in_editor()
        sounds = recorder.lines.count("sound")
        self.table.row("typing in an editor is heard", written == SENTENCE and sounds >= len(SENTENCE),
                       f"{sounds} sounds" if written == SENTENCE else f'"{written}"')

    def try_without_bar(self):
        with self.desktop.without_bar(), started():
            self.table.row("no tray: it opens as a window", eventually(is_open, 15))
            time.sleep(1)
            self.check_size("the window")
            self.desktop.check_window(self.table)
            titles = named("Close") is None
            self.table.row("one title bar", titles == self.desktop.draws_frames)
            self.screen.save("window")
