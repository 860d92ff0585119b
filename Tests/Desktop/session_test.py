#!/usr/bin/env python3
"""A private desktop session leaves no trace."""

import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"


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
    def test_nothing_outlives_the_session(self):
        for how, status in ((None, 3), (signal.SIGTERM, 143)):
            with self.subTest(how=how), tempfile.NamedTemporaryFile() as mark:
                # The orphan has a session of its own and ignores the polite signal.
                script = f"""setsid -f bash -c "trap '' TERM; while :; do sleep 0.1; done # {mark.name}"
                                    echo started; {'exit 3' if how is None else 'exec sleep 60'}"""
                session = subprocess.Popen(
                    [sys.executable, TOOLS / "desktop-session", "--no-sound", "--", "bash", "-ec", script],
                    stdout=subprocess.PIPE, text=True)
                self.assertEqual(session.stdout.readline(), "started\n")
                if how:
                    time.sleep(0.1)  # let the shell become sleep, which a signal ends
                    session.send_signal(how)
                session.communicate(timeout=30)
                self.assertEqual(session.returncode, status)
                self.assertFalse(alive(mark.name))


if __name__ == "__main__":
    unittest.main()
