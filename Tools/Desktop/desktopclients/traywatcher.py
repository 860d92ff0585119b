"""A tray for tests: watcher and host of status notifier items on the session bus, by their D-Bus interfaces."""

import threading

from gi.repository import Gio, GLib

SERVICE, PATH = "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher"
ITEM, MENU = "org.kde.StatusNotifierItem", "com.canonical.dbusmenu"
INTERFACE = """<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<signal name="StatusNotifierHostRegistered"/>
</interface></node>"""


class TrayWatcher:
    """Owns the watcher's name until `close`; `items` are the bus names that registered."""

    def __init__(self):
        self.items = []
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
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self._bus.register_object(PATH, interface, self._called, self._asked, None)
        Gio.bus_own_name_on_connection(self._bus, SERVICE, Gio.BusNameOwnerFlags.NONE, None, None)
        self._bus.emit_signal(None, PATH, SERVICE, "StatusNotifierHostRegistered", None)
        self._ready.set()
        self._loop.run()
        self._bus.close_sync()
        context.pop_thread_default()

    def close(self):
        self._loop.quit()
        self._thread.join()

    def _called(self, _bus, sender, _path, _interface, _method, arguments, invocation):
        name = arguments.unpack()[0]
        self.items.append(sender if name.startswith("/") else name)
        invocation.return_value(None)

    def _asked(self, _bus, _sender, _path, _interface, name):
        return GLib.Variant("b", True) if name.startswith("Is") else GLib.Variant("i", 0)

    # What a host does with the newest item.

    def call(self, interface, path, method, arguments):
        return self._bus.call_sync(self.items[-1], path, interface, method, arguments, None,
                                   Gio.DBusCallFlags.NONE, 10000, None).unpack()

    def click(self):
        self.call(ITEM, "/StatusNotifierItem", "Activate", GLib.Variant("(ii)", (0, 0)))

    def look(self, name):
        """One of the item's properties."""
        return self.call("org.freedesktop.DBus.Properties", "/StatusNotifierItem", "Get",
                         GLib.Variant("(ss)", (ITEM, name)))[0]

    def menu(self):
        """The entries of the menu and of those within it by their labels: number and properties."""
        path = self.look("Menu")
        self.call(MENU, path, "AboutToShow", GLib.Variant("(i)", (0,)))
        _revision, (_root, _properties, entries) = self.call(
            MENU, path, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        found = {}
        while entries:
            entry, *entries = entries
            if "label" in entry[1]:
                found[entry[1]["label"].replace("_", "")] = entry
            entries += entry[2]
        return found

    def choose(self, label):
        self.call(MENU, self.look("Menu"), "Event",
                  GLib.Variant("(isvu)", (self.menu()[label][0], "clicked", GLib.Variant("i", 0), 0)))
