"""The icon of a program in the tray, and the rows of its menu: the two kinds that desktops have."""
import waiting
from bus_service import BusService
from gi.repository import Gio, GLib

_CALL_MILLISECONDS = 2000

_WATCHER = """<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>"""


class StatusNotifierHost(BusService):
    """Takes the part of a desktop whose panel shows icons over D-Bus (KDE, Xfce, GNOME with an extension)."""

    def __init__(self):
        self._items: list[tuple[str, str]] = []
        super().__init__("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", _WATCHER)

    def _on_call(self, _bus, sender, _path, _interface, method, parameters, invocation):
        if method == "RegisterStatusNotifierItem":
            (name,) = parameters
            # Some give their bus name, some the path of the object.
            self._items.append((sender, name) if name.startswith("/") else (name, "/StatusNotifierItem"))
        invocation.return_value(None)

    def _on_get(self, _bus, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", [owner + path for owner, path in self._items]),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]

    def _call(self, owner, path, interface, method, arguments):
        return self._bus.call_sync(owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                   _CALL_MILLISECONDS, None).unpack()

    def _property(self, item, name: str):
        return self._call(*item, "org.freedesktop.DBus.Properties", "Get",
                          GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", name)))[0]

    def _item_of(self, pid: int):
        def belongs(item):
            try:
                return pid == self._call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                         "GetConnectionUnixProcessID", GLib.Variant("(s)", (item[0],)))[0]
            except GLib.Error:  # an icon of a program that has ended
                return False

        return next((item for item in self._items if belongs(item)), None)

    def wait_for_icon(self, pid: int, seconds: float = 10):
        return waiting.until(f"an icon of process {pid} in the tray", seconds, lambda: self._item_of(pid))

    def tool_tip(self, pid: int) -> str:
        return self._property(self.wait_for_icon(pid), "ToolTip")[2]

    def rows(self, pid: int) -> dict[str, int]:
        """The labels of the menu's rows from the top, with their numbers on the bus."""
        item = self.wait_for_icon(pid)
        menu = (item[0], self._property(item, "Menu"))
        self._call(*menu, "com.canonical.dbusmenu", "AboutToShow", GLib.Variant("(i)", (0,)))
        _revision, (_number, _properties, children) = self._call(
            *menu, "com.canonical.dbusmenu", "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        return {row[1]["label"].replace("_", ""): row[0] for row in children
                if row[1].get("label") and row[1].get("visible", True)}

    def choose(self, pid: int, label: str):
        """What a click on this row of the menu does."""
        item = self.wait_for_icon(pid)
        number = self.rows(pid)[label]
        self._call(item[0], self._property(item, "Menu"), "com.canonical.dbusmenu", "Event",
                   GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)))


class EmbeddedTray:
    """The panel of the private desktop, which embeds a window of the program; its menu is opened by mouse."""

    def __init__(self, windows, user):
        self._windows = windows
        self._user = user
        self._aside = 5

    def wait_for_icon(self, pid: int, seconds: float = 10):
        def look():
            return next((window for window in self._windows.all_below(self._windows.root)
                         if self._windows.property(window, "_XEMBED_INFO") is not None
                         and self._windows.pid(window) == pid and self._windows.is_visible(window)), None)

        return waiting.until(f"an icon of process {pid} in the panel", seconds, look)

    def choose(self, pid: int, row: int):
        """Opens the menu with the right mouse button and takes the row by keyboard, counted from 0 at the top."""
        right = 3
        icon = self.wait_for_icon(pid)
        before = self._windows.popups_of(pid)
        # Never twice on one spot: within 0.4 s that would be a double click, which opens nothing.
        self._aside = -self._aside
        x, y = self._windows.centre(icon)
        self._user.click(x + self._aside, y, right)
        waiting.until(f"an open menu of process {pid}", 5, lambda: self._windows.popups_of(pid) - before)
        self._user.tap(*["Down"] * (row + 1), "Return")
        waiting.until(f"the end of the menu of process {pid}", 5, lambda: self._windows.popups_of(pid) <= before)
