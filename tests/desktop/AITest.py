"""Dictations that a provider of AI finishes: the program, real keys, a real microphone device, a real editor, and a
provider that answers, is late, refuses or hangs. VELORIN_TRACE=1 prints the times of each flow."""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../support/provider"))

from desktop import Mousepad, User, Windows, all_sentences, waiting  # noqa: E402
from dictation import HOLD, Speaker, Velorin  # noqa: E402
from provider import Provider  # noqa: E402

KEY = "sk-only-for-the-provider-7301"
CONFIGURATION = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velorin/preferences.json"
DATA = pathlib.Path(os.environ["XDG_DATA_HOME"])
STALE_SECONDS = 30


def configure(provider: Provider, mode: str, **switches):
    """What the settings window writes."""
    CONFIGURATION.parent.mkdir(parents=True, exist_ok=True)
    table = json.dumps({"custom": {"endpoint": f"{provider.address(mode)}/v1", "model": "a-model"}})
    CONFIGURATION.write_text(json.dumps({
        "aiProvider": "custom", "aiProviderConfigs": table, "aiEndpoint": f"{provider.address(mode)}/v1",
        "aiModel": "a-model", "aiGenerateTrigger": "please", "aiTranscriptionModels": {"custom": "a-listener"},
        "aiEnabled": False, "aiPolishEnabled": False, "aiGenerateEnabled": False, "aiTranscriptionEnabled": False,
        "captureDictations": False, **switches}))


def keep_key():
    subprocess.run(["secret-tool", "store", "--label=key", "service", "dev.orrin.velorin.ai", "account",
                    "api-key.custom"], input=KEY, text=True, check=True, timeout=20)


