"""Takes a part of the desktop on the session's bus, or on another, on a thread of its own."""
import threading

import waiting
from gi.repository import Gio, GLib


class BusService:
    """An object at `path` under the name `name`, as `description` says, and further ones by their paths: a subclass
    answers in `_on_call`, and in `_on_get` for properties."""

    _on_get = None

    def __init__(self, name: str, path: str, description: str, address: str | None = None,
                 further: dict[str, str] | None = None):
        self._name, self._path = name, path
        self._address = address or Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION)
        self._objects = {path: description, **(further or {})}
        ready = threading.Event()
        self._thread = threading.Thread(target=self._serve, args=(ready,), daemon=True)
        self._thread.start()
        if not ready.wait(5):
            raise waiting.TookTooLong(f"{name} could not be had on the bus")

    def close(self):
        """It goes away: its name is free again."""
        self._loop.quit()
        self._thread.join()
        self._bus.close_sync()

    def _serve(self, ready: threading.Event):
        context = GLib.MainContext.new()
        context.push_thread_default()
        self._loop = GLib.MainLoop.new(context, False)
        self._bus = Gio.DBusConnection.new_for_address_sync(
            self._address,
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        for path, description in self._objects.items():
            interface = Gio.DBusNodeInfo.new_for_xml(description).interfaces[0]
            self._bus.register_object(path, interface, self._on_call, self._on_get, None)
        Gio.bus_own_name_on_connection(self._bus, self._name, Gio.BusNameOwnerFlags.NONE, lambda *_: ready.set(), None)
        self._loop.run()
