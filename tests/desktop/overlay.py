"""The overlay on its stage: told what to show, looked at, measured."""
import json
import os
import time

import waiting
from PIL import Image
from program import Program
from user import TOOLS
from windows import Windows
from Xlib import X

# Longer than any pause within a movement: of the overlay and the compositor, which are asked each time, not of a
# machine that is busy with something else.
STILL_SECONDS = 0.15
STILL_LOOKS = 3

# What every picture begins with.
PLAIN = {"style": "capsule", "phase": "listening", "processing": None, "edit": False, "generate": False,
         "profile": "generic", "app": "Slack", "seconds": 7, "text": "The quick brown fox jumps over the lazy dog.",
         "dark": False, "still": True,
         "levels": [0.1, 0.2, 0.35, 0.5, 0.7, 0.9, 1, 0.8, 0.6, 0.4, 0.3, 0.2, 0.15, 0.3, 0.5] * 3}


class Stage(Program):
    """A program that shows nothing but the overlay."""

    def __init__(self, windows: Windows, environment: dict[str, str] | None = None):
        super().__init__([f"{TOOLS}/overlay-stage"], {**os.environ, **(environment or {})})
        self.windows = windows
        self.screen = ScreenWatch(windows)
        self.wait_for_line("^ready$", seconds=20)

    def __exit__(self, *arguments):
        super().__exit__(*arguments)
        self.screen.close()

    def order(self, within: float = 20, **order) -> str:
        said = len(self.lines)
        self.tell(json.dumps(order))
        return self.wait_for_line(r"^(ready|painted.*|hidden|\[.*|\{.*)$", within, said)[1]

    def show(self, **state) -> float:
        """Shows the overlay; the milliseconds until its first frame was there."""
        return float(self.order(**state, show=True).split()[1])

    def hide(self):
        self.order(hide=True)

    def window(self):
        """The overlay's window, or None while it is hidden."""
        popups = self.windows.popups_of(self.pid)
        return self.windows._window(popups.pop()) if popups else None

    def frame(self) -> tuple[int, int, int, int]:
        """Where it is on the screen: left, top, width, height."""
        window = waiting.until("the overlay's window", 5, self.window)
        size = window.get_geometry()
        corner = window.translate_coords(self.windows.root, 0, 0)
        return -corner.x, -corner.y, size.width, size.height

    def picture(self) -> Image.Image:
        """The overlay as it is on the screen, once it stands still."""
        frame = self.frame()
        last, since, looks = None, time.monotonic(), 0

        def look():
            nonlocal last, since, looks
            # On a busy machine nothing moves for a while although something is still to come.
            self.order()
            self.screen.catch_up()
            now = screenshot(self.windows, frame)
            if last is None or now.tobytes() != last.tobytes() or not self.is_opaque():
                last, since, looks = now, time.monotonic(), 0
            looks += 1
            return now if looks > STILL_LOOKS and time.monotonic() - since > STILL_SECONDS else None

        return waiting.until("the overlay to stand still", 10, look)

    def is_opaque(self) -> bool:
        """Whether it has faded in."""
        opacity = self.windows.property(self.window(), "_NET_WM_WINDOW_OPACITY")
        return opacity is None or len(opacity) == 0 or opacity[0] == 0xFFFFFFFF


class ScreenWatch:
    """Knows when the screen shows what was painted: on a spot of its own in the corner, which a compositor brings to
    the screen after everything that was painted before it."""

    SIDE = 8

    def __init__(self, windows: Windows):
        self.windows = windows
        size = windows.root.get_geometry()
        self.corner = size.width - self.SIDE, size.height - self.SIDE
        self.spot = windows.root.create_window(*self.corner, self.SIDE, self.SIDE, 0, X.CopyFromParent, X.InputOutput,
                                               override_redirect=True)
        self.spot.map()
        self.color = 0

    def catch_up(self):
        self.color ^= 0xFFFFFF
        self.spot.change_attributes(background_pixel=self.color)
        self.spot.configure(stack_mode=X.Above)
        self.spot.clear_area()
        expected = (self.color & 0xFF,) * 3
        waiting.until("the screen to show what was painted", 10,
                      lambda: screenshot(self.windows, (*self.corner, 1, 1)).getpixel((0, 0)) == expected)

    def close(self):
        self.spot.destroy()


def screenshot(windows: Windows, frame: tuple[int, int, int, int]) -> Image.Image:
    image = windows.root.get_image(*frame, X.ZPixmap, 0xFFFFFFFF)
    return Image.frombytes("RGB", frame[2:], image.data, "raw", "BGRX")


def sheet(pictures: list[Image.Image], columns: int = 2) -> Image.Image:
    """Pictures of one size side by side."""
    width, height = (max(each.size[side] for each in pictures) for side in (0, 1))
    rows = -(-len(pictures) // columns)
    paper = Image.new("RGB", (width * columns, height * rows), (128, 128, 128))
    for number, each in enumerate(pictures):
        paper.paste(each, (number % columns * width, number // columns * height))
    return paper


def percentile(values: list[float], share: float) -> float:
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(share * len(ordered)))]
