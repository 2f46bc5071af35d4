"""docs/applications.md: what the matrix found, a row an application."""
import statistics
from collections import Counter

from matrix import Cell

_HEAD = """# Applications

How a dictated text gets into the applications that people use. Written by `make matrix`, which puts {texts} texts
(one line, several lines, accents, CJK, emoji with joiners, 3,900 characters, tabs) into each application in
{situations} situations (an empty field, the middle of text, over a selection), reads the exact text back, and compares
the clipboard, the focus and the pressed modifiers with what they were.

| Application | Package | Path | What holds | Text there, median | 95% within |
|---|---|---|---|---|---|
"""


def _percentile(values: list[float], share: float) -> float:
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(share * len(ordered)))]


def _paths(cells: list[Cell]) -> str:
    counted = Counter(cell.path or "none" for cell in cells)
    if len(counted) == 1:
        return next(iter(counted))
    return ", ".join(f"{path} ({count})" for path, count in counted.most_common())


def _what_holds(cells: list[Cell]) -> str:
    right = sum(cell.is_right for cell in cells)
    declined = sum(cell.is_declined for cell in cells)
    wrong = len(cells) - right - declined
    parts = [f"{right} of {len(cells)} exact"]
    if declined:
        parts.append(f"{declined} declined")
    if wrong:
        parts.append(f"**{wrong} wrong**")
    return ", ".join(parts)


def row(target, cells: list[Cell] | None) -> str:
    if cells is None:
        return f"| {target.name} | {target.package} | | not checked | | |\n"
    times = [cell.readable for cell in cells if cell.readable is not None and cell.path]
    figures = f"{statistics.median(times):.0f} ms | {_percentile(times, 0.95):.0f} ms" if times else " | "
    return f"| {target.name} | {target.package} | {_paths(cells)} | {_what_holds(cells)} | {figures} |\n"


def times_by_path(cells: list[Cell]) -> str:
    lines = ["\n## How long it takes\n\nFrom the call to the text in the target, all applications together.\n\n",
             "| Path | Insertions | Median | 95% within | The call itself, median |\n|---|---|---|---|---|\n"]
    for path in sorted({cell.path for cell in cells if cell.path}):
        some = [cell for cell in cells if cell.path == path and cell.readable is not None]
        if some:
            times = [cell.readable for cell in some]
            lines.append(f"| {path} | {len(some)} | {statistics.median(times):.0f} ms | {_percentile(times, 0.95):.0f} ms "
                         f"| {statistics.median([cell.took for cell in some]):.0f} ms |\n")
    return "".join(lines)


def natures(targets) -> str:
    lines = [f"- **{target.name}**: {target.nature}\n" for target in targets if target.nature]
    return "\n## What is different by nature\n\n" + "".join(lines)


def troubles(cells: list[Cell]) -> str:
    lines = [f"- {cell.target}, {cell.text} {cell.situation}: {'; '.join(cell.faults) or 'declined: ' + cell.told}\n"
             for cell in cells if not cell.is_right]
    return "\n## What was wrong or declined\n\n" + ("".join(lines) or "Nothing.\n")


def page(results: list[tuple[type, list[Cell] | None]], texts: int, situations: int, more: str = "") -> str:
    cells = [cell for _, some in results for cell in some or []]
    return (_HEAD.format(texts=texts, situations=situations) + "".join(row(target, some) for target, some in results)
            + times_by_path(cells) + natures([target for target, _ in results]) + more + troubles(cells))
