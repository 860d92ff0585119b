"""What is tried with every sound server: keys are heard, who records is known, and a server that goes and comes."""

import time

from desktopclients import screenreader
from installed import SENTENCE, is_open, shown_texts, started, type_in_editor
from listening.panel import eventually
from screen import Screen
from table import Table

AUDIBLE = 0.02  # of full scale


class SoundServer:
    """What differs: how it is started, heard, recorded from."""

    has_sound = False  # the session brings none
    says_who_records = True

    def trial(self, pictures):
        return SoundTrial(self, pictures)


class SoundTrial:
    def __init__(self, server, pictures):
        self.server = server
        self.screen = Screen(pictures, server.name)
        self.table = Table(server.packages)

    def run(self):
        screenreader.start()
        with self.server.around():
            with self.server.running():
                self.try_from_start()
            self.try_late_server()
        return self.table.finish()

    def try_from_start(self):
        with started(quietDuringCalls=True) as program:
            self.table.row("it opens as a window", eventually(is_open, 15))
            self.check_typing("typing in an editor is heard")
            self.table.row("the panel complains of nothing about sound", not self.complaint(), self.complaint())
            self.screen.save("playing")
            self.check_recorder()
            program.stop()
            own = ("Tobrin", "pack:", "keys:", "sound:", "status:", "played:", "Type anywhere")
            told = [line for line in program.lines if not line.startswith(own)]
            self.table.row("nothing but its own words on the terminal", not told, "; ".join(told))

    def check_typing(self, what):
        with self.server.listening() as loudest:
            written = type_in_editor()
        self.table.row(what, written == SENTENCE and loudest() > AUDIBLE,
                       f"peak {loudest():.2f}" if written == SENTENCE else f'"{written}"')

    def check_recorder(self, when=""):
        if not self.server.says_who_records:
            self.table.not_here(f"a program that records pauses it{when}", "this server tells nobody who records")
            return
        with self.server.recorder():
            self.table.row(f"a program that records pauses it{when}", eventually(self.is_paused, 20))
        self.table.row(f"it goes on after that{when}", eventually(lambda: not self.is_paused(), 20))

    @staticmethod
    def is_paused():
        return any("Paused while the mic" in text for text in shown_texts())

    def try_late_server(self):
        """A server that comes when the program has run for a while, goes and comes back."""
        with started():
            eventually(is_open, 15)
            complaint = eventually(self.complaint, 15)
            self.table.row("without it the panel says what is wrong", complaint, complaint)
            self.screen.save("without")
            for what in ("comes later", "comes back"):
                with self.server.running():
                    time.sleep(5)
                    self.check_typing(f"heard when it {what}")
                    self.check_recorder(f", when it {what}")

    @staticmethod
    def complaint():
        return next((each.name for each in screenreader.showing() if each.role in ("alert", "notification")), "")


def peak(data):
    """The greatest of 16-bit samples, as a share of full scale."""
    samples = memoryview(data[44:len(data) & ~1]).cast("h")  # without what may be a file's header
    return max(map(abs, samples), default=0) / 32768
