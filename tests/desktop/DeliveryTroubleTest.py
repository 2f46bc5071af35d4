"""Insertions in which the target, the clipboard or its owner does not behave."""
import contextlib
import os
import signal
import subprocess
import time
import unittest

import accessible
import clipboard
import waiting
from applications.accessible_editors import QtField
from applications.terminals import XTerm
from delivery import Delivery
from user import User
from windows import Windows

_LONGEST_CALL_MILLISECONDS = 800
_NOT_IN_FRONT = "Text was not inserted: another window is in front."


class DeliveryTrouble(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        accessible.switch_on()
        cls.windows = Windows()
        cls.user = User()

    def setUp(self):
        self.delivery = self.enterContext(Delivery())

    def start(self, row):
        target = row(self.windows, self.user)
        self.addCleanup(target.close)
        target.start()
        return target

    def start_field(self):
        """A field that is pasted into, in front."""
        field = self.start(QtField)
        self.delivery.direct(False)
        self.delivery.aim()
        return field

    def paste(self, field, text: str, whole: str):
        self.assertEqual("clipboard paste", self.delivery.insert(text).path)
        self.wait_for_text(field, whole)

    def copy(self, content: bytes):
        """As the user does; it may take a moment until the clipboard has changed hands."""
        clipboard.write(content)
        self.wait_for_clipboard(content)

    def wait_for_text(self, field, text: str):
        try:
            waiting.until(f"{text!r} in the field", 8, lambda: field.state().text == text)
        except waiting.TookTooLong as late:
            self.fail(f"{late}; there is {field.state().text!r}, the user was told {self.delivery.told()}")

    def wait_for_clipboard(self, content: bytes):
        waiting.until("the user's content", 12, lambda: clipboard.read() == content)

    def test_a_target_that_was_closed_gets_nothing_and_neither_does_another(self):
        behind = self.start(XTerm)
        target = QtField(self.windows, self.user)
        target.start()
        self.delivery.aim()
        target.close()
        waiting.until("the other window in front", 10, lambda: self.windows.is_active(behind.window))
        reply = self.delivery.insert("for the one that is gone")
        self.assertEqual((_NOT_IN_FRONT, ""), (reply.told, reply.path))
        self.assertLess(reply.took, _LONGEST_CALL_MILLISECONDS)
        self.assertEqual("", behind.state().text)
        again = self.delivery.again("taken up again")
        self.assertNotEqual("", again.path)
        self.wait_for_text(behind, "taken up again")

    def test_two_at_once_both_land_and_the_clipboard_is_as_before(self):
        field = self.start_field()
        self.copy(b"the user's")
        self.paste(field, "one ", "one ")  # the content has yet to come back
        self.paste(field, "two", "one two")
        self.wait_for_clipboard(b"the user's")

    def test_what_the_user_copies_right_after_stays(self):
        field = self.start_field()
        self.copy(b"copied before")
        self.paste(field, "dictated", "dictated")
        self.copy(b"copied after")
        # Longer than the old content would take to come back.
        end = time.monotonic() + 1.5
        while time.monotonic() < end:
            self.assertEqual(b"copied after", clipboard.read())

    def assert_on_clipboard(self, picture: bytes):
        waiting.until("the picture", 12, lambda: "image/png" in clipboard.targets())
        self.assertTrue(picture == clipboard.read("image/png"))  # not printed

    def test_a_picture_comes_back_whole(self):
        field = self.start_field()
        picture = clipboard.png(1000, 700)
        clipboard.write(picture, "image/png")
        self.assert_on_clipboard(picture)
        self.paste(field, "beside a picture", "beside a picture")
        self.assert_on_clipboard(picture)

    def test_one_of_fifty_megabytes_comes_back_whole_or_is_not_touched(self):
        field = self.start_field()
        picture = clipboard.png(4096, 4096)
        self.assertGreater(len(picture), 50_000_000)
        clipboard.write(picture, "image/png")
        self.assert_on_clipboard(picture)
        reply = self.delivery.insert("beside a picture")
        self.assertLess(reply.took, _LONGEST_CALL_MILLISECONDS)
        # Its owner may need longer for all of it than an insertion waits.
        self.assertIn(reply.path, ("clipboard paste", ""))
        self.assertEqual(reply.path == "", reply.told != "")
        self.wait_for_text(field, "beside a picture" if reply.path else "")
        self.assert_on_clipboard(picture)

    def test_an_owner_that_hangs_keeps_its_clipboard(self):
        field = self.start(QtField)
        self.delivery.aim()
        with stopped_owner(b"the user's"):
            self.delivery.direct(False)
            declined = self.delivery.insert("by the clipboard")
            self.assertEqual("", declined.path)
            self.assertNotEqual("", declined.told)
            self.assertLess(declined.took, _LONGEST_CALL_MILLISECONDS)
            self.assertEqual("", field.state().text)
            self.delivery.direct(True)
            self.assertNotEqual("", self.delivery.insert("by another road").path)
            self.wait_for_text(field, "by another road")


@contextlib.contextmanager
def stopped_owner(content: bytes):
    """The clipboard's owner, which does not move meanwhile, and has its clipboard when it does again."""
    with subprocess.Popen(["xclip", "-in", "-quiet", "-selection", "clipboard"], stdin=subprocess.PIPE,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as owner:
        owner.stdin.write(content)
        owner.stdin.close()
        waiting.until("the owner", 5, lambda: clipboard.read() == content)
        os.kill(owner.pid, signal.SIGSTOP)
        try:
            yield
            os.kill(owner.pid, signal.SIGCONT)
            waiting.until("the owner, moving again", 5, lambda: clipboard.read() == content)
        finally:
            os.kill(owner.pid, signal.SIGCONT)
            owner.terminate()


if __name__ == "__main__":
    unittest.main()