class FinishedByAI(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sentences = all_sentences()
        cls.user = User()
        cls.windows = Windows()
        cls.editor = Mousepad(cls.windows)
        cls.said = []
        keep_key()

    @classmethod
    def tearDownClass(cls):
        cls.editor.__exit__()
        cls.user.close()

    def setUp(self):
        for file in DATA.glob("Velorin/*.json*"):
            file.unlink()
        self.editor.clear()
        self.editor.wait_for_text("")
        self.provider = self.enterContext(Provider()) if hasattr(self, "enterContext") else Provider().__enter__()
        self.addCleanup(self.provider.__exit__)

    def start(self, mode: str, program: str | None = None, **switches) -> Velorin:
        configure(self.provider, mode, **switches)
        velorin = Velorin(program)
        self.addCleanup(velorin.__exit__)
        self.speaker = Speaker(velorin, self.user)
        return velorin

    def trace(self, flow: str, velorin: Velorin):
        self.assertNotIn(KEY, velorin.said())
        if os.environ.get("VELORIN_TRACE"):
            times = {stage: round(time) for stage, time in velorin.latencies()[-1].items()}
            print(f"\n{flow}: {times}", file=sys.stderr)

    # Polish

    def test_polish_inserts_the_providers_text(self):
        sentence = self.sentences["report"]
        self.provider.reply = sentence.text.replace("before", "by")
        with self.start("ok", aiPolishEnabled=True) as velorin:
            self.speaker.hold(sentence)
            self.editor.wait_for_text(self.provider.reply, 10)
            self.trace("polish", velorin)
        request = self.provider.requests[-1]
        self.assertEqual(request.headers["authorization"], f"Bearer {KEY}")
        self.assertEqual(request.json()["messages"][1]["content"], f"<transcript>\n{sentence.text}\n</transcript>")

    def test_polish_refused_inserts_the_plain_text(self):
        with self.start("status-429-json", aiPolishEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text(self.sentences["report"].text, 10)
            velorin.wait_for_line("polish failed: AI request failed: The server says no.", 5)

    def test_polish_that_hangs_inserts_the_plain_text(self):
        with self.start("hang", os.environ["VELORIN_HURRIED"], aiPolishEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text(self.sentences["report"].text, 10)
            velorin.wait_for_line("polish failed: The request timed out.", 5)
            self.trace("polish, hanging", velorin)

    def test_polish_that_is_late_leaves_no_trace_in_the_next_dictation(self):
        with self.start("late", aiPolishEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            waiting.until("the request", 10, lambda: self.provider.requests)
            said = len(velorin.lines)
            self.user.press(HOLD)
            velorin.wait_until_listening(said)
            self.provider.late.set()
            self.user.release(HOLD)
            velorin.wait_until_stopped(said)
            self.user.tap("x")
            self.editor.wait_for_text("x")

    # New text

    def test_generation_inserts_new_text(self):
        self.provider.reply = "Dear Ann,\n\nhere it is."
        with self.start("ok", aiGenerateEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text(self.provider.reply, 10)
            self.trace("generation", velorin)
        self.assertTrue(self.provider.requests[-1].json()["messages"][1]["content"].startswith(
            "<instruction>\nsend me the report before Friday afternoon\n</instruction>"))

    def test_generation_refused_is_told(self):
        with self.start("status-401-json", aiGenerateEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            velorin.wait_for_line("^velorin: AI request failed: The server says no.", 10)

    def test_generation_that_hangs_is_told(self):
        with self.start("hang", os.environ["VELORIN_HURRIED"], aiGenerateEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            velorin.wait_for_line("^velorin: The request timed out.", 10)

    # The provider's own transcript

    def test_transcription_inserts_what_the_provider_heard(self):
        self.provider.transcript = "the provider heard this"
        with self.start("ok", aiTranscriptionEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text("The provider heard this.", 10)
            self.trace("transcription", velorin)
        body = self.provider.requests[-1].body
        self.assertIn(b"a-listener", body)
        self.assertIn(b"RIFF", body)

    def test_transcription_refused_inserts_what_was_recognised(self):
        with self.start("status-500-html", aiTranscriptionEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text(self.sentences["report"].text, 10)
            velorin.wait_for_line("Provider transcription failed; used Apple’s on-device transcript. "
                                  "AI request failed: HTTP 500.", 5)

    def test_transcription_that_hangs_inserts_what_was_recognised(self):
        with self.start("hang", os.environ["VELORIN_HURRIED"], aiTranscriptionEnabled=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text(self.sentences["report"].text, 15)
            self.trace("transcription, hanging", velorin)

    # What is kept, and where

    def test_texts_prompts_replies_and_key_are_where_they_belong_only(self):
        self.provider.reply = "A zebra crossed by Friday afternoon."
        with self.start("ok", aiGenerateEnabled=True, aiTranscriptionEnabled=False, captureDictations=True) as velorin:
            self.speaker.hold(self.sentences["report"])
            self.editor.wait_for_text(self.provider.reply, 10)
            log = velorin.said()
        secrets = ["zebra", "Friday", "You write text", KEY]
        for secret in secrets:
            self.assertNotIn(secret, log)
        allowed = {"history.json", "dictation-capture.jsonl"}
        found = self.files_holding(secrets[0]) | self.files_holding(secrets[1])
        self.assertEqual({file.name for file in found}, allowed)
        self.assertEqual(self.files_holding(secrets[2]) | self.files_holding(secrets[3]), set())
        self.assertEqual({oct(file.stat().st_mode)[-3:] for file in found}, {"600"})

    def files_holding(self, text: str) -> set[pathlib.Path]:
        """In the home, the runtime folder and the temporary folder, but not the test's own editor."""
        folders = {os.environ["HOME"], os.environ["XDG_RUNTIME_DIR"], tempfile.gettempdir(), str(DATA)}
        found = subprocess.run(["grep", "-rlsaF", "--devices=skip", f"--exclude={os.path.basename(self.editor.file)}",
                                "--exclude-dir=bash_jobs*", text, *folders], capture_output=True, text=True,
                               timeout=60, check=False).stdout
        return {pathlib.Path(line) for line in found.splitlines()}


if __name__ == "__main__":
    unittest.main(verbosity=2)
