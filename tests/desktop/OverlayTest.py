"""The overlay's manners: it takes neither focus nor clicks, stands where it should, and bears what goes wrong."""
import os
import subprocess
import unittest

import accessible
import waiting
from desktop import Mousepad, Program, User, Windows
from overlay import PLAIN, Stage, screenshot
from Xlib import X
from Xlib.ext import shape
from xsettings import Settings

SHOWS = int(os.environ.get("VELORIN_OVERLAY_SHOWS", "25"))
SCREEN = (1280, 800)
PANEL = 30  # at the bottom
SIZES = {"capsule": (440, 114), "card": (420, 162)}
MARGIN = 24


class Overlay(unittest.TestCase):
    def setUp(self):
        self.windows = Windows()
        self.addCleanup(self.windows.display.close)

    def start(self, **environment) -> Stage:
        stage = Stage(self.windows, environment)
        self.addCleanup(stage.__exit__)
        return stage

    def compositor(self) -> Program:
        picom = Program(["picom", "--backend", "xrender", "--config", "/dev/null"])
        self.addCleanup(picom.__exit__)
        atom = self.windows.display.intern_atom("_NET_WM_CM_S0")
        waiting.until("a compositor", 10, lambda: self.windows.display.get_selection_owner(atom))
        return picom

    def page(self, left: int, width: int, full_screen: bool = False):
        """A white window of ours that hears clicks."""
        root = self.windows.root
        page = root.create_window(left, 0, width, 600, 0, X.CopyFromParent, X.InputOutput,
                                  background_pixel=0xFFFFFF, event_mask=X.ButtonPressMask)
        if full_screen:
            state = self.windows.display.intern_atom("_NET_WM_STATE")
            page.change_property(state, self.windows.display.intern_atom("ATOM"), 32,
                                 [self.windows.display.intern_atom("_NET_WM_STATE_FULLSCREEN")])
        page.set_wm_normal_hints(flags=1, x=left, y=0)  # a place chosen by the user
        page.map()
        self.addCleanup(page.destroy)
        waiting.until("the page", 5, lambda: self.windows.is_visible(page))
        return page


