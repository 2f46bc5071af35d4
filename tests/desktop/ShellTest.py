"""The shell around the overlay: windows at the first and the second start, the tray icon on every kind of desktop,
the notification of an error.

The classes want desktops that lack different parts; CMakeLists.txt tells which.
"""
import json
import os
import pathlib
import signal
import unittest

import waiting
from desktop import EmbeddedTray, Program, StatusNotifierHost, User, Windows
from dictation import HOLD, Velorin
from notifications import NotificationServer

PREFERENCES = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velorin" / "preferences.json"


class Shell(unittest.TestCase):
    def setUp(self):
        self.windows = Windows()
        PREFERENCES.unlink(missing_ok=True)

    def start(self, **arguments) -> Velorin:
        velorin = Velorin(**arguments)
        self.addCleanup(velorin.__exit__)
        return velorin

    def window_of(self, velorin: Velorin):
        """A window of the program that a window manager frames, or None."""
        clients = self.windows.property(self.windows.root, "_NET_CLIENT_LIST")
        for number in clients if clients is not None else []:
            window = self.windows._window(number)
            if self.windows.pid(window) == velorin.pid:
                return window
        return None


class WholeDesktop(Shell):
    def test_the_first_start_opens_a_window_in_front(self):
        velorin = self.start(first_start=True)
        self.windows.wait_until_active(velorin.pid)

    def test_later_starts_open_none_until_it_is_started_again(self):
        velorin = self.start()
        tray = EmbeddedTray(self.windows, None)
        tray.wait_for_icon(velorin.pid)  # the last thing that is made
        self.assertIsNone(self.window_of(velorin))
        second = self.start(ready="")
        self.assertEqual(0, second.wait_for_end(10))
        self.windows.wait_until_active(velorin.pid)

    def test_quit_from_the_panel_that_embeds(self):
        user = User()
        self.addCleanup(user.close)
        velorin = self.start()
        tray = EmbeddedTray(self.windows, user)
        tray.wait_for_icon(velorin.pid)
        # Start, Settings, Onboarding, Updates, Quit: the arrow keys pass over what is only to be read.
        tray.choose(velorin.pid, row=4)
        self.assertEqual(0, velorin.wait_for_end(10))

    def test_killed_it_starts_again(self):
        self.start().end(signal.SIGKILL)
        velorin = self.start()
        self.assertTrue(velorin.is_running())


class WithoutTray(Shell):
    def test_the_icon_comes_with_a_panel_that_comes_late_and_again(self):
        velorin = self.start()
        for _ in range(2):
            host = StatusNotifierHost()
            host.wait_for_icon(velorin.pid)
            rows = list(host.rows(velorin.pid))
            self.assertEqual(["Start dictation", "Quit Velorin"], [rows[0], rows[-1]])
            host.close()

    def test_settings_and_onboarding_open_from_the_menu(self):
        velorin = self.start()
        host = StatusNotifierHost()
        self.addCleanup(host.close)
        for row, title in (("Settings…", "Velorin"), ("Show Onboarding…", "Welcome to Velorin")):
            host.choose(velorin.pid, row)
            waiting.until(f"the window “{title}”", 10,
                          lambda: self.windows.title_in_front() == title)  # noqa: B023
        self.assertTrue(json.loads(PREFERENCES.read_text())["onboardingCompleted"])


class WithoutNotifications(Shell):
    """… and without a microphone, so that every dictation fails."""

    def test_an_error_is_one_notification(self):
        server = NotificationServer()
        self.addCleanup(server.close)
        host = StatusNotifierHost()
        self.addCleanup(host.close)
        user = User()
        self.addCleanup(user.close)
        velorin = self.start()
        self.assertEqual("Velorin", host.tool_tip(velorin.pid))
        text = "No audio input device is available."
        for _ in range(2):
            said = len(velorin.lines)
            user.tap(HOLD)
            velorin.wait_for_line(text, 10, said)
        waiting.until("one notification", 10, lambda: list(server.shown.values()) == [text])
        waiting.until("the tool tip", 10, lambda: host.tool_tip(velorin.pid) == f"Velorin\n{text}")


class WithoutBus(Shell):
    def test_it_has_its_icon_in_a_panel_that_embeds(self):
        velorin = self.start()
        EmbeddedTray(self.windows, None).wait_for_icon(velorin.pid)

    def test_a_bus_that_dies_while_it_runs(self):
        bus = Program(["dbus-daemon", "--session", "--nofork", "--print-address=1"])
        self.addCleanup(bus.__exit__)
        address = bus.wait_for_line("^unix:.*", seconds=10)[0]
        velorin = self.start(environment={"DBUS_SESSION_BUS_ADDRESS": address})
        bus.end()
        user = User()
        self.addCleanup(user.close)
        said = len(velorin.lines)
        user.press(HOLD)
        waiting.until("the overlay", 10, lambda: self.windows.popups_of(velorin.pid))
        user.release(HOLD)
        velorin.wait_until_stopped(said)
        waiting.until("the overlay to be gone", 10, lambda: not self.windows.popups_of(velorin.pid))
        self.assertTrue(velorin.is_running())


if __name__ == "__main__":
    unittest.main(verbosity=2)
