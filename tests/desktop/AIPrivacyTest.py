"""What was said, what a provider was told and what it answered, and the key: found where they belong and nowhere
else, after all kinds of dictations."""
import os
import pathlib
import subprocess
import tempfile
import unittest

from finishing import DATA, KEY, Finishing

SELECTED = "A heliotrope grows by the gate."
SPOKEN = "Friday"
REPLY = "quokka"
HEARD = "walrus"
PROMPTS = ["You clean up dictated", "You are a precise text", "You write text inside", "<spoken_instruction>"]
EVERYWHERE = ["/tmp", "/var/tmp", "/dev/shm"]


class KeptWhereItBelongs(Finishing):
    @classmethod
    def setUpClass(cls):
        os.environ["QT_LOGGING_RULES"] = "dev.orrin.velorin.*=true"
        super().setUpClass()

    def dictate_in_every_way(self, **kept) -> str:
        """All four flows; returns all that the program wrote to its log."""
        log = ""
        flows = [("ok", {"aiPolishEnabled": True}, self.sentence.text),
                 ("ok", {"aiEnabled": True}, f"One {REPLY}."),
                 ("ok", {"aiGenerateEnabled": True}, f"Two {REPLY}s."),
                 ("ok", {"aiTranscriptionEnabled": True, "aiPolishEnabled": True}, f"The {HEARD} said it"),
                 ("status-500-html", {"aiTranscriptionEnabled": True, "aiPolishEnabled": True}, self.sentence.text)]
        for mode, switches, text in flows:
            self.provider.reply = text
            self.provider.transcript = f"the {HEARD} said it"
            with self.start(mode, **switches, **kept) as velorin:
                if "aiEnabled" in switches:
                    self.select_all(SELECTED)
                else:
                    self.write("")
                self.speaker.hold(self.sentence)
                self.editor.wait_for_text(text, 10)
                self.assertNotIn(KEY, pathlib.Path(f"/proc/{velorin.pid}/cmdline").read_text())
                self.assertNotIn(KEY, pathlib.Path(f"/proc/{velorin.pid}/environ").read_text())
                log += velorin.said()
        self.write("")
        self.user.chord("Control_L", "s")
        return log

    def files_holding(self, *texts: str) -> set[pathlib.Path]:
        """In the home, the runtime folder and all temporary folders, but not the test's own editor."""
        patterns = [argument for text in texts for argument in ("-e", text)]
        folders = {os.environ["HOME"], os.environ["XDG_RUNTIME_DIR"], tempfile.gettempdir(), str(DATA), *EVERYWHERE}
        found = subprocess.run(["grep", "-rlsaF", "--devices=skip", f"--exclude={os.path.basename(self.editor.file)}",
                                "--exclude-dir=bash_jobs*", *self.not_ours(), *patterns, *folders],
                               capture_output=True, text=True, timeout=60, check=False).stdout
        return {pathlib.Path(line) for line in found.splitlines()}

    @staticmethod
    def not_ours() -> list[str]:
        """Folders in the temporary one that belong to another user."""
        return [f"--exclude-dir={entry.name}" for entry in pathlib.Path("/tmp").iterdir()
                if entry.is_dir() and entry.stat().st_uid != os.getuid()]

    def recordings(self) -> list[pathlib.Path]:
        folders = {os.environ["HOME"], os.environ["XDG_RUNTIME_DIR"], tempfile.gettempdir()}
        return [file for folder in folders for file in pathlib.Path(folder).rglob("velorin-*.wav")]

    def assert_not_logged(self, log: str):
        for text in [SPOKEN, SELECTED, "heliotrope", REPLY, HEARD, KEY, *PROMPTS]:
            self.assertNotIn(text, log)

    def test_with_history_and_capture_log(self):
        self.assert_not_logged(self.dictate_in_every_way(captureDictations=True))
        kept = {DATA / "history.json", DATA / "dictation-capture.jsonl"}
        for text in [SPOKEN, REPLY, HEARD]:
            self.assertEqual(self.files_holding(text), kept, text)
        self.assertEqual(self.files_holding("heliotrope", *PROMPTS), set())
        self.assertEqual({oct(file.stat().st_mode)[-3:] for file in kept}, {"600"})
        self.assertEqual(oct(DATA.stat().st_mode)[-3:], "700")
        self.assertEqual(self.recordings(), [])
        # The key ring of this desktop has no password, and is a file.
        self.assertLessEqual({file.parent.name for file in self.files_holding(KEY)}, {"keyrings"})

    def test_a_recording_that_is_being_sent_goes_when_the_program_ends(self):
        with self.start("hang", aiTranscriptionEnabled=True) as velorin:
            self.speak_and_wait_for_request()
            self.assertEqual(len(self.recordings()), 1)
            velorin.end()
        self.assertEqual(self.recordings(), [])

    def test_without_them_nothing_is_kept(self):
        self.assert_not_logged(self.dictate_in_every_way(historyEnabled=False))
        self.assertEqual(self.files_holding(SPOKEN, REPLY, HEARD, "heliotrope", *PROMPTS), set())
        self.assertEqual(self.recordings(), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
