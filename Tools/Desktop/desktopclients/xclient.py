"""Other clients of the X server: one that grabs keys, one with a window."""

import ctypes

CONTROL_ALT_SUPER = (1 << 2) | (1 << 3) | (1 << 6)
ASYNCHRONOUS = 1


class XClient:
    """A connection to the X server until `close`."""

    def __init__(self):
        self._x = ctypes.CDLL("libX11.so.6")
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        for call in (self._x.XDefaultRootWindow, self._x.XStringToKeysym, self._x.XCreateSimpleWindow):
            call.restype = ctypes.c_ulong
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(None))
        self._root = ctypes.c_ulong(self._x.XDefaultRootWindow(self._display))

    def close(self):
        self._x.XCloseDisplay(self._display)


class KeyGrab(XClient):
    """Holds control, alt, super and a key."""

    def __init__(self, letter):
        super().__init__()
        key = self._x.XKeysymToKeycode(self._display, ctypes.c_ulong(self._x.XStringToKeysym(letter.encode())))
        self._x.XGrabKey(self._display, key, CONTROL_ALT_SUPER, self._root, False, ASYNCHRONOUS, ASYNCHRONOUS)
        self._x.XSync(self._display, False)


class OtherWindow(XClient):
    """A small window in the screen's upper left corner, which takes the focus where it is given it."""

    def __init__(self):
        super().__init__()
        self.id = self._x.XCreateSimpleWindow(self._display, self._root, 0, 0, 20, 20, 0, 0, 0)
        self._x.XMapWindow(self._display, ctypes.c_ulong(self.id))
        self._x.XSync(self._display, False)
