"""What becomes of a text whose target does not move: it stands there once as soon as the target does, and the
program does not wait for it."""
import os
import signal
import time
import unittest

import accessible
import waiting
from applications import QUICK
from applications.texts import TEXTS
from delivery import Delivery
from user import User
from windows import Windows

_LONGEST_CALL_MILLISECONDS = 800


class StoppedTarget(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        accessible.switch_on()
        cls.windows = Windows()
        cls.user = User()

    def test_gets_the_text_once_when_it_moves_again(self):
        for row in QUICK:
            for text in TEXTS[:2]:
                with self.subTest(target=row.name, text=text.name):
                    self.insert_into_stopped(row, text.content)

    def insert_into_stopped(self, row, text: str):
        target = row(self.windows, self.user)
        self.addCleanup(target.close)
        target.start()
        with Delivery() as delivery:
            delivery.aim()
            os.kill(target.process.pid, signal.SIGSTOP)
            try:
                reply = delivery.insert(text)
                self.assertLess(delivery.beat().took, 100)
                time.sleep(1)  # as long as it is stopped
            finally:
                os.kill(target.process.pid, signal.SIGCONT)
            self.assertLess(reply.took, _LONGEST_CALL_MILLISECONDS)
            if reply.path:
                waiting.until("the text", 5, lambda: target.state().text == text)
            else:
                self.assertNotEqual("", reply.told)
                self.assertEqual("", target.state().text)


if __name__ == "__main__":
    unittest.main()
