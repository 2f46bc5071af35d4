"""The clipboard gives back what was put into it, byte for byte."""
import unittest

from desktop import clipboard


class Clipboard(unittest.TestCase):
    def test_gives_a_text_back(self):
        text = "Grüße, 世界 👋🏽\n\ttwo lines ".encode()
        clipboard.write(text)
        self.assertEqual(text, clipboard.read())
        self.assertIn("UTF8_STRING", clipboard.targets())

    def test_gives_a_large_picture_back(self):
        # Larger than what goes over in one piece.
        picture = clipboard.png(700, 500)
        self.assertGreater(len(picture), 1_000_000)
        clipboard.write(picture, "image/png")
        self.assertIn("image/png", clipboard.targets())
        self.assertTrue(picture == clipboard.read("image/png"))  # not printed: a megabyte

    def test_and_the_primary_selection_are_two(self):
        clipboard.write(b"copied")
        clipboard.write(b"selected", selection="primary")
        self.assertEqual(b"copied", clipboard.read())
        self.assertEqual(b"selected", clipboard.read(selection="primary"))


if __name__ == "__main__":
    unittest.main()
