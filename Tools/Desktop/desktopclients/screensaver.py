"""A desktop's screen saver that locks the screen."""

from gi.repository import GLib

from .busservice import BusService

_NAME, _PATH = "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"
_INTERFACE = f"""<node><interface name="{_NAME}"><method name="GetActive"><arg type="b" direction="out"/></method>
<signal name="ActiveChanged"><arg type="b"/></signal></interface></node>"""


class ScreenSaver(BusService):
    """Offers itself until `close`."""

    def __init__(self):
        self._active = False
        super().__init__(_NAME, _PATH, _INTERFACE, self._called)

    def _called(self, _bus, _sender, _path, _interface, _method, _arguments, call):
        call.return_value(GLib.Variant("(b)", (self._active,)))

    def set_active(self, active):
        """Says so to everybody."""
        self._active = active
        self.bus.emit_signal(None, _PATH, _NAME, "ActiveChanged", GLib.Variant("(b)", (active,)))
