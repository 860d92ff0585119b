"""Another client of the X server, which grabs keys of its own."""

import ctypes

CONTROL_ALT_SUPER = (1 << 2) | (1 << 3) | (1 << 6)
ASYNCHRONOUS = 1


class KeyGrab:
    """Holds control, alt, super and a key until `close`."""

    def __init__(self, letter):
        self._x = ctypes.CDLL("libX11.so.6")
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        self._x.XDefaultRootWindow.restype = self._x.XStringToKeysym.restype = ctypes.c_ulong
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(None))
        key = self._x.XKeysymToKeycode(self._display, ctypes.c_ulong(self._x.XStringToKeysym(letter.encode())))
        root = ctypes.c_ulong(self._x.XDefaultRootWindow(self._display))
        self._x.XGrabKey(self._display, key, CONTROL_ALT_SUPER, root, False, ASYNCHRONOUS, ASYNCHRONOUS)
        self._x.XSync(self._display, False)

    def close(self):
        self._x.XCloseDisplay(self._display)
