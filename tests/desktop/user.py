"""Hands and voice of the user: keys, mouse, speech. Built tools do both; see tools/."""
import contextlib
import os
import subprocess
import time

from program import Program

TOOLS = os.environ["VELORIN_DESKTOP_TOOLS"]
_ANSWER_SECONDS = 5


class User:
    """Presses real keys of the private desktop (a device of its own, not the one of programs)."""

    def __init__(self):
        self._press = Program([f"{TOOLS}/press", "serve"])

    def _do(self, command: str) -> float:
        answered = len(self._press.lines)
        self._press.tell(command)
        answer = self._press.wait_for_line(r"^(done|error) (.*)$", _ANSWER_SECONDS, after=answered)
        if answer[1] == "error":
            raise AssertionError(f"{command}: {answer[2]}")
        return float(answer[2])

    def press(self, key: str) -> float:
        """Presses a key and returns when the server had taken it (monotonic seconds)."""
        return self._do(f"down {key}")

    def release(self, key: str) -> float:
        return self._do(f"up {key}")

    def tap(self, *keys: str) -> float:
        """Taps one key after the other; returns the time of the last."""
        return [self._do(f"tap {key}") for key in keys][-1]

    def chord(self, modifier: str, key: str) -> float:
        with self.holding(modifier):
            return self.tap(key)

    @contextlib.contextmanager
    def holding(self, key: str):
        self.press(key)
        try:
            yield
        finally:
            self.release(key)

    def click(self, x: int, y: int, button: int = 1, times: int = 1) -> float:
        return self._do(f"click {x} {y} {button} {times}")

    def close(self):
        self._press.__exit__()


class Speech(Program):
    """A sound file on its way into the microphone."""

    def __init__(self, file: str):
        super().__init__([f"{TOOLS}/say", file])

    def wait_until_began(self) -> float:
        return float(self.wait_for_line(r"^began (.*)$", _ANSWER_SECONDS)[1])

    def wait_until_heard(self, seconds: float = 120) -> float:
        """The time at which the last sample was heard."""
        return float(self.wait_for_line(r"^ended (.*)$", seconds)[1])


def speak(file: str) -> float:
    """Speaks a whole file and returns when its last sample was heard (monotonic seconds)."""
    with Speech(file) as speech:
        return speech.wait_until_heard()


class Microphone:
    """Records what the microphone hears, as 16-bit samples of one channel, with the time of each piece."""

    rate = 48000

    def __init__(self):
        self.started = time.monotonic()
        self._process = subprocess.Popen(
            ["parec", "--raw", "--latency-msec=10", f"--rate={self.rate}", "--channels=1", "--format=s16le"],
            stdout=subprocess.PIPE)
        self.pieces: list[tuple[float, bytes]] = []

    def read(self) -> float:
        """Waits for the next piece and returns when it came."""
        data = os.read(self._process.stdout.fileno(), 65536)
        if not data:
            raise AssertionError("the microphone stopped")
        self.pieces.append((time.monotonic(), data))
        return self.pieces[-1][0]

    def close(self):
        self._process.terminate()
        self._process.wait(5)
        self._process.stdout.close()
