"""Takes the part of the program that shows notifications, and keeps what it was asked to show."""
from bus_service import BusService
from gi.repository import GLib

_SERVER = """<node><interface name="org.freedesktop.Notifications">
  <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="GetServerInformation"><arg type="s" direction="out"/><arg type="s" direction="out"/>
    <arg type="s" direction="out"/><arg type="s" direction="out"/></method>
  <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
</interface></node>"""


class NotificationServer(BusService):
    """`shown` maps the numbers of the notifications that are on the screen to their texts; `count` tells how many
    there ever were."""

    def __init__(self):
        self.shown: dict[int, str] = {}
        self.actions: dict[int, list[str]] = {}
        self.count = 0
        super().__init__("org.freedesktop.Notifications", "/org/freedesktop/Notifications", _SERVER)

    def invoke(self, number: int, action: str):
        """The user presses a button."""
        self._bus.emit_signal(None, self._path, "org.freedesktop.Notifications", "ActionInvoked",
                              GLib.Variant("(us)", (number, action)))

    def _on_call(self, _bus, _sender, _path, _interface, method, parameters, invocation):
        answer = None
        if method == "Notify":
            _name, replaced, _icon, _title, text, actions, *_ = parameters.unpack()
            if replaced not in self.shown:
                self.count += 1
                replaced = self.count
            self.shown[replaced] = text
            self.actions[replaced] = actions
            answer = GLib.Variant("(u)", (replaced,))
        elif method == "CloseNotification":
            self.shown.pop(parameters.unpack()[0], None)
        elif method == "GetCapabilities":
            answer = GLib.Variant("(as)", (["body", "actions"],))
        elif method == "GetServerInformation":
            answer = GLib.Variant("(ssss)", ("test", "velorin", "1", "1.2"))
        invocation.return_value(answer)
