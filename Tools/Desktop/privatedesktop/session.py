"""One session from start to tear-down, with a command running in it."""

import os
import select
import shutil
import signal
import subprocess
import sys
from dataclasses import dataclass, field

from .control import Control
from .environment import Folders, private_environment
from .processes import Daemons, adopt_orphans, descendants, die_with_parent, end_orphans
from .services import ServiceError, Services
from .soundconfig import write_sound_config

SessionError = ServiceError
_FORWARDED = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)


@dataclass
class Options:
    quantum: int = 256  # frames of a cycle of the sound server
    min_quantum: int = 64  # the least a client may ask for
    suspend_seconds: int = 5  # idle time before a sound device is suspended, 0 never
    extra_sinks: list = field(default_factory=list)  # NAME or NAME:RATE
    tone_mic: bool = False
    screen: str = "1280x800x24"
    wayland: bool = False  # a Wayland session, whose compositor is a window on the X server
    scale: int = 1  # pixels of the Wayland session's screen for each of its units
    sound: bool = True
    system_bus: bool = False
    keep_home: bool = False
    keep_logs: str = ""  # folder that gets the services' logs at the end


class Session:
    """Use as a context manager; `environment` is what a process needs to live inside."""

    def __init__(self, options):
        self._options = options
        self._folders = Folders()
        self.environment = private_environment(self._folders, options.keep_home, options.wayland)
        self._daemons = Daemons(self._folders.log)
        self._services = Services(self._daemons, self._folders, self.environment, options.screen)
        self._control = None

    def __enter__(self):
        adopt_orphans()
        try:
            self._start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def _start(self):
        write_sound_config(self._folders, self._options)
        self._services.start_bus()
        if self._options.system_bus:
            self._services.start_bus("system-bus")
        self._services.start_display()
        if self._options.wayland:
            self._services.start_compositor(self._options.scale)
        if self._options.sound:
            self._services.start_sound()
        self._control = Control(self._folders, self._services, self._daemons)
        self.environment["TOBRIN_DESKTOP_CONTROL"] = self._control.path

    def run(self, command):
        """Runs `command` inside, answering the control socket; returns its exit status, 128 + N for signal N."""
        reading, writing = os.pipe2(os.O_NONBLOCK | os.O_CLOEXEC)
        pending = []
        signal.set_wakeup_fd(writing)
        signal.signal(signal.SIGCHLD, lambda number, frame: None)
        for number in _FORWARDED:
            signal.signal(number, lambda number, frame: pending.append(number))
        process = subprocess.Popen(command, env=self.environment, preexec_fn=die_with_parent)
        while process.poll() is None:
            ready = select.select([reading, self._control], [], [], 1.0)[0]
            if reading in ready:
                os.read(reading, 4096)
            if self._control in ready:
                self._control.serve_one()
            while pending:
                process.send_signal(pending.pop(0))
        signal.set_wakeup_fd(-1)
        if process.returncode >= 0:
            return process.returncode
        print(f"desktop-session: the command was ended by {signal.Signals(-process.returncode).name}",
              file=sys.stderr)
        return 128 - process.returncode

    def close(self):
        """Ends what the command left running, while its desktop still works; then the desktop."""
        for number in _FORWARDED:
            signal.signal(number, signal.SIG_IGN)
        end_orphans(keep=list(self._daemons.pids().values()))
        self._services.stop_all()
        if descendants(os.getpid()):
            end_orphans(keep=[])
        if self._control:
            self._control.close()
        if self._options.keep_logs:
            shutil.copytree(self._folders.log, self._options.keep_logs, dirs_exist_ok=True)
        self._folders.remove()
