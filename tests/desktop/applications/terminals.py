"""Terminals, with a program in them that reads a line and tells of it at every change."""
import itertools
import json
import os
import time

import clipboard
import waiting

from .target import TARGETS, State, Target
from .texts import Situation

LINE = os.path.join(TARGETS, "line.py")
_WORD = "markedWord"  # on the screen, to be selected with the mouse
_CLICKS_SECONDS = 0.6  # between clicks that are none of one double click, in all terminals
_COLUMN = 40  # pixels from the left, within the word


class Terminal(Target):
    nature = "what is selected stands on the screen and stays."
    replaces_selection = False  # what is selected stands on the screen, not in the line

    def launch(self):
        self.file = os.path.join(self.folder, "line.json")
        self.run_in_front(*self.command())

    def command(self) -> list[str]:
        raise NotImplementedError

    def line_command(self) -> list[str]:
        return ["/usr/bin/python3", "-B", LINE, self.file, _WORD]

    def enter(self):
        self.wait_for(State("", 0, 0), seconds=20)

    def state(self) -> State:
        try:
            with open(self.file, encoding="utf-8") as file:
                told = json.load(file)
        except (FileNotFoundError, ValueError):
            return State("(nothing told yet)")
        self._read_at = told["at"]
        return State(told["text"], told["caret"], told["caret"])

    def read_at(self):
        return self._read_at

    def clear(self):
        self.user.chord("Control_L", "e")
        self.user.chord("Control_L", "u")

    def prepare(self, situation: Situation):
        super().prepare(Situation(situation.name, situation.before, "", situation.after))
        if situation.selected:
            self.select_word()

    def select_word(self):
        """With the mouse; where the first row is depends on bars above it."""
        clipboard.write(b"nothing of the screen", selection="primary")
        x, y = self.windows.corner(self.window)
        for below in itertools.islice(itertools.cycle(self._rows), 60):
            time.sleep(_CLICKS_SECONDS)
            self.user.click(x + _COLUMN, y + below, times=2)
            if self._is_word_selected():
                self._rows = [below]
                return
        raise AssertionError(f"{self.name}: {_WORD!r} cannot be selected")

    # From below: above the first row there may be a menu.
    _rows = range(76, 2, -8)

    @staticmethod
    def _is_word_selected() -> bool:
        try:
            return waiting.until("the word", 0.5, lambda: clipboard.read(selection="primary") == _WORD.encode())
        except waiting.TookTooLong:
            return False

    def unchanged(self, situation):
        return situation.before + situation.after

    def selected(self, situation):
        return _WORD


class XTerm(Terminal):
    name = "xterm"
    package = "xterm"
    program = "xterm"

    def command(self):
        return ["xterm", "-e", *self.line_command()]


class GnomeTerminal(Terminal):
    name = "GNOME Terminal"
    package = "gnome-terminal"
    program = "gnome-terminal"

    def command(self):
        return ["gnome-terminal", "--hide-menubar", "--wait", "--", *self.line_command()]


class QTerminal(Terminal):
    name = "QTerminal (Qt 5)"
    package = "qterminal"
    program = "qterminal"

    def command(self):
        return ["qterminal", "-e", " ".join(self.line_command())]
