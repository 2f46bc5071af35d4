"""An application to insert into: how it is started, brought into a situation, and read."""
import contextlib
import os
import shutil
import signal
import tempfile
import time
from typing import NamedTuple

import waiting
from program import Program
from user import User
from windows import Windows

from .texts import Situation, Text

TARGETS = os.path.join(os.path.dirname(os.path.dirname(os.path.realpath(__file__))), "targets")
_KEY_NAMES = {" ": "space", "-": "minus", ".": "period"}


class State(NamedTuple):
    """What stands in the field, and its selection in characters (equal ends: the caret). None: not told."""

    text: str
    start: int | None = None
    end: int | None = None


class Target:
    """One row of the matrix. Rows say how they differ; what is common stands here."""

    name = ""
    package = ""  # of Debian
    program = ""  # found in PATH when it is installed
    replaces_selection = True
    nature = ""  # where it does by nature something else with a text; for the page
    start_seconds = 40.0

    def __init__(self, windows: Windows, user: User):
        self.windows = windows
        self.user = user
        self.folder = tempfile.mkdtemp()
        self.process: Program | None = None
        self.window = None

    @classmethod
    def is_installed(cls) -> bool:
        return shutil.which(cls.program) is not None

    def start(self):
        """Starts it, with its field in front and ready for keys."""
        self.launch()
        self.enter()

    def launch(self):
        raise NotImplementedError

    def enter(self):
        """Brings the field to the keys, where a new window does not have it."""

    def close(self):
        if self.process is not None:
            self.process.__exit__()
        if self.window is not None:
            self._end_owner()
            # The next application may be given the same number for its window.
            waiting.until(f"no window of {self.name}", 10, lambda: not self.windows.is_visible(self.window))
        shutil.rmtree(self.folder, ignore_errors=True)

    def run(self, *command: str, **environment: str):
        self.process = Program(list(command), {**os.environ, **environment})

    def run_in_front(self, *command: str, **environment: str):
        """Runs it and waits until a window of it, or of a child of it, is in front."""
        before = self._window_in_front()
        self.run(*command, **environment)
        self.window = waiting.until(f"a window of {self.name}", self.start_seconds, lambda: self._new_window(before))

    def _end_owner(self):
        """The window may be that of a server, or of a child of what was started."""
        if (pid := self.windows.pid(self.window)) is not None:
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, signal.SIGTERM)

    def _window_in_front(self):
        # Window managers leave the number of a window that has gone.
        window = self.windows.active()
        return window if window is not None and self.windows.is_visible(window) else None

    def _new_window(self, before):
        window = self._window_in_front()
        return window if window is not None and (before is None or window.id != before.id) else None

    # The field

    def state(self) -> State:
        raise NotImplementedError

    def read_at(self) -> float:
        """When what state() gave stood there, in monotonic seconds."""
        return time.monotonic()

    def normal(self, text: str) -> str:
        """The text as this field would tell it, where that differs by nature."""
        return text

    def selected(self, situation: Situation) -> str:
        """What is selected in it in this situation."""
        return situation.selected

    def expected(self, text: Text, situation: Situation, path: str) -> str:
        """What stands in the field after the text was inserted on this path."""
        return situation.before + self.normal(text.content) + situation.after

    def unchanged(self, situation: Situation) -> str:
        """What stands in the field after nothing was inserted."""
        return situation.whole

    def clear(self):
        self.user.chord("Control_L", "a")
        self.user.tap("Delete")

    def prepare(self, situation: Situation):
        """Brings the field into the situation, with the keys of the user."""
        self.clear()
        self.wait_for(State("", 0, 0))
        self.type(situation.whole)
        for _ in situation.after:
            self.user.tap("Left")
        if situation.selected:
            with self.user.holding("Shift_L"):
                for _ in situation.selected:
                    self.user.tap("Left")
        start = len(situation.before)
        self.wait_for(State(situation.whole, start, start + len(situation.selected)))

    def type(self, text: str):
        for letter in text:
            self.user.tap(_KEY_NAMES.get(letter, letter))

    def wait_for(self, wanted: State, seconds: float = 10):
        def look():
            there = self.state()
            return there.text == wanted.text and (there.start is None or there[1:] == wanted[1:])

        try:
            waiting.until("the situation", seconds, look)
        except waiting.TookTooLong:
            raise AssertionError(f"{self.name} should hold {wanted!r}, but there is {self.state()!r}") from None
