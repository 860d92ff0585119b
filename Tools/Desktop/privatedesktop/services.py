"""The services of a desktop: message bus, X server, Wayland compositor, sound server."""

import os
import select
import signal
import socket
import subprocess
import time

from .processes import wait_until

COMPOSITOR = """[core]
idle-time=0
[shell]
background-color=0xff3465a4
panel-position=none
animation=none
close-animation=none
startup-animation=none
locking=false
"""
SOUND = ("pipewire-pulse", "wireplumber", "pipewire")
START_SECONDS = 30


class ServiceError(RuntimeError):
    """A service did not come up; the text holds the end of its log."""


class Services:
    """Starts and stops the services; puts their addresses into `environment`, which it shares with its owner."""

    def __init__(self, daemons, folders, environment, screen):
        self._daemons = daemons
        self._folders = folders
        self._environment = environment
        self._screen = screen

    def start_bus(self, name="session-bus"):
        path = f"{self._folders.run}/{name}"
        if os.path.exists(path):
            os.unlink(path)
        self._start_announcing(
            name, lambda fd: ["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--print-address={fd}",
                              f"--address=unix:path={path}"])
        if name == "session-bus":
            self._environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={path}"

    def start_display(self):
        # With -displayfd the server picks a free number itself, so that parallel sessions never collide;
        # a restarted one keeps its number. -noreset: it outlives its last client.
        known = self._environment.get("DISPLAY")
        number = self._start_announcing(
            "display", lambda fd: ["Xvfb", *([known] if known else []), "-displayfd", str(fd), "-screen", "0",
                                   self._screen, "-nolisten", "tcp", "-noreset", "-ac"])
        self._environment["DISPLAY"] = ":" + number

    def start_compositor(self, scale):
        """A Wayland one in a window that is the whole X screen: what the X server types and shows is its."""
        self._folders.write_config("weston.ini", COMPOSITOR)
        width, height, _ = map(int, self._screen.split("x"))
        self._daemons.start("compositor", ["weston", "--backend=x11-backend.so", "--use-pixman", f"--scale={scale}",
                                           f"--width={width // scale}", f"--height={height // scale}",
                                           "--socket=wayland-0"], self._environment)
        self._await("compositor", lambda: _accepts(f"{self._folders.run}/wayland-0"))
        self._environment["WAYLAND_DISPLAY"] = "wayland-0"

    def start_sound(self):
        run = self._folders.run
        self._daemons.start("pipewire", ["pipewire"], self._environment)
        self._await("pipewire", lambda: _accepts(f"{run}/pipewire-0"))
        # The session manager ends at once where it finds no server or no bus.
        self._daemons.start("wireplumber", ["wireplumber"], self._environment)
        self._daemons.start("pipewire-pulse", ["pipewire-pulse"], self._environment)
        self._await("pipewire-pulse", lambda: _accepts(f"{run}/pulse/native"))
        self._await("wireplumber", self._has_default_devices)

    def stop_sound(self):
        """In order, as a service manager does."""
        self._daemons.stop(reversed(SOUND))

    def crash_sound(self):
        """The server goes without a word; its companions follow."""
        self._daemons.stop(["pipewire"], signal.SIGKILL)
        self._daemons.stop(SOUND)

    def stop_all(self):
        self._daemons.stop(SOUND)
        self._daemons.stop(["compositor", "display", "session-bus", "system-bus"])

    def _has_default_devices(self):
        listing = subprocess.run(["pw-metadata", "-n", "default", "0"], env=self._environment, check=False,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
        return b"'default.audio.sink'" in listing and b"'default.audio.source'" in listing

    def _await(self, name, condition):
        if not wait_until(lambda: condition() or not self._daemons.is_running(name), START_SECONDS):
            raise ServiceError(f"{name} is not ready after {START_SECONDS} s\n{self._daemons.log_tail(name)}")
        if not self._daemons.is_running(name):
            raise ServiceError(f"{name} ended\n{self._daemons.log_tail(name)}")

    def _start_announcing(self, name, arguments):
        """Starts a daemon that writes a line to a descriptor once it accepts clients; returns the line."""
        reading, writing = os.pipe()
        try:
            process = self._daemons.start(name, arguments(writing), self._environment, (writing,))
        finally:
            os.close(writing)
        line, deadline = b"", time.monotonic() + START_SECONDS
        with os.fdopen(reading, "rb", buffering=0) as pipe:
            while not line.endswith(b"\n"):
                if time.monotonic() > deadline:
                    raise ServiceError(f"{name} is not ready after {START_SECONDS} s\n{self._daemons.log_tail(name)}")
                if select.select([pipe], [], [], 0.1)[0]:
                    piece = pipe.read(256)
                    if not piece:
                        process.wait(START_SECONDS)
                        raise ServiceError(f"{name} ended\n{self._daemons.log_tail(name)}")
                    line += piece
        return line.decode().strip()


def _accepts(path):
    with socket.socket(socket.AF_UNIX) as client:
        try:
            client.connect(path)
            return True
        except OSError:
            return False
