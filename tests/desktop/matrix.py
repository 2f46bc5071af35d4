"""One cell of the matrix: a text put into an application in a situation, and all that can be said of it."""
import contextlib
import itertools
import time
from typing import NamedTuple

import clipboard
import waiting
from applications.target import Target
from applications.texts import SITUATIONS, TEXTS, Situation, Text
from delivery import Delivery
from windows import Windows

_TEXT_SECONDS = 6
_CLIPBOARD_SECONDS = 8
_BETWEEN_READS = 0.25
_copies = itertools.count()


class Cell(NamedTuple):
    target: str
    text: str
    situation: str
    path: str
    took: float  # milliseconds until the call returned
    readable: float | None  # milliseconds until the text stood in the target
    faults: list[str]  # in words; none: all is right
    told: str  # to the user, during or after it

    @property
    def is_right(self) -> bool:
        return not self.faults and bool(self.path)

    @property
    def is_declined(self) -> bool:
        return not self.faults and not self.path


class _Desk(NamedTuple):
    """What an insertion must leave as it was."""

    active: int | None
    focus: int
    modifiers: tuple
    clipboard: bytes | None
    primary: bytes | None


def _look(windows: Windows) -> _Desk:
    active = windows.active()
    return _Desk(None if active is None else active.id, windows.focus(), windows.modifiers(), clipboard.read(),
                 clipboard.read(selection="primary"))


def _shown(text: str) -> str:
    return repr(text) if len(text) < 160 else f"{text[:60]!r}…{text[-60:]!r} ({len(text)} characters)"


def _wait_for_text(target: Target, expected: str, began: float) -> float | None:
    deadline = time.monotonic() + _TEXT_SECONDS
    while time.monotonic() < deadline:
        if target.state().text == expected:
            return (target.read_at() - began) * 1000
        time.sleep(0.001)
    return None


def _faults_after(before: _Desk, windows: Windows) -> list[str]:
    def look():
        now = _look(windows)
        return now._replace(primary=None) if before.primary is None else now

    deadline = time.monotonic() + _CLIPBOARD_SECONDS
    after = look()
    while (after.clipboard, after.primary) != (before.clipboard, before.primary) and time.monotonic() < deadline:
        # Whoever reads the text meanwhile holds up its going: the target might be among them.
        time.sleep(_BETWEEN_READS)
        after = look()
    return [f"{name}: {was!r} before, {now!r} after"
            for name, was, now in zip(_Desk._fields, before, after) if was != now]


def _copy(data: bytes, selection: str = "clipboard"):
    # An application that has just started may take what was copied away once: a user would copy again.
    for last in (False, True):
        clipboard.write(data, selection=selection)
        try:
            waiting.until("the copy", 5, lambda: clipboard.read(selection=selection) == data)
            return
        except waiting.TookTooLong:
            if last:
                raise


def run(target: Target, delivery: Delivery, text: Text, situation: Situation) -> Cell:
    target.prepare(situation)
    told = len(delivery.told())
    copied = f"what the user has copied, {next(_copies)}".encode()
    _copy(copied)
    if not situation.selected:
        _copy(copied + b" (selected)", "primary")
    before = _look(target.windows)
    if situation.selected and target.replaces_selection:
        before = before._replace(primary=None)  # goes with the selection itself
    delivery.aim()
    reply = delivery.insert(text.content)
    expected = target.expected(text, situation, reply.path) if reply.path else target.unchanged(situation)
    readable = _wait_for_text(target, expected, reply.began)
    faults = _faults_after(before, target.windows)
    # Once more when all has come to rest: a text may come twice.
    there = target.state().text
    if there != expected:
        faults.insert(0, f"text: {_shown(there)} instead of {_shown(expected)}")
    elif readable is None:
        faults.append("text: came late")
    if faults and not reply.told:
        # What the user is told comes right after the clipboard has come back.
        with contextlib.suppress(waiting.TookTooLong):
            waiting.until("words for the user", 1, lambda: delivery.told()[told:])
    return Cell(target.name, text.name, situation.name, reply.path, reply.took, readable, faults,
                " ".join(delivery.told()[told:]))


def failed(target: str, words: str) -> Cell:
    """Stands for the rest of a row when the application itself could not be brought into a situation."""
    return Cell(target, "the rest", "in the matrix", "", 0, None, [words], "")


def cells() -> list[tuple[Situation, Text]]:
    return [(situation, text) for situation in SITUATIONS for text in TEXTS]


def few_cells() -> list[tuple[Situation, Text]]:
    """Every text once, and every situation with a text of one line and one of several."""
    return [(situation, text) for situation, text in cells()
            if situation is SITUATIONS[1] or text in TEXTS[:2]]
