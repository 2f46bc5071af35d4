"""Texts in situations, into the applications that every machine with the tests has.

`make matrix` has all texts in all situations and all applications.
"""
import unittest

import accessible
import matrix
from applications import QUICK
from delivery import Delivery
from user import User
from windows import Windows


class Matrix(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        accessible.switch_on()
        cls.windows = Windows()
        cls.user = User()

    def test_every_text_lands_whole_and_leaves_the_rest_as_it_was(self):
        for row in QUICK:
            self.assertTrue(row.is_installed(), f"{row.name} is not installed; run scripts/bootstrap")
            target = row(self.windows, self.user)
            self.addCleanup(target.close)
            target.start()
            with Delivery() as delivery:
                for situation, text in matrix.few_cells():
                    with self.subTest(target=row.name, text=text.name, situation=situation.name):
                        cell = matrix.run(target, delivery, text, situation)
                        self.assertEqual([], cell.faults)
                        self.assertNotEqual("", cell.path, "no path took it")


if __name__ == "__main__":
    unittest.main()
