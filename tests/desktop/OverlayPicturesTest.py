"""The overlay looks as it did when somebody looked at it: every phase, both looks, light and dark, three scales,
with a compositor and without, and texts of many scripts."""
import unittest

import waiting
from desktop import Program, Windows
from overlay import PLAIN, Stage, sheet
from pictures import assert_like_kept
from Xlib import X

LONG = ("It was a long dictation, in which one sentence followed the other, and nobody could have read it all on "
        "one line, so that only its end stays in view")
TEXTS = {
    "placeholder": "", "long": LONG, "right to left": "שלום עולם, זה משפט", "arabic": "هذه جملة طويلة بما يكفي لتملأ السطر كله ثم تستمر قليلا بعد ذلك",
    "cjk": "今日はとても良い天気ですね。会議は三時からです", "emoji": "Done 🎉 see you 👩‍💻 soon 🚀",
    "accents": "Ångström, naïve café, Žižkov", "lines": "first line\nsecond line", "unknown script": "ꯃꯅꯤꯄꯨꯔ 𐎠𐎡 text",
}


class Pictures(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.windows = Windows()

    def start(self, scale: str = "1", composited: bool = True) -> Stage:
        self.lay_out_pages()
        if composited:
            picom = Program(["picom", "--backend", "xrender", "--config", "/dev/null"])
            self.addCleanup(picom.__exit__)
            atom = self.windows.display.intern_atom("_NET_WM_CM_S0")
            waiting.until("a compositor", 10, lambda: self.windows.display.get_selection_owner(atom))
        stage = Stage(self.windows, {"QT_SCALE_FACTOR": scale})
        self.addCleanup(stage.__exit__)
        return stage

    def lay_out_pages(self):
        """Half light and half dark, so that what shines through is seen on both."""
        for left, color in ((0, 0xF4F4F4), (640, 0x20242C)):
            page = self.windows.root.create_window(left, 0, 640, 800, 0, X.CopyFromParent, X.InputOutput,
                                                   background_pixel=color, override_redirect=True)
            page.map()
            self.addCleanup(page.destroy)
            waiting.until("a page", 5, lambda: self.windows.is_visible(page))  # noqa: B023 — asked at once

    def take(self, stage: Stage, **state):
        stage.show(**{**PLAIN, **state})
        picture = stage.picture()
        stage.hide()
        return picture

    def both_looks(self, name: str, **arguments):
        stage = self.start(**arguments)
        pictures = [self.take(stage, style=style, dark=dark) for style in ("capsule", "card") for dark in (False, True)]
        assert_like_kept(name, sheet(pictures))

    def test_scale_1(self):
        self.both_looks("scale-1")

    def test_scale_one_and_a_half(self):
        self.both_looks("scale-1.5", scale="1.5")

    def test_scale_2(self):
        self.both_looks("scale-2", scale="2")

    def test_scale_1_without_compositor(self):
        self.both_looks("scale-1-shaped", composited=False)

    def test_scale_one_and_a_half_without_compositor(self):
        self.both_looks("scale-1.5-shaped", scale="1.5", composited=False)

    def test_scale_2_without_compositor(self):
        self.both_looks("scale-2-shaped", scale="2", composited=False)

    def test_phases(self):
        stage = self.start()
        states = [{"phase": "processing"}, {"phase": "done"}, {"phase": "error", "text": ""},
                  {"phase": "processing", "processing": "polish", "text": ""},
                  {"phase": "processing", "processing": "generate", "generate": True, "text": ""},
                  {"phase": "listening", "edit": True, "text": ""},
                  {"phase": "listening", "app": None, "profile": "terminal", "text": ""},
                  {"phase": "listening", "edit": True, "app": "Mousepad", "icon": "org.xfce.mousepad",
                   "profile": "document"},
                  {"phase": "done", "app": "An application with quite a long name", "generate": True,
                   "profile": "document"}]
        for style in ("capsule", "card"):
            pictures = [self.take(stage, style=style, dark=dark, **state) for state in states for dark in (False, True)]
            with self.subTest(style):
                assert_like_kept(f"phases-{style}", sheet(pictures))

    def test_texts(self):
        stage = self.start()
        for style in ("capsule", "card"):
            pictures = [self.take(stage, style=style, dark=number % 2 == 1, text=text)
                        for number, text in enumerate(TEXTS.values())]
            with self.subTest(style):
                assert_like_kept(f"texts-{style}", sheet(pictures))


if __name__ == "__main__":
    unittest.main(verbosity=2)
