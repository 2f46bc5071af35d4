"""The program under test, and a user who dictates with it."""
import json
import os
import pathlib
import signal
import time

import waiting
from gi.repository import Gio, GLib
from program import Program
from sentences import Sentence
from user import Speech, User

HOLD = "Control_R"  # stands in for Fn
BREATH_SECONDS = 0.2  # between the key and the first word
_CALL_MILLISECONDS = 2000


def complete_introduction(configuration: str | None = None):
    """Lets no window open at the start: it would take the keyboard from whoever is dictated to."""
    preferences = pathlib.Path(configuration or os.environ["XDG_CONFIG_HOME"]) / "velorin" / "preferences.json"
    if not preferences.exists():
        preferences.parent.mkdir(parents=True, exist_ok=True)
        preferences.write_text('{"onboardingCompleted": true}')


class Velorin(Program):
    """The released program, started and ready for its shortcuts."""

    def __init__(self, executable: str | None = None, ready: str = r"perms mic=true ax=true tap=true",
                 environment: dict[str, str] | None = None, first_start: bool = False):
        if not first_start:
            complete_introduction()
        self.executable = executable or os.environ["VELORIN_PROGRAM"]
        super().__init__([self.executable], {**os.environ, "QT_FORCE_STDERR_LOGGING": "1", **(environment or {})})
        if ready:
            self.wait_for_line(ready, seconds=10)

    def latencies(self) -> list[dict[str, float]]:
        """Milliseconds since the key went down, by stage, of each dictation so far."""
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        reply = bus.call_sync("dev.orrin.velorin", "/dev/orrin/velorin/diagnostics", "dev.orrin.velorin.Diagnostics",
                              "Latencies", None, GLib.VariantType("(s)"), Gio.DBusCallFlags.NONE, _CALL_MILLISECONDS)
        return json.loads(reply.unpack()[0])

    def wait_until_listening(self, after: int, seconds: float = 10):
        self.wait_for_line(r"engine listening", seconds, after)

    def wait_until_stopped(self, after: int, seconds: float = 10):
        self.wait_for_line(r"engine stopped", seconds, after)


class Speaker:
    """A user who presses the keys of the shortcuts and speaks."""

    def __init__(self, velorin: Velorin, user: User):
        self.velorin = velorin
        self.user = user

    def hold(self, sentence: Sentence, pause: float = 0) -> float:
        """Holds the key while the sentence is spoken; returns when the key came up (monotonic seconds)."""
        said = len(self.velorin.lines)
        pressed = self.user.press(HOLD)
        try:
            # People do not wait for the program, but neither does the first word come with the key itself.
            self.rest_until(pressed + BREATH_SECONDS)
            with Speech(sentence.file) as speech:
                heard = speech.wait_until_heard()
            self.rest_until(heard + pause)
        finally:
            released = self.user.release(HOLD)
        self.velorin.wait_until_stopped(said)
        return released

    def tap_toggle(self):
        with self.user.holding("Super_L"):
            self.user.tap(HOLD)

    def toggle(self, sentence: Sentence):
        said = len(self.velorin.lines)
        self.tap_toggle()
        self.velorin.wait_until_listening(said)
        with Speech(sentence.file) as speech:
            speech.wait_until_heard()
        self.tap_toggle()
        self.velorin.wait_until_stopped(said)

    @staticmethod
    def rest_until(moment: float):
        """Silence is part of what is said: it lasts as long as it lasts."""
        time.sleep(max(0.0, moment - time.monotonic()))


__all__ = ["HOLD", "Speaker", "Velorin", "signal", "waiting"]
