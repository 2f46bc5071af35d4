"""What could not be put into its place stays within reach: the notification copies it."""
import unittest

import clipboard
import waiting
from desktop import Mousepad, User, Windows, all_sentences, speak
from dictation import HOLD, Velorin
from notifications import NotificationServer


class Undelivered(unittest.TestCase):
    def setUp(self):
        self.server = NotificationServer()
        self.addCleanup(self.server.close)
        self.user = User()
        self.addCleanup(self.user.close)
        self.velorin = Velorin()
        self.addCleanup(self.velorin.__exit__)

    def test_a_text_whose_window_has_gone_is_copied_from_the_notification(self):
        sentence = all_sentences()["report"]
        behind, target = Mousepad(Windows()), Mousepad(Windows())
        self.addCleanup(behind.__exit__)
        self.user.press(HOLD)
        speak(sentence.file)
        target.__exit__()
        self.user.release(HOLD)
        number, text = waiting.until("the notification", 10, lambda: next(iter(self.server.shown.items()), None))
        self.assertIn("Use Copy in this message.", text)
        self.assertNotIn(sentence.text, text)
        self.assertEqual(["copy", "Copy"], self.server.actions[number])
        self.server.invoke(number, "copy")
        waiting.until("the text on the clipboard", 5, lambda: clipboard.read() == sentence.text.encode())
        waiting.until("the notification to be gone", 5, lambda: not self.server.shown)
        self.assertNotIn("x-kde-passwordManagerHint", clipboard.targets())


if __name__ == "__main__":
    unittest.main(verbosity=2)
