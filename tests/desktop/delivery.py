"""The program's own delivery of text, without the speaking: velorin-insert (tools/Insert.cpp)."""
import json
import os
from typing import NamedTuple

from program import Program

_ANSWER_SECONDS = 10


class Reply(NamedTuple):
    """What an insertion came to. `began` in monotonic seconds, `took` in milliseconds."""

    began: float
    took: float
    path: str
    told: str
    log: list[str]
    application: str
    kin: str
    pid: int


class Selection(NamedTuple):
    """What was selected; an empty text for nothing. `source`: none, accessibility or clipboard; `took` in milliseconds."""

    text: str
    source: str
    took: float


class Delivery(Program):
    """Inserts texts as the program does after a dictation."""

    def __init__(self, executable: str | None = None):
        super().__init__([executable or os.environ["VELORIN_INSERT"]])
        self.wait_for_line("^ready", seconds=10)

    def _do(self, command: dict) -> Reply:
        answered = len(self.lines)
        self.tell(json.dumps(command))
        return Reply(**json.loads(self.wait_for_line("^reply (.*)$", _ANSWER_SECONDS, answered)[1]))

    def aim(self) -> Reply:
        """Remembers the application in front, as the beginning of a dictation does."""
        return self._do({"do": "aim"})

    def insert(self, text: str) -> Reply:
        return self._do({"do": "insert", "text": text})

    def again(self, text: str) -> Reply:
        """By the copy-again shortcut."""
        return self._do({"do": "again", "text": text})

    def direct(self, on: bool) -> Reply:
        return self._do({"do": "direct", "on": on})

    def beat(self) -> Reply:
        return self._do({"do": "beat"})

    def selection(self) -> Selection:
        """What is selected in the application in front, as at the beginning of a dictation."""
        answered = len(self.lines)
        self.tell(json.dumps({"do": "select"}))
        return Selection(**json.loads(self.wait_for_line("^selection (.*)$", _ANSWER_SECONDS, answered)[1]))

    def told(self) -> list[str]:
        """All that the user was told so far."""
        return [json.loads(line.text[5:])["words"] for line in self.lines if line.text.startswith("told ")]
