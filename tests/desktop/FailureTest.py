"""What goes wrong in life: each time a clear sentence, and nothing lost or left behind.

The classes want desktops that lack different parts; CMakeLists.txt tells which.
"""
import json
import os
import pathlib
import shutil
import signal
import stat
import tempfile
import unittest

from desktop import Mousepad, User, Windows, all_sentences, waiting
from dictation import HOLD, Speaker, Velorin, complete_introduction

CONFIGURATION = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velorin"
RUNTIME = pathlib.Path(os.environ["XDG_RUNTIME_DIR"])
NEEDS_X11 = r"^velorin: Velorin needs an X11 session for now\. Choose one when you log in\.$"
NO_MICROPHONE = r"^velorin: No audio input device is available\.$"


class Desktop(unittest.TestCase):
    def setUp(self):
        self.user = User()
        self.addCleanup(self.user.close)

    def start(self, **arguments) -> Velorin:
        velorin = Velorin(**arguments)
        self.addCleanup(velorin.__exit__)
        return velorin

    def dictates(self, velorin: Velorin):
        sentence = all_sentences()["report"]
        with Mousepad(Windows()) as editor:
            Speaker(velorin, self.user).hold(sentence)
            editor.wait_for_text(sentence.text)

    def fails_to_start_with(self, velorin: Velorin, sentence: str):
        said = len(velorin.lines)
        self.user.press(HOLD)
        try:
            velorin.wait_for_line(sentence, seconds=10, after=said)
        finally:
            self.user.release(HOLD)
        self.assertTrue(velorin.is_running())


class WholeDesktop(Desktop):
    def test_a_wayland_session_is_told_to_choose_another(self):
        self.start(ready=NEEDS_X11, environment={"XDG_SESSION_TYPE": "wayland", "WAYLAND_DISPLAY": "wayland-0",
                                                 "QT_QPA_PLATFORM": "xcb"})

    def test_without_an_x_server_it_ends_with_a_sentence(self):
        velorin = self.start(ready="", environment={"DISPLAY": ":4711"})
        self.assertEqual(velorin.wait_for_end(5), 1)
        self.assertIn("velorin: no display: the X server at “:4711” does not answer.", velorin.said())

    def test_without_a_model_a_dictation_says_so_and_the_program_stays(self):
        folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        program = pathlib.Path(os.environ["VELORIN_PROGRAM"])
        (folder / "bin").mkdir()
        alone = shutil.copy(program, folder / "bin")
        # Its libraries, without which nothing starts, and no more.
        (folder / "lib/velorin").mkdir(parents=True)
        for library in (program.parent.parent / "lib/velorin").glob("*.so*"):
            shutil.copy(library, folder / "lib/velorin")
        velorin = self.start(executable=alone)
        self.fails_to_start_with(velorin, r"^velorin: .*model.*")

    def test_a_second_start_tells_the_first_and_ends(self):
        first = self.start()
        second = self.start(ready="")
        self.assertEqual(second.wait_for_end(5), 0)
        self.assertIn("velorin: is already running.", second.said())
        first.wait_for_line(r"^velorin: was started again", seconds=5)

    def test_corrupt_preferences_are_kept_aside_and_the_defaults_taken(self):
        CONFIGURATION.mkdir(parents=True, exist_ok=True)
        preferences = CONFIGURATION / "preferences.json"
        preferences.write_text('{"autoInsert": fal')
        velorin = self.start()
        self.assertRegex(velorin.said(), r"preferences in .* cannot be read")
        self.assertEqual((CONFIGURATION / "preferences.unreadable.json").read_text(), '{"autoInsert": fal')
        self.assertIn("shortcutConfiguration", json.loads(preferences.read_text()))
        self.assertEqual(stat.S_IMODE(preferences.stat().st_mode), 0o600)

    def test_preferences_that_may_not_be_read_are_like_none(self):
        CONFIGURATION.mkdir(parents=True, exist_ok=True)
        preferences = CONFIGURATION / "preferences.json"
        preferences.write_text("{}")
        preferences.chmod(0)
        self.assertRegex(self.start().said(), r"preferences in .* cannot be read")

    def test_a_home_that_cannot_be_written_stops_no_dictation(self):
        locked = tempfile.mkdtemp()
        complete_introduction(locked)
        self.addCleanup(shutil.rmtree, locked)
        for folder in (locked, f"{locked}/velorin"):
            os.chmod(folder, 0o500)
            self.addCleanup(os.chmod, folder, 0o700)
        velorin = self.start(environment={"XDG_CONFIG_HOME": locked, "XDG_DATA_HOME": locked,
                                          "XDG_CACHE_HOME": locked})
        self.assertRegex(velorin.said(), r"preferences cannot be written")
        self.dictates(velorin)

    def test_killed_in_the_middle_of_a_dictation_it_leaves_no_key_and_no_grab(self):
        velorin = self.start()
        with Mousepad(Windows()) as editor:
            said = len(velorin.lines)
            self.user.press(HOLD)
            velorin.wait_until_listening(said)
            velorin.end(signal.SIGKILL)
            self.user.release(HOLD)
            self.user.tap("a", "b")
            editor.wait_for_text("ab")
            # And the stand-in for Fn is an ordinary key again.
            self.user.chord(HOLD, "a")
            self.user.tap("c")
            editor.wait_for_text("c")

    def test_recordings_that_a_killed_process_left_are_removed_at_the_next_start(self):
        left = RUNTIME / "velorin" / "velorin-00000000-0000-0000-0000-000000000000.wav"
        left.parent.mkdir(exist_ok=True)
        left.write_bytes(b"RIFF")
        self.start()
        self.assertFalse(left.exists())

    def test_sigterm_ends_it_cleanly_also_during_a_dictation(self):
        velorin = self.start()
        said = len(velorin.lines)
        self.user.press(HOLD)
        velorin.wait_until_listening(said)
        # A model that is being loaded is loaded to its end.
        self.assertEqual(velorin.end(signal.SIGTERM, seconds=30), 0)
        self.user.release(HOLD)


class WithoutSound(Desktop):
    def test_a_dictation_says_that_there_is_no_microphone(self):
        self.fails_to_start_with(self.start(), NO_MICROPHONE)


class WithoutMicrophone(Desktop):
    def test_a_dictation_says_that_there_is_no_microphone(self):
        self.fails_to_start_with(self.start(), NO_MICROPHONE)


class WithoutBus(Desktop):
    def test_it_starts_and_a_second_one_ends(self):
        self.start()
        second = self.start(ready="")
        self.assertEqual(second.wait_for_end(10), 0)
        self.assertIn("velorin: is already running.", second.said())


class WithoutTray(Desktop):
    def test_it_dictates(self):
        self.dictates(self.start())


if __name__ == "__main__":
    unittest.main(verbosity=2)