class Place(Overlay):
    def assert_above(self, stage: Stage, style: str, left: int, width: int, bottom: int, scale: float = 1):
        size = [round(each * scale) for each in SIZES[style]]
        expected = (left + (width - size[0]) / 2, bottom - MARGIN * scale - size[1], *size)
        for got, wanted in zip(stage.frame(), expected):
            self.assertAlmostEqual(got, wanted, delta=2, msg=f"{stage.frame()} instead of {expected}")

    def test_above_the_panel_in_the_middle(self):
        stage = self.start()
        for style in SIZES:
            stage.show(**{**PLAIN, "style": style})
            self.assert_above(stage, style, 0, SCREEN[0], SCREEN[1] - PANEL)

    def test_at_other_scales(self):
        for scale in (1.5, 2):
            stage = self.start(QT_SCALE_FACTOR=str(scale))
            stage.show(**PLAIN)
            self.assert_above(stage, "capsule", 0, SCREEN[0], SCREEN[1] - PANEL, scale)
            stage.__exit__()

    def monitors(self, *sizes: str):
        names = ["velorin-left", "velorin-right"]
        for name, size in zip(names, sizes):
            output = "screen" if name == names[0] else "none"
            subprocess.run(["xrandr", "--setmonitor", name, size, output], check=True, timeout=10)
            self.addCleanup(subprocess.run, ["xrandr", "--delmonitor", name], timeout=10, stderr=subprocess.DEVNULL)

    def test_on_the_monitor_of_the_target(self):
        self.monitors("640/170x800/210+0+0", "640/170x800/210+640+0")
        left, right = self.page(20, 400), self.page(700, 400)
        stage = self.start()
        stage.show(**{**PLAIN, "app": "Right", "window": right.id})
        self.assert_above(stage, "capsule", 640, 640, SCREEN[1] - PANEL)
        stage.show(**{**PLAIN, "app": "Left", "window": left.id})
        self.assert_above(stage, "capsule", 0, 640, SCREEN[1] - PANEL)

    def test_a_monitor_that_is_unplugged_while_it_is_shown(self):
        self.monitors("640/170x800/210+0+0", "640/170x800/210+640+0")
        right = self.page(700, 400)
        stage = self.start()
        stage.show(**{**PLAIN, "app": "Right", "window": right.id})
        subprocess.run(["xrandr", "--delmonitor", "velorin-right"], check=True, timeout=10)
        waiting.until("the overlay on the monitor that is left", 5,
                      lambda: stage.frame()[0] + stage.frame()[2] <= 640)
        self.assertTrue(stage.is_running())


    def test_a_scale_that_changes_while_it_is_shown(self):
        settings = Settings()
        self.addCleanup(settings.close)
        stage = self.start()
        stage.show(**PLAIN)
        self.assert_above(stage, "capsule", 0, SCREEN[0], SCREEN[1] - PANEL)
        for scale in (2, 1):
            settings.scale(scale)
            width = SIZES["capsule"][0] * scale
            waiting.until(f"the overlay at scale {scale}", 5, lambda: stage.frame()[2] == width)  # noqa: B023
            self.assert_above(stage, "capsule", 0, SCREEN[0], SCREEN[1] - PANEL, scale)
            self.assert_drawn_to_the_end(stage)

    def assert_drawn_to_the_end(self, stage: Stage):
        """What is drawn is as large as the window: at its right end is light glass, not the black of the screen."""
        _, _, width, height = stage.frame()
        right_end = (round(width * (1 - 40 / SIZES["capsule"][0])), height // 2)
        waiting.until("glass at the right end", 5, lambda: min(stage.picture().getpixel(right_end)) > 200)


class Manners(Overlay):
    def test_never_takes_the_focus(self):
        user = User()
        self.addCleanup(user.close)
        stage = self.start()
        with Mousepad(self.windows) as editor:
            focus = self.windows.display.get_input_focus().focus.id
            element = accessible.focused_text(editor.pid)
            typed = ""
            for number in range(SHOWS):
                stage.show(**PLAIN)
                user.tap("a")
                self.assertEqual(editor.window.id, self.windows.active().id)
                self.assertEqual(focus, self.windows.display.get_input_focus().focus.id)
                self.assertTrue(accessible.has_state(element, accessible.FOCUSED))
                stage.hide()
                user.tap("b")
                typed += "ab"
            editor.wait_for_text(typed, seconds=10)
            self.assertEqual(editor.window.id, self.windows.active().id)
        print(f"{SHOWS} shows and hides: neither the focus nor the element of the caret changed, no key was lost")

    def test_passes_clicks_on_above_a_full_screen_window(self):
        user = User()
        self.addCleanup(user.close)
        page = self.page(0, 400, full_screen=True)
        waiting.until("a page that fills the screen", 5, lambda: page.get_geometry().height == SCREEN[1])
        stage = self.start()
        stage.show(**PLAIN)
        picture = stage.picture()
        # In the middle is text or glass, nothing of the page.
        self.assertNotEqual((255, 255, 255), picture.getpixel((35, 57)))
        left, top, width, height = stage.frame()
        self.assertEqual([], stage.window().shape_get_rectangles(shape.SK.Input).rectangles)
        user.click(left + width // 2, top + height // 2)

        def clicked():
            while self.windows.display.pending_events():
                if self.windows.display.next_event().type == X.ButtonPress:
                    return True
            return False

        waiting.until("the click to reach the page", 5, clicked)

    def test_hides_for_good_and_again(self):
        stage = self.start()
        stage.hide()  # before it was ever shown
        stage.show(**PLAIN)
        stage.hide()
        self.assertIsNone(stage.window())
        stage.hide()
        stage.show(**PLAIN)
        self.assertIsNotNone(stage.window())


class Failure(Overlay):
    def corner(self, stage: Stage) -> tuple[int, int, int]:
        """A pixel in the margin of the window, where only a shadow is, if anything."""
        left, top, _, _ = stage.frame()
        return screenshot(self.windows, (left + 2, top + 2, 1, 1)).getpixel((0, 0))

    def test_a_compositor_that_comes_and_goes(self):
        subprocess.run(["xsetroot", "-solid", "#ffffff"], check=True, timeout=10)
        stage = self.start()
        stage.show(**PLAIN)
        is_white = lambda: self.corner(stage) == (255, 255, 255)  # noqa: E731
        waiting.until("a window cut to its shape", 5, is_white)
        self.assertGreater(len(stage.window().shape_get_rectangles(shape.SK.Bounding).rectangles), 1)
        picom = self.compositor()
        waiting.until("a whole window", 5,
                      lambda: len(stage.window().shape_get_rectangles(shape.SK.Bounding).rectangles) == 1)
        picom.end()
        waiting.until("a window cut to its shape again", 5, is_white)

    def test_without_opengl(self):
        stage = self.start(QT_XCB_GL_INTEGRATION="none")
        self.assertGreater(stage.show(**PLAIN), 0)

    def test_without_a_session_bus(self):
        stage = self.start(DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        self.assertGreater(stage.show(**PLAIN), 0)

    def test_ten_thousand_characters(self):
        stage = self.start()
        stage.show(**{**PLAIN, "text": "word " * 2000})
        for number in range(20):
            stage.order(text="word " * 2000 + f"and {number}")
        self.assertLess(stage.show(), 500)

    def test_levels_that_are_no_numbers(self):
        stage = self.start()
        stage.show(**{**PLAIN, "levels": ["none", 0.5, "none"]})
        self.assertTrue(stage.picture())


if __name__ == "__main__":
    unittest.main(verbosity=2)
