"""Dictations as people make them: the released program, real keys, a real microphone device, a real editor."""
import unittest

import clipboard
from desktop import Microphone, Mousepad, StatusNotifierHost, User, Windows, all_sentences, speak, waiting
from dictation import HOLD, Speaker, Velorin


OWN = "the user's own".encode()


class Dictation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sentences = all_sentences()
        cls.tray = StatusNotifierHost()
        cls.user = User()
        cls.windows = Windows()
        cls.velorin = Velorin()
        cls.editor = Mousepad(cls.windows)
        cls.speaker = Speaker(cls.velorin, cls.user)

    @classmethod
    def tearDownClass(cls):
        cls.editor.__exit__()
        code = cls.velorin.end()
        cls.user.close()
        cls.tray.close()
        assert code == 0, f"velorin ended with {code}:\n{cls.velorin.said()}"

    def setUp(self):
        self.editor.clear()
        self.editor.wait_for_text("")

    def rest_from_paste(self):
        """Until the clipboard is the user's again, so that each test begins with what it put there."""
        waiting.until("the user's clipboard", 10, lambda: clipboard.read() == OWN)

    def test_each_sentence_arrives_exactly(self):
        clipboard.write(OWN)
        for sentence in self.sentences.values():
            with self.subTest(sentence.name):
                self.editor.clear()
                self.speaker.hold(sentence)
                self.editor.wait_for_text(sentence.text)
                self.rest_from_paste()

    def test_toggle_mode(self):
        self.speaker.toggle(self.sentences["report"])
        self.editor.wait_for_text(self.sentences["report"].text)

    def test_from_the_tray_menu(self):
        said = len(self.velorin.lines)
        self.tray.choose(self.velorin.pid, "Start dictation")
        self.velorin.wait_until_listening(said)
        waiting.until("the other row", 5, lambda: "Stop dictation" in self.tray.rows(self.velorin.pid))
        speak(self.sentences["letter"].file)
        self.tray.choose(self.velorin.pid, "Stop dictation")
        self.editor.wait_for_text(self.sentences["letter"].text)

    def test_the_menu_begins_with_dictation_and_ends_with_quit(self):
        rows = list(self.tray.rows(self.velorin.pid))
        self.assertEqual(["Start dictation", "Quit Velorin"], [rows[0], rows[-1]])

    def test_two_in_a_row_follow_each_other(self):
        first, second = self.sentences["report"], self.sentences["brother"]
        self.speaker.hold(first)
        self.speaker.hold(second)
        self.editor.wait_for_text(first.text + second.text)

    def test_a_quick_tap_inserts_nothing(self):
        said = len(self.velorin.lines)
        self.user.tap(HOLD)
        self.velorin.wait_until_stopped(said)
        self.assert_nothing_inserted(said)

    def test_silence_inserts_nothing(self):
        said = len(self.velorin.lines)
        self.user.press(HOLD)
        self.velorin.wait_until_listening(said)
        self.hear_silence(seconds=3)
        self.user.release(HOLD)
        self.velorin.wait_until_stopped(said)
        self.assert_nothing_inserted(said)

    def hear_silence(self, seconds: float):
        microphone = Microphone()
        try:
            began = microphone.read()
            while microphone.read() < began + seconds:
                pass
        finally:
            microphone.close()

    def assert_nothing_inserted(self, said: int):
        """A key that comes after it arrives alone: whatever had been pasted would stand before it."""
        self.user.tap("x")
        self.editor.wait_for_text("x")
        self.assertNotIn("insertion path", "\n".join(line.text for line in self.velorin.lines[said:]))

    def test_text_and_image_on_the_clipboard_come_back(self):
        clipboard.write(OWN)
        self.speaker.hold(self.sentences["report"])
        self.editor.wait_for_text(self.sentences["report"].text)
        self.rest_from_paste()
        image = clipboard.png(200, 100)
        clipboard.write(image, "image/png")
        self.editor.clear()
        self.speaker.hold(self.sentences["brother"])
        self.editor.wait_for_text(self.sentences["brother"].text)
        waiting.until("the user's image", 10, lambda: clipboard.read("image/png") == image)

    def test_no_key_is_left_down(self):
        self.speaker.hold(self.sentences["report"])
        self.editor.wait_for_text(self.sentences["report"].text)
        self.editor.clear()
        self.user.tap("a", "b")
        self.editor.wait_for_text("ab")

    def test_the_log_never_holds_what_was_said(self):
        self.speaker.hold(self.sentences["report"])
        self.editor.wait_for_text(self.sentences["report"].text)
        self.assertNotIn("Friday", self.velorin.said())


if __name__ == "__main__":
    unittest.main(verbosity=2)
