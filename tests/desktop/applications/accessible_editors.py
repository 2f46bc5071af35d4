"""Editors that are read through the accessibility bus."""
import os

import accessible

from .target import State, Target


class AccessibleEditor(Target):
    """An editor of plain text, with an empty file."""

    command: list[str] = []

    def launch(self):
        file = os.path.join(self.folder, "text.txt")
        with open(file, "w", encoding="utf-8"):
            pass
        self.run_in_front(*self.command, file)

    def enter(self):
        self._element = accessible.focused_text(self.window_pid(), seconds=self.start_seconds)

    def window_pid(self) -> int:
        return self.windows.pid(self.window) or self.process.pid

    def state(self) -> State:
        text = accessible.text_of(self._element)
        return State(text, *accessible.selection_of(self._element))


class Mousepad(AccessibleEditor):
    name = "Mousepad (GTK 3)"
    package = "mousepad"
    program = "mousepad"
    command = ["mousepad", "--disable-server"]


class GnomeTextEditor(AccessibleEditor):
    name = "GNOME Text Editor (GTK 4)"
    package = "gnome-text-editor"
    program = "gnome-text-editor"
    command = ["gnome-text-editor", "--standalone"]


class FeatherPad(AccessibleEditor):
    name = "FeatherPad (Qt 5)"
    package = "featherpad"
    program = "featherpad"
    command = ["featherpad", "--standalone"]


class QtField(AccessibleEditor):
    name = "a text field of Qt 6"
    program = os.environ.get("VELORIN_DESKTOP_TOOLS", "") + "/text-target"

    def launch(self):
        self.run_in_front(self.program)
