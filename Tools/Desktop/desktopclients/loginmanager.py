"""A login manager on the private system bus."""

import ctypes
import os


class LoginManager:
    """Says that the machine goes to sleep and wakes."""

    def __init__(self):
        self._library, self._bus = ctypes.CDLL("libsystemd.so.0"), ctypes.c_void_p()
        self._call("sd_bus_open_system", ctypes.byref(self._bus))
        self._call("sd_bus_request_name", self._bus, b"org.freedesktop.login1", ctypes.c_uint64(0))

    def _call(self, name, *arguments):
        if (status := getattr(self._library, name)(*arguments)) < 0:
            raise OSError(-status, f"{name}: {os.strerror(-status)}")

    def sleeping(self, sleeps):
        self._call("sd_bus_emit_signal", self._bus, b"/org/freedesktop/login1", b"org.freedesktop.login1.Manager",
                   b"PrepareForSleep", b"b", ctypes.c_int(sleeps))
        self._call("sd_bus_flush", self._bus)
