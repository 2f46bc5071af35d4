"""run_matrix.py [WORD…]: every text in every situation into every application whose name holds a word."""
import sys

import accessible
import matrix
from applications import ALL
from applications.texts import SITUATIONS, TEXTS
from delivery import Delivery
from user import User
from windows import Windows


def rows(words: list[str]):
    return [each for each in ALL if not words or any(word.lower() in each.name.lower() for word in words)]


def main():
    windows, user = Windows(), User()
    accessible.switch_on()
    for row in rows(sys.argv[1:]):
        target = row(windows, user)
        try:
            target.start()
            with Delivery() as delivery:
                for situation in SITUATIONS:
                    for text in TEXTS:
                        print(matrix.run(target, delivery, text, situation), flush=True)
        except AssertionError as error:
            print(f"{row.name}: {error}", flush=True)
        finally:
            target.close()


main()
