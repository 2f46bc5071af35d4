"""What the program sees of a selection in an application, and how long it takes to look."""
from typing import NamedTuple

from applications.target import Target
from applications.texts import SITUATIONS
from delivery import Delivery

_LOOKS = 3
_LONGEST_MILLISECONDS = {"accessibility": 250, "clipboard": 500, "none": 500}


class Look(NamedTuple):
    target: str
    sources: str
    longest: float  # milliseconds
    faults: list[str]


def _fault(selected: str, found) -> str:
    if found.text not in ("", selected):
        return f"{found.text[:60]!r} instead of {selected!r}"
    if found.took > _LONGEST_MILLISECONDS[found.source]:
        return f"{found.source}: {found.took:.0f} ms"
    return ""


def look(target: Target, delivery: Delivery) -> Look:
    """The right text or none, within the time that a dictation may spend on it."""
    situation = SITUATIONS[2]
    target.prepare(situation)
    selected = target.selected(situation)
    found = [delivery.selection() for _ in range(_LOOKS)]
    sources = ", ".join(sorted({each.source for each in found}))
    faults = [fault for each in found if (fault := _fault(selected, each))]
    return Look(target.name, sources, max(each.took for each in found), faults)


def section(looks: list[Look]) -> str:
    rows = [f"| {each.target} | {each.sources} | {each.longest:.0f} ms | {'; '.join(each.faults) or 'right, or none'} |\n"
            for each in looks]
    return ("\n## What is selected\n\nRead as at the beginning of a dictation, the longest of three times.\n\n"
            "| Application | Read through | Longest | |\n|---|---|---|---|\n" + "".join(rows))
