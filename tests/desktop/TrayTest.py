"""Rows of a tray menu can be chosen on both kinds of desktops."""
import unittest

from desktop import EmbeddedTray, Program, StatusNotifierHost, User, Windows
from user import TOOLS


class Tray(unittest.TestCase):
    def start_target(self) -> Program:
        target = Program([f"{TOOLS}/tray-target"])
        self.addCleanup(target.__exit__)
        target.wait_for_line("^ready$", seconds=10)
        return target

    def test_embedded_icon_opens_its_menu(self):
        user = User()
        self.addCleanup(user.close)
        tray = EmbeddedTray(Windows(), user)
        target = self.start_target()
        tray.choose(target.pid, row=1)
        target.wait_for_line("^Second row$", seconds=5)
        tray.choose(target.pid, row=0)
        target.wait_for_line("^First row$", seconds=5)

    def test_icon_on_the_bus_tells_its_menu(self):
        host = StatusNotifierHost()
        self.addCleanup(host.close)
        target = self.start_target()
        self.assertEqual(["First row", "Second row"], list(host.rows(target.pid)))
        self.assertEqual("A red square", host.tool_tip(target.pid))
        host.choose(target.pid, "Second row")
        target.wait_for_line("^Second row$", seconds=5)


if __name__ == "__main__":
    unittest.main()
