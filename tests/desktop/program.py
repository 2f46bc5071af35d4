"""Programs under test: started, listened to line by line, ended in time."""
import re
import signal
import subprocess
import threading
import time
from typing import NamedTuple

import waiting


class Line(NamedTuple):
    seconds: float  # monotonic clock
    text: str


class Program:
    """A running program; what it says on either output is kept, with the time.

        with Program(["velorin"]) as velorin:
            velorin.wait_for_line(r"event tap is running", seconds=5)
    """

    def __init__(self, command: list[str], environment: dict[str, str] | None = None):
        self.name = command[0].rpartition("/")[2]
        self.lines: list[Line] = []
        self._process = subprocess.Popen(command, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=subprocess.STDOUT, text=True, errors="replace", bufsize=1)
        self.pid = self._process.pid
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.is_running():
            self.end()
        self._process.stdin.close()
        # What it has started may go on and keep its output open; closing would wait for the thread that reads it.
        if not self._reader.is_alive():
            self._process.stdout.close()

    def _read(self):
        for text in self._process.stdout:
            self.lines.append(Line(time.monotonic(), text.rstrip("\n")))

    def is_running(self) -> bool:
        return self._process.poll() is None

    def tell(self, line: str):
        """Writes a line to its standard input."""
        self._process.stdin.write(line + "\n")

    def wait_for_line(self, pattern: str, seconds: float, after: int = 0) -> re.Match:
        """The match in the first line from number `after` on; fails at once when the program has ended."""
        expression = re.compile(pattern)
        next_line = after

        def look():
            nonlocal next_line
            ended = not self.is_running() and not self._reader.is_alive()
            while next_line < len(self.lines):
                next_line += 1
                if match := expression.search(self.lines[next_line - 1].text):
                    return match
            if ended:
                raise AssertionError(f"{self.name} ended without a line like {pattern!r}; it said:\n{self.said()}")
            return None

        try:
            return waiting.until(f"a line of {self.name} like {pattern!r}", seconds, look)
        except waiting.TookTooLong as late:
            raise waiting.TookTooLong(f"{late}; it said:\n{self.said()}") from None

    def said(self) -> str:
        return "\n".join(line.text for line in self.lines)

    def wait_for_end(self, seconds: float) -> int:
        """The exit code; minus the signal's number if one ended it."""
        try:
            code = self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise waiting.TookTooLong(f"{self.name} had not ended after {seconds:g} s") from None
        self._reader.join(seconds)
        return code

    def end(self, number: int = signal.SIGTERM, seconds: float = 5) -> int:
        """Asks it to end, kills it if it does not, and returns the exit code."""
        self._process.send_signal(number)
        try:
            return self.wait_for_end(seconds)
        except waiting.TookTooLong:
            self._process.kill()
            self.wait_for_end(seconds)
            raise
