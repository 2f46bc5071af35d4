"""Windows of the private desktop: which there are, which one is in front."""
import os

import waiting
from Xlib import X, display
from Xlib.error import XError
from Xlib.protocol import event



class Windows:
    """A connection to the X server, to look around."""

    def __init__(self):
        self.display = display.Display(os.environ["DISPLAY"])
        self.root = self.display.screen().root

    def property(self, window, name: str):
        """The values of a property, or None."""
        try:
            found = window.get_full_property(self.display.intern_atom(name), X.AnyPropertyType)
        except XError:  # the window may be gone
            return None
        return None if found is None else found.value

    def active(self):
        """The window in front, or None."""
        found = self.property(self.root, "_NET_ACTIVE_WINDOW")
        return None if found is None or len(found) == 0 or found[0] == 0 else self._window(found[0])

    def _window(self, number: int):
        return self.display.create_resource_object("window", number)

    def pid(self, window) -> int | None:
        found = self.property(window, "_NET_WM_PID")
        return None if found is None or len(found) == 0 else found[0]

    def title_in_front(self) -> str | None:
        """The title of the window in front, or None. It may change while one looks."""
        active = self.active()
        title = None if active is None else self.property(active, "_NET_WM_NAME")
        return None if title is None else bytes(title).decode()

    def wait_until_active(self, pid: int, seconds: float = 10):
        """The window of the process, once it is in front."""
        def look():
            window = self.active()
            return window if window is not None and self.pid(window) == pid else None

        return waiting.until(f"a window of process {pid} in front", seconds, look)

    def all_below(self, window):
        """Every window below this one, whoever made it."""
        try:
            children = window.query_tree().children
        except XError:
            return
        for child in children:
            yield child
            yield from self.all_below(child)

    def is_visible(self, window) -> bool:
        try:
            return window.get_attributes().map_state == X.IsViewable
        except XError:
            return False

    def popups_of(self, pid: int) -> set[int]:
        """Visible windows of the process that no window manager frames: menus, for instance."""
        return {window.id for window in self.root.query_tree().children
                if self.is_visible(window) and window.get_attributes().override_redirect and self.pid(window) == pid}

    def is_active(self, window) -> bool:
        active = self.active()
        return active is not None and active.id == window.id

    def bring_to_front(self, window):
        """As the user does with a panel: the window manager is asked on the user's behalf."""
        data = (32, [2, X.CurrentTime, 0, 0, 0])
        message = event.ClientMessage(window=window, client_type=self.display.intern_atom("_NET_ACTIVE_WINDOW"), data=data)
        self.root.send_event(message, X.SubstructureNotifyMask | X.SubstructureRedirectMask)
        self.display.flush()

    def corner(self, window) -> tuple[int, int]:
        """Its upper left corner in pixels of the screen."""
        corner = window.translate_coords(self.root, 0, 0)
        # The answer is how far the root's corner lies from the window's.
        return -corner.x, -corner.y

    def centre(self, window) -> tuple[int, int]:
        """Its centre in pixels of the screen."""
        size = window.get_geometry()
        x, y = self.corner(window)
        return x + size.width // 2, y + size.height // 2

    def focus(self) -> int:
        """The window that has the keyboard."""
        focus = self.display.get_input_focus().focus
        return focus if isinstance(focus, int) else focus.id

    def modifiers(self) -> tuple[int, list[int]]:
        """The modifiers that the server holds for pressed, and every key that it does."""
        pressed = self.display.query_keymap()
        keys = [8 * byte + bit for byte in range(32) for bit in range(8) if pressed[byte] >> bit & 1]
        return self.root.query_pointer().mask & 0xFF, keys
