"""Takes the part of the desktop that tells programs their settings, such as how large everything is."""
import struct

from Xlib import X, display
from Xlib.protocol import event


class Settings:
    """The settings of the whole screen, told while this stands."""

    def __init__(self):
        self._display = display.Display()
        screen = self._display.screen()
        self._window = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        self._atom = self._display.intern_atom("_XSETTINGS_SETTINGS")
        self._serial = 0
        self.tell({})
        selection = self._display.intern_atom("_XSETTINGS_S0")
        self._window.set_selection_owner(selection, X.CurrentTime)
        manager = event.ClientMessage(window=screen.root, client_type=self._display.intern_atom("MANAGER"),
                                      data=(32, [X.CurrentTime, selection, self._window.id, 0, 0]))
        screen.root.send_event(manager, X.StructureNotifyMask)
        self._display.flush()

    def tell(self, numbers: dict[str, int]):
        """These settings from now on."""
        self._serial += 1
        little_endian = 0
        data = struct.pack("<BxxxII", little_endian, self._serial, len(numbers))
        for name, value in numbers.items():
            number = 0  # the kind of the value
            word = name.encode()
            data += struct.pack("<BxH", number, len(word)) + word + bytes(-len(word) % 4)
            data += struct.pack("<Ii", self._serial, value)
        self._window.change_property(self._atom, self._atom, 8, data)
        self._display.flush()

    def scale(self, factor: float):
        dots_per_inch = 96 * factor
        self.tell({"Xft/DPI": round(dots_per_inch * 1024)})

    def close(self):
        self._display.close()
