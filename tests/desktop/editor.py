"""A text editor to dictate into."""
import os
import tempfile

import accessible
import waiting
from program import Program
from windows import Windows


class Mousepad(Program):
    """A Mousepad window with an empty file, in front and ready for keys."""

    def __init__(self, windows: Windows):
        descriptor, self.file = tempfile.mkstemp(suffix=".txt")
        os.close(descriptor)
        super().__init__(["mousepad", "--disable-server", self.file])
        self.window = windows.wait_until_active(self.pid)
        self._text = accessible.focused_text(self.pid)

    def text(self) -> str:
        return accessible.text_of(self._text)

    def wait_for_text(self, expected: str, seconds: float = 5):
        """Until the text is exactly this."""
        try:
            waiting.until("the text", seconds, lambda: self.text() == expected)
        except waiting.TookTooLong:
            raise AssertionError(f"expected {expected!r}, but after {seconds:g} s there was {self.text()!r}") from None

    def wait_for_any_text(self, seconds: float = 5) -> str:
        return waiting.until("any text", seconds, self.text)

    def clear(self):
        accessible.replace_text(self._text, "")

    def write(self, text: str):
        accessible.replace_text(self._text, text)

    def selection(self) -> tuple[int, int]:
        return accessible.selection_of(self._text)
