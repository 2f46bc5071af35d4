"""Fields of toolkits, in small programs that write what stands in them into a file; and Emacs."""
import json
import os
import time

from .target import TARGETS, State, Target


class Telling(Target):
    """Writes {"text", "start", "end", "at"} into `file`."""

    def launch(self):
        self.file = os.path.join(self.folder, "told.json")
        self.run_in_front(*self.command())

    def command(self) -> list[str]:
        raise NotImplementedError

    def enter(self):
        self.wait_for(State("", 0, 0), seconds=20)

    def state(self):
        try:
            with open(self.file, encoding="utf-8") as file:
                told = json.load(file)
        except (FileNotFoundError, ValueError):
            return State("(nothing told yet)")
        # Not every program has the clock.
        self._read_at = told.get("at") or os.stat(self.file).st_mtime - time.time() + time.monotonic()
        return State(told["text"], told["start"], told["end"])

    def read_at(self):
        return self._read_at


class TkEntry(Telling):
    name = "an entry of Tk"
    package = "python3-tk"
    nature = "on X11 Tk pastes before the caret and leaves what is selected where it is; what is typed replaces it."
    program = "wish"

    def command(self):
        return ["/usr/bin/python3", "-B", os.path.join(TARGETS, "entry.py"), self.file]

    def expected(self, text, situation, path):
        # On X11 Tk pastes before the caret and leaves the selection there.
        left = situation.selected if path.startswith("clipboard paste") else ""
        return situation.before + text.content + left + situation.after

    @classmethod
    def is_installed(cls):
        return os.path.exists("/usr/lib/python3.11/tkinter") or super().is_installed()


class SwingTextArea(Telling):
    name = "a text area of Java Swing"
    package = "openjdk-17-jdk"
    program = "javac"

    def command(self):
        return ["java", os.path.join(TARGETS, "TextArea.java"), self.file]


class Emacs(Telling):
    name = "Emacs in a window"
    package = "emacs-gtk"
    program = "emacs"

    def launch(self):
        self.file = os.path.join(self.folder, "told.json")
        self.run_in_front("emacs", "-Q", "-l", os.path.join(TARGETS, "buffer.el"), VELORIN_TOLD=self.file)

    def clear(self):
        self.user.tap("F5")
