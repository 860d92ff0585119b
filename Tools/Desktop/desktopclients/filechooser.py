"""A desktop portal for tests that offers a file chooser; who chooses is the test."""

from gi.repository import GLib

from .busservice import BusService

SERVICE, PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
INTERFACE = """<node><interface name="org.freedesktop.portal.FileChooser">
<method name="OpenFile"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
<arg type="o" direction="out"/></method>
</interface></node>"""


class FileChooser:
    """Answers each request with the files of `choice`: none stands for a user who changed their mind."""

    def __init__(self):
        self.choice, self.options = [], None
        self._service = BusService(SERVICE, PATH, INTERFACE, self._called)
        self.close = self._service.close

    def _called(self, bus, sender, _path, _interface, _method, arguments, invocation):
        _parent, _title, self.options = arguments.unpack()
        request = f"{PATH}/request/{sender[1:].replace('.', '_')}/{self.options['handle_token']}"
        invocation.return_value(GLib.Variant("(o)", (request,)))
        places = GLib.Variant("as", [each.as_uri() for each in self.choice])
        bus.emit_signal(sender, request, "org.freedesktop.portal.Request", "Response",
                        GLib.Variant("(ua{sv})", (0 if self.choice else 1, {"uris": places})))
