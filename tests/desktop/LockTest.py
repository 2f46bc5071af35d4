"""Nobody listens to a room whose screen is locked, and nothing that was said is put onto that screen."""
import json
import os
import pathlib
import unittest

import waiting
from desktop import Mousepad, Program, User, Windows, all_sentences, speak
from dictation import Speaker, Velorin
from lockers import SCREEN_SAVERS, Login, ScreenSaver

HISTORY = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Velorin" / "history.json"


class Lock(unittest.TestCase):
    def setUp(self):
        HISTORY.unlink(missing_ok=True)
        bus = Program(["dbus-daemon", "--session", "--nofork", "--print-address=1"])
        self.addCleanup(bus.__exit__)
        address = bus.wait_for_line("^unix:.*", seconds=10)[0]
        self.login = Login(address)
        self.addCleanup(self.login.close)
        self.user = User()
        self.addCleanup(self.user.close)
        self.editor = Mousepad(Windows())
        self.addCleanup(self.editor.__exit__)
        self.sentence = all_sentences()["somewhere"]
        self.velorin = Velorin(environment={"DBUS_SYSTEM_BUS_ADDRESS": address})
        self.addCleanup(self.velorin.__exit__)
        self.speaker = Speaker(self.velorin, self.user)
        waiting.until("what puts off the sleep", 5, self.login.is_put_off)

    def listen(self) -> int:
        said = len(self.velorin.lines)
        self.speaker.tap_toggle()
        self.velorin.wait_until_listening(said)
        return said

    def history(self) -> list[str]:
        return [record["text"] for record in json.loads(HISTORY.read_text())] if HISTORY.exists() else []

    def assert_ends(self, leave, come_back):
        """A dictation ends when the user leaves; its text is kept and not inserted, then or later."""
        kept = len(self.history())
        said = self.listen()
        speak(self.sentence.file)
        leave()
        self.velorin.wait_until_stopped(said)
        self.velorin.wait_for_line("^velorin: The screen was locked", 10, said)
        said = len(self.velorin.lines)
        self.speaker.tap_toggle()
        self.velorin.wait_for_line("start ignored: the session is locked", 5, said)
        self.speaker.tap_toggle()
        come_back()
        self.assertEqual(kept + 1, len(self.history()))
        self.assertEqual("", self.editor.text())

    def test_each_way_of_locking_ends_a_dictation(self):
        self.assert_ends(lambda: self.login.set("LockedHint", True), lambda: self.login.set("LockedHint", False))
        self.assert_ends(lambda: self.login.signal_session("Lock"), lambda: self.login.signal_session("Unlock"))
        self.assert_ends(lambda: self.login.set("Active", False), lambda: self.login.set("Active", True))
        for name in list(SCREEN_SAVERS)[:2]:
            saver = ScreenSaver(name)
            self.addCleanup(saver.close)
            self.assert_ends(lambda: saver.set(True), lambda: saver.set(False))  # noqa: B023

    def test_before_the_machine_sleeps_the_microphone_is_closed(self):
        self.assert_ends(lambda: self.login.prepare_for_sleep(True), lambda: None)
        waiting.until("the sleep to be let", 5, lambda: not self.login.is_put_off())
        self.login.prepare_for_sleep(False)
        waiting.until("what puts off the next sleep", 5, self.login.is_put_off)
        said = self.listen()
        self.speaker.tap_toggle()
        self.velorin.wait_until_stopped(said)


if __name__ == "__main__":
    unittest.main(verbosity=2)
