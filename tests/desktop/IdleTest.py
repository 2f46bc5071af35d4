"""What the program costs while nobody dictates: before a dictation, and after one once the model was given back.

VELORIN_IDLE_SECONDS tells how long is measured (15).
"""
import os
import pathlib
import time
import unittest

from desktop import Mousepad, User, Windows, all_sentences, waiting
from dictation import Speaker, Velorin

SECONDS = float(os.environ.get("VELORIN_IDLE_SECONDS", "15"))
MEGABYTES = 120
SWITCHES_A_SECOND = 1
MODEL_GIVEN_BACK_SECONDS = 20  # ten minutes by the hurried clock are ten seconds


def switches(pid: int) -> int:
    """Voluntary context switches of all threads so far."""
    total = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        status = (task / "status").read_text()
        total += int(next(line for line in status.splitlines() if line.startswith("voluntary_ctxt")).split()[1])
    return total


def megabytes(pid: int) -> float:
    """Proportional memory."""
    rollup = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text()
    return int(next(line for line in rollup.splitlines() if line.startswith("Pss:")).split()[1]) / 1024


class Idle(unittest.TestCase):
    def test_costs_nothing_at_rest(self):
        user = User()
        self.addCleanup(user.close)
        with Velorin(os.environ["VELORIN_HURRIED"]) as velorin, Mousepad(Windows()) as editor:
            self.assert_idle(velorin, "before a dictation")
            sentence = all_sentences()["report"]
            Speaker(velorin, user).hold(sentence)
            editor.wait_for_text(sentence.text)
            while_loaded = megabytes(velorin.pid)
            self.assertGreater(while_loaded, MEGABYTES, "the model is loaded, so that it can be given back")
            waiting.until("the model's memory to be given back", MODEL_GIVEN_BACK_SECONDS,
                          lambda: megabytes(velorin.pid) < MEGABYTES)
            print(f"with the model: {while_loaded:.0f} MB")
            self.assert_idle(velorin, "after a dictation")

    def assert_idle(self, velorin: Velorin, when: str):
        waiting.until("the program to come to rest", 10, lambda: self.is_resting(velorin))
        before = switches(velorin.pid)
        time.sleep(SECONDS)  # this is the measurement
        rate = (switches(velorin.pid) - before) / SECONDS
        memory = megabytes(velorin.pid)
        print(f"{when}: {rate:.2f} voluntary context switches a second, {memory:.1f} MB")
        self.assertLess(rate, SWITCHES_A_SECOND)
        self.assertLess(memory, MEGABYTES)

    @staticmethod
    def is_resting(velorin: Velorin) -> bool:
        before = switches(velorin.pid)
        time.sleep(0.5)
        return switches(velorin.pid) == before


if __name__ == "__main__":
    unittest.main(verbosity=2)
