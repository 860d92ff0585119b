"""Runs the desktop tools: press-keys, record-sink, find-onsets, and programs in the background."""

import contextlib
import os
import pathlib
import queue
import signal
import subprocess
import sys
import tempfile
import threading
import time
from dataclasses import dataclass

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
from privatedesktop.processes import die_with_parent  # noqa: E402


@dataclass
class Press:
    ns: int
    keycode: int  # of the X server: the kernel's + 8
    down: bool


@dataclass
class Sound:
    ns: int
    peak_db: float


def tool(name):
    """Path of a desktop tool; TOBRIN_DESKTOP_TOOLS names the folder they were built into."""
    return os.path.join(os.environ["TOBRIN_DESKTOP_TOOLS"], name)


class Background:
    """A program that runs next to the test. Its lines are kept in `lines`; it ends with the `with` block."""

    def __init__(self, command, env=None):
        self.lines = []
        self._arrived = queue.Queue()
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True, env=env,
                                        preexec_fn=die_with_parent)
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            self._arrived.put(line.rstrip("\n"))
        self._arrived.put(None)

    def wait_for(self, text, seconds=30.0):
        """The next line that contains `text`; fails when the program ends or is silent for too long."""
        deadline = time.monotonic() + seconds
        while True:
            try:
                line = self._arrived.get(timeout=max(0.0, deadline - time.monotonic()))
            except queue.Empty:
                raise TimeoutError(f"no line with '{text}' within {seconds} s, but {self.lines}") from None
            if line is None:
                raise RuntimeError(f"ended with {self.process.wait()} before a line with '{text}': {self.lines}")
            self.lines.append(line)
            if text in line:
                return line

    def forget(self):
        """From now on, waiting ignores the lines that have arrived already."""
        while not self._arrived.empty():
            line = self._arrived.get()
            if line is None:
                self._arrived.put(None)
                return
            self.lines.append(line)

    def quiet_for(self, seconds, patience=10.0):
        """Waits until no line has come for so long; False when that does not happen."""
        deadline = time.monotonic() + patience
        while time.monotonic() < deadline:
            try:
                line = self._arrived.get(timeout=seconds)
            except queue.Empty:
                return True
            if line is None:
                self._arrived.put(None)
                return False
            self.lines.append(line)
        return False

    def stop(self, how=signal.SIGTERM, seconds=10.0):
        """Ends the program if it runs, and returns its exit status; all its output is in `lines` then."""
        if self.process.poll() is None:
            self.process.send_signal(how)
        try:
            status = self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise
        self._reader.join()
        while (line := self._arrived.get()) is not None:
            self.lines.append(line)
        self._arrived.put(None)
        return status

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self._reader.join()
        self.process.stdout.close()


@contextlib.contextmanager
def record(path, sink=""):
    """Records while the block runs, from the moment the sink runs; gives the block the recorder."""
    with Background([tool("record-sink"), str(path)] + ([sink] if sink else [])) as recorder:
        recorder.wait_for("recording")
        yield recorder
        time.sleep(0.1)  # the last sound's beginning is in the recording by now
        if recorder.stop(signal.SIGINT) != 0:
            raise RuntimeError("record-sink lost frames")


def press_keys(*arguments):
    """Types (see press-keys) and returns every press and release with its time."""
    output = subprocess.run([tool("press-keys"), *map(str, arguments)], check=True, stdout=subprocess.PIPE,
                            text=True).stdout
    return [Press(int(ns), int(keycode), verb == "press")
            for verb, ns, keycode in (line.split() for line in output.splitlines())]


def press_toggle(letter="k"):
    """Control, alt, super, K: the shortcut that switches sounds off and on."""
    chord = (0xffe3, 0xffe9, 0xffeb, ord(letter))
    keys = [("press", key) for key in chord] + [("release", key) for key in reversed(chord)]
    with tempfile.NamedTemporaryFile("w", encoding="utf-8") as script:
        script.write("".join(f"{at * 30} {verb} {key}\n" for at, (verb, key) in enumerate(keys)))
        script.flush()
        press_keys("--script", script.name)


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], stdout=subprocess.PIPE, text=True, check=False).stdout


def panels():
    """The program's visible windows."""
    return xdotool("search", "--onlyvisible", "--name", "^Tobrin$").split()


def find_sounds(path, floor_db=-60):
    """The sounds that begin in a recording."""
    output = subprocess.run([tool("find-onsets"), str(path), str(floor_db)], check=True, stdout=subprocess.PIPE,
                            text=True).stdout
    return [Sound(int(ns), float(peak)) for _, ns, peak in (line.split() for line in output.splitlines())]
