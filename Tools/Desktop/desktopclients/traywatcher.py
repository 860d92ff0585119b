"""A tray for tests: watcher and host of status notifier items on the session bus, by their D-Bus interfaces."""

from gi.repository import Gio, GLib

from .busservice import BusService

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
        self._service = BusService(SERVICE, PATH, INTERFACE, self._called, self._asked, self._appeared)
        self.close, self._bus = self._service.close, self._service.bus

    @staticmethod
    def _appeared(bus):
        bus.emit_signal(None, PATH, SERVICE, "StatusNotifierHostRegistered", None)

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
