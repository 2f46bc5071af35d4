"""Dictations that a provider of AI finishes: the program with its settings, its key, an editor, and a provider that
answers, is late, refuses or hangs."""
import json
import os
import pathlib
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), "../support/provider"))

from desktop import Mousepad, User, Windows, all_sentences, waiting  # noqa: E402
from dictation import HOLD, Speaker, Velorin  # noqa: E402
from provider import Provider  # noqa: E402

KEY = "sk-only-for-the-provider-7301"
HURRIED = os.environ["VELORIN_HURRIED"]
CONFIGURATION = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velorin/preferences.json"
DATA = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Velorin"
_LONGEST_STALL_SECONDS = 0.3


def configure(provider: Provider, mode: str, **switches):
    """What the settings window writes."""
    CONFIGURATION.parent.mkdir(parents=True, exist_ok=True)
    table = json.dumps({"custom": {"endpoint": f"{provider.address(mode)}/v1", "model": "a-model"}})
    CONFIGURATION.write_text(json.dumps({
        "onboardingCompleted": True, "contextMode": "generic",
        "aiProvider": "custom", "aiProviderConfigs": table, "aiEndpoint": f"{provider.address(mode)}/v1",
        "aiModel": "a-model", "aiGenerateTrigger": "please", "aiTranscriptionModels": {"custom": "a-listener"},
        "aiEnabled": False, "aiPolishEnabled": False, "aiGenerateEnabled": False, "aiTranscriptionEnabled": False,
        "captureDictations": False, **switches}))


def keep_key():
    subprocess.run(["secret-tool", "store", "--label=key", "service", "dev.orrin.velorin.ai", "account",
                    "api-key.custom"], input=KEY, text=True, check=True, timeout=20)


class Finishing(unittest.TestCase):
    """`sentence` is what is said in all of them; its first word is the one that asks for new text."""

    @classmethod
    def setUpClass(cls):
        cls.sentence = all_sentences()["report"]
        cls.instruction = "send me the report before Friday afternoon"
        cls.user = User()
        cls.windows = Windows()
        cls.editor = Mousepad(cls.windows)
        keep_key()

    @classmethod
    def tearDownClass(cls):
        cls.editor.__exit__()
        cls.user.close()

    def setUp(self):
        for file in DATA.glob("*.json*"):
            file.unlink()
        self.write("")
        self.provider = Provider()
        self.provider.__enter__()
        self.addCleanup(self.provider.__exit__)

    # The editor

    def write(self, text: str):
        """The editor holds this text, with the caret at its end."""
        self.editor.clear()
        self.editor.wait_for_text("")
        if text:
            self.editor.write(text)
            self.editor.wait_for_text(text)
            self.user.chord("Control_L", "End")

    def select_all(self, text: str):
        self.write(text)
        self.user.chord("Control_L", "a")
        waiting.until("the selection", 5, lambda: self.editor.selection() == (0, len(text)))

    # The program

    def start(self, mode: str, program: str | None = None, **switches) -> Velorin:
        configure(self.provider, mode, **switches)
        velorin = Velorin(program)
        self.addCleanup(velorin.__exit__)
        self.speaker = Speaker(velorin, self.user)
        return velorin

    def message(self) -> str:
        """What the provider was asked last."""
        return self.provider.requests[-1].json()["messages"][1]["content"]

    def speak_and_wait_for_request(self):
        self.speaker.hold(self.sentence)
        waiting.until("the request", 10, lambda: self.provider.requests)

    def begin_another(self, velorin: Velorin) -> int:
        """A new dictation begins at once while the provider still thinks; returns how much was said before."""
        said = len(velorin.lines)
        self.user.press(HOLD)
        velorin.wait_until_listening(said, 2)
        waiting.until("sound", 5, lambda: "firstSample" in velorin.latencies()[-1])
        return said

    def end_another(self, velorin: Velorin, said: int):
        self.user.release(HOLD)
        velorin.wait_until_stopped(said)

    def watch_until(self, velorin: Velorin, line: str, seconds: float, after: int = 0):
        """Waits for the line; all the while the program answers whoever asks it something."""
        longest = 0.0
        deadline = time.monotonic() + seconds
        while not any(line in each.text for each in velorin.lines[after:]):
            self.assertLess(time.monotonic(), deadline, f"no line {line!r} in:\n{velorin.said()}")
            asked = time.monotonic()
            velorin.latencies()
            longest = max(longest, time.monotonic() - asked)
        self.assertLess(longest, _LONGEST_STALL_SECONDS)

    def trace(self, flow: str, velorin: Velorin):
        """Prints the times of the flow where somebody wants them."""
        if os.environ.get("VELORIN_TRACE"):
            times = {stage: round(time) for stage, time in velorin.latencies()[-1].items()}
            print(f"\n{flow}: {times}", file=sys.stderr)

    def history(self) -> list[str]:
        file = DATA / "history.json"
        return [record["text"] for record in json.loads(file.read_text())] if file.exists() else []


__all__ = ["DATA", "Finishing", "HOLD", "HURRIED", "KEY", "Velorin", "waiting"]
