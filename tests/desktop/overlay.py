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

# Longer than any pause within a movement, the compositor's included.
STILL_SECONDS = 0.4

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
        self.wait_for_line("^ready$", seconds=20)

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
        last, since = None, time.monotonic()

        def look():
            nonlocal last, since
            now = screenshot(self.windows, frame)
            if last is None or now.tobytes() != last.tobytes() or not self.is_opaque():
                last, since = now, time.monotonic()
            return now if time.monotonic() - since > STILL_SECONDS else None

        return waiting.until("the overlay to stand still", 10, look)

    def is_opaque(self) -> bool:
        """Whether it has faded in."""
        opacity = self.windows.property(self.window(), "_NET_WM_WINDOW_OPACITY")
        return opacity is None or len(opacity) == 0 or opacity[0] == 0xFFFFFFFF


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
