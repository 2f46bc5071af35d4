"""Takes the parts of the desktop that tell of a locked screen, and of the machine's sleep."""
import os

from bus_service import BusService
from gi.repository import Gio, GLib

SCREEN_SAVERS = {"org.freedesktop.ScreenSaver": "/org/freedesktop/ScreenSaver",
                 "org.gnome.ScreenSaver": "/org/gnome/ScreenSaver",
                 "org.cinnamon.ScreenSaver": "/org/cinnamon/ScreenSaver",
                 "org.mate.ScreenSaver": "/org/mate/ScreenSaver",
                 "org.xfce.ScreenSaver": "/org/xfce/ScreenSaver"}


class ScreenSaver(BusService):
    def __init__(self, name: str):
        self.is_active = False
        super().__init__(name, SCREEN_SAVERS[name], f"""<node><interface name="{name}">
            <method name="GetActive"><arg type="b" direction="out"/></method>
            <signal name="ActiveChanged"><arg type="b"/></signal></interface></node>""")

    def set(self, is_active: bool):
        self.is_active = is_active
        self._bus.emit_signal(None, self._path, self._name, "ActiveChanged", GLib.Variant("(b)", (is_active,)))

    def _on_call(self, _bus, _sender, _path, _interface, _method, _parameters, invocation):
        invocation.return_value(GLib.Variant("(b)", (self.is_active,)))


_MANAGER = """<node><interface name="org.freedesktop.login1.Manager">
  <method name="GetSessionByPID"><arg type="u" direction="in"/><arg type="o" direction="out"/></method>
  <method name="GetSession"><arg type="s" direction="in"/><arg type="o" direction="out"/></method>
  <method name="Inhibit"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="h" direction="out"/></method>
  <signal name="PrepareForSleep"><arg type="b"/></signal>
</interface></node>"""
_SESSION = """<node><interface name="org.freedesktop.login1.Session">
  <signal name="Lock"/><signal name="Unlock"/>
  <property name="LockedHint" type="b" access="read"/><property name="Active" type="b" access="read"/>
</interface></node>"""
_SESSION_PATH = "/org/freedesktop/login1/session/_31"


class Login(BusService):
    """logind, on a system's bus of the test's own."""

    def __init__(self, address: str):
        self.properties = {"LockedHint": False, "Active": True}
        self.delays: list[int] = []  # our ends of what is held to put off the sleep
        super().__init__("org.freedesktop.login1", "/org/freedesktop/login1", _MANAGER, address,
                         {_SESSION_PATH: _SESSION})

    def set(self, name: str, value: bool):
        self.properties[name] = value
        self._bus.emit_signal(None, _SESSION_PATH, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                              GLib.Variant("(sa{sv}as)", ("org.freedesktop.login1.Session",
                                                          {name: GLib.Variant("b", value)}, [])))

    def signal_session(self, name: str):
        self._bus.emit_signal(None, _SESSION_PATH, "org.freedesktop.login1.Session", name, None)

    def prepare_for_sleep(self, is_going: bool):
        self._bus.emit_signal(None, self._path, "org.freedesktop.login1.Manager", "PrepareForSleep",
                              GLib.Variant("(b)", (is_going,)))

    def is_put_off(self) -> bool:
        """Whether somebody still holds what delays the sleep."""
        return bool(self.delays) and not self._has_ended(self.delays[-1])

    @staticmethod
    def _has_ended(descriptor: int) -> bool:
        try:
            return os.read(descriptor, 1) == b""
        except BlockingIOError:
            return False

    def _on_get(self, _bus, _sender, _path, _interface, name):
        return GLib.Variant("b", self.properties[name])

    def _on_call(self, _bus, _sender, _path, _interface, method, _parameters, invocation):
        if method != "Inhibit":
            invocation.return_value(GLib.Variant("(o)", (_SESSION_PATH,)))
            return
        mine, theirs = os.pipe()
        os.set_blocking(mine, False)
        self.delays.append(mine)
        descriptors = Gio.UnixFDList.new()
        descriptors.append(theirs)
        os.close(theirs)
        invocation.return_value_with_unix_fd_list(GLib.Variant("(h)", (0,)), descriptors)
