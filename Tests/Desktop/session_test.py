#!/usr/bin/env python3
"""The private desktop session: restartable, and gone without a trace."""

import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"
CTL = f"{sys.executable} {TOOLS}/desktop-ctl"


def start(script, *options):
    return subprocess.Popen([sys.executable, TOOLS / "desktop-session", *options, "--", "bash", "-ec", script],
                            stdout=subprocess.PIPE, text=True)


def alive(mark):
    """Whether a process with this text in its command line runs."""
    for entry in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            if mark.encode() in entry.read_bytes():
                return True
        except OSError:
            pass
    return False


class DesktopSessionTest(unittest.TestCase):
    def test_services_come_back_after_each_kind_of_end(self):
        session = start(f"""
            {CTL} kill-sound | grep -v pipewire
            ! pactl info >/dev/null 2>&1
            {CTL} start-sound; pactl get-default-source; {CTL} restart-sound; pactl get-default-sink
            {CTL} kill-display; ! xdotool getmouselocation >/dev/null 2>&1
            {CTL} start-display; xdotool getmouselocation
            {CTL} kill-bus; {CTL} start-bus; dbus-send --session --print-reply --dest=org.freedesktop.DBus / \\
              org.freedesktop.DBus.ListNames >/dev/null
            ! {CTL} nonsense""")
        output = session.communicate(timeout=90)[0]
        self.assertEqual(session.returncode, 0, output)
        self.assertIn("test_mic\n", output)

    def test_nothing_outlives_the_session(self):
        for how, status in ((None, 3), (signal.SIGTERM, 143)):
            with self.subTest(how=how), tempfile.NamedTemporaryFile() as mark:
                # The orphan has a session of its own and ignores the polite signal.
                session = start(f"""setsid -f bash -c "trap '' TERM; while :; do sleep 0.1; done # {mark.name}"
                                    echo started; {'exit 3' if how is None else 'exec sleep 60'}""", "--no-sound")
                self.assertEqual(session.stdout.readline(), "started\n")
                if how:
                    time.sleep(0.1)  # let the shell become sleep, which a signal ends
                    session.send_signal(how)
                session.communicate(timeout=30)
                self.assertEqual(session.returncode, status)
                self.assertFalse(alive(mark.name))


if __name__ == "__main__":
    unittest.main()
