"""A desktop portal for tests that offers a file chooser; who chooses is the test."""

import threading

from gi.repository import Gio, GLib

SERVICE, PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
INTERFACE = """<node><interface name="org.freedesktop.portal.FileChooser">
<method name="OpenFile"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
<arg type="o" direction="out"/></method>
</interface></node>"""


class FileChooser:
    """Answers each request with the files of `choice`: none stands for a user who changed their mind."""

    def __init__(self):
        self.choice, self.options = [], None
        self._loop = GLib.MainLoop()
        self._ready = threading.Event()
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()
        self._ready.wait(10)

    def _serve(self):
        context = GLib.MainContext()
        context.push_thread_default()
        self._loop = GLib.MainLoop(context=context)
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        flags = Gio.DBusConnectionFlags
        self._bus = Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION)
        self._bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], self._called, None, None)
        Gio.bus_own_name_on_connection(self._bus, SERVICE, Gio.BusNameOwnerFlags.NONE, None, None)
        self._ready.set()
        self._loop.run()
        self._bus.close_sync()
        context.pop_thread_default()

    def close(self):
        self._loop.quit()
        self._thread.join()

    def _called(self, _bus, sender, _path, _interface, _method, arguments, invocation):
        _parent, _title, self.options = arguments.unpack()
        request = f"{PATH}/request/{sender[1:].replace('.', '_')}/{self.options['handle_token']}"
        invocation.return_value(GLib.Variant("(o)", (request,)))
        places = GLib.Variant("as", [each.as_uri() for each in self.choice])
        self._bus.emit_signal(sender, request, "org.freedesktop.portal.Request", "Response",
                              GLib.Variant("(ua{sv})", (0 if self.choice else 1, {"uris": places})))
