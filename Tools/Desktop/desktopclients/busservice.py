"""An object on the session bus that a test offers, with a thread that answers for it."""

import threading

from gi.repository import Gio, GLib


class BusService:
    """Owns `service` until `close`; `called` and `asked` answer methods and properties, as Gio hands them over."""

    def __init__(self, service, path, interface, called, asked=None, offered=None):
        self._ready = threading.Event()
        self._thread = threading.Thread(target=self._serve, args=(service, path, interface, called, asked, offered))
        self._thread.start()
        self._ready.wait(10)

    def _serve(self, service, path, interface, called, asked, offered):
        context = GLib.MainContext()
        context.push_thread_default()
        self._loop = GLib.MainLoop(context=context)
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        flags = Gio.DBusConnectionFlags
        self.bus = Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION)
        self.bus.register_object(path, Gio.DBusNodeInfo.new_for_xml(interface).interfaces[0], called, asked, None)
        Gio.bus_own_name_on_connection(self.bus, service, Gio.BusNameOwnerFlags.NONE, None, None)
        if offered:
            offered(self.bus)
        self._ready.set()
        self._loop.run()
        self.bus.close_sync()
        context.pop_thread_default()

    def close(self):
        self._loop.quit()
        self._thread.join()
