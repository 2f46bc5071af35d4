"""Takes the part of the program that shows notifications, and keeps what it was asked to show."""
import threading

import waiting
from gi.repository import Gio, GLib

_SERVER = """<node><interface name="org.freedesktop.Notifications">
  <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="GetServerInformation"><arg type="s" direction="out"/><arg type="s" direction="out"/>
    <arg type="s" direction="out"/><arg type="s" direction="out"/></method>
</interface></node>"""


class NotificationServer:
    """`shown` maps the numbers of the notifications that are on the screen to their texts; `count` tells how many
    there ever were."""

    def __init__(self):
        self.shown: dict[int, str] = {}
        self.count = 0
        ready = threading.Event()
        self._thread = threading.Thread(target=self._serve, args=(ready,), daemon=True)
        self._thread.start()
        if not ready.wait(5):
            raise waiting.TookTooLong("the notifications could not take their name on the bus")

    def close(self):
        self._loop.quit()
        self._thread.join()
        self._bus.close_sync()

    def _serve(self, ready: threading.Event):
        context = GLib.MainContext.new()
        context.push_thread_default()
        self._loop = GLib.MainLoop.new(context, False)
        self._bus = Gio.DBusConnection.new_for_address_sync(
            Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION),
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        interface = Gio.DBusNodeInfo.new_for_xml(_SERVER).interfaces[0]
        self._bus.register_object("/org/freedesktop/Notifications", interface, self._on_call, None, None)
        Gio.bus_own_name_on_connection(self._bus, "org.freedesktop.Notifications", Gio.BusNameOwnerFlags.NONE,
                                       lambda *_: ready.set(), None)
        self._loop.run()

    def _on_call(self, _bus, _sender, _path, _interface, method, parameters, invocation):
        answer = None
        if method == "Notify":
            _name, replaced, _icon, _title, text, *_ = parameters.unpack()
            if replaced not in self.shown:
                self.count += 1
                replaced = self.count
            self.shown[replaced] = text
            answer = GLib.Variant("(u)", (replaced,))
        elif method == "CloseNotification":
            self.shown.pop(parameters.unpack()[0], None)
        elif method == "GetCapabilities":
            answer = GLib.Variant("(as)", (["body"],))
        elif method == "GetServerInformation":
            answer = GLib.Variant("(ssss)", ("test", "velorin", "1", "1.2"))
        invocation.return_value(answer)
