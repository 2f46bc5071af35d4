"""run_matrix.py PAGE [WORD…]: every text in every situation into every application whose name holds a word.

Writes the page, prints what is wrong, and ends with 1 if anything is.
"""
import sys

import accessible
import matrix
import managers
import matrix_page
import selections
from applications import ALL
from applications.texts import SITUATIONS, TEXTS
from delivery import Delivery
from user import User
from windows import Windows


def fill(row, windows: Windows, user: User, looks: list) -> list[matrix.Cell] | None:
    """All cells of a row; what is left of them when the application fails; nothing if it is not installed."""
    if not row.is_installed():
        return None
    cells = []
    target = row(windows, user)
    try:
        target.start()
        with Delivery() as delivery:
            for situation, text in matrix.cells():
                cells.append(matrix.run(target, delivery, text, situation))
            looks.append(selections.look(target, delivery))
    except AssertionError as error:
        cells.append(matrix.failed(row.name, str(error)))
    finally:
        target.close()
    return cells


def main(page: str, words: list[str]) -> int:
    windows, user = Windows(), User()
    accessible.switch_on()
    results, looks = [], []
    for row in ALL:
        if words and not any(word.lower() in row.name.lower() for word in words):
            continue
        results.append((row, fill(row, windows, user, looks)))
        print(matrix_page.row(*results[-1]), end="", flush=True)
        for cell in results[-1][1] or []:
            if cell.faults:
                print(f"    {cell}", flush=True)
        print(*looks[-1:], flush=True)

    def write(more: str):
        with open(page, "w", encoding="utf-8") as file:
            file.write(matrix_page.page(results, len(TEXTS), len(SITUATIONS), selections.section(looks) + more))

    write("")  # Half an hour's work is kept, whatever a clipboard manager does.
    write(managers.section(windows, user, words))
    return 1 if any(look.faults for look in looks) or any(cell.faults for _, cells in results for cell in cells or []) else 0


sys.exit(main(sys.argv[1], sys.argv[2:]))
