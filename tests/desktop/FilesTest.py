"""What the program writes is for the user alone, whatever the session's mask is, and what it starts gets that mask."""
import json
import os
import pathlib
import signal
import stat
import unittest

from desktop import Mousepad, User, Windows, all_sentences, waiting
from dictation import Speaker, Velorin

RUNTIME = pathlib.Path(os.environ["XDG_RUNTIME_DIR"])
DATA = pathlib.Path(os.environ["XDG_DATA_HOME"]) / "Velorin"
CONFIGURATION = pathlib.Path(os.environ["XDG_CONFIG_HOME"]) / "velorin"
OURS = (DATA, CONFIGURATION, RUNTIME / "velorin")


def mask(pid: int) -> int:
    lines = pathlib.Path(f"/proc/{pid}/status").read_text().splitlines()
    return int(next(line for line in lines if line.startswith("Umask:")).split()[1], 8)


def children(pid: int) -> list[int]:
    return [int(child) for task in pathlib.Path(f"/proc/{pid}/task").iterdir()
            for child in (task / "children").read_text().split()]


class Files(unittest.TestCase):
    def setUp(self):
        before = os.umask(0)
        self.addCleanup(os.umask, before)
        for folder in OURS:
            folder.mkdir(parents=True, exist_ok=True)
            folder.chmod(0o755)
        preferences = CONFIGURATION / "preferences.json"
        preferences.write_text(json.dumps({"onboardingCompleted": True, "captureDictations": True}))
        preferences.chmod(0o600)
        self.velorin = Velorin()
        self.addCleanup(self.velorin.__exit__)

    def test_are_for_the_user_alone(self):
        windows = Windows()
        user = User()
        self.addCleanup(user.close)
        with Mousepad(windows):
            Speaker(self.velorin, user).hold(next(iter(all_sentences().values())))
            for name in ("history.json", "dictation-capture.jsonl"):
                waiting.until(name, 10, (DATA / name).exists)
            self.velorin.end(signal.SIGTERM)
        for folder in OURS:
            for path in (folder, *folder.rglob("*")):
                others = stat.S_IMODE(path.stat().st_mode) & 0o077
                self.assertEqual(0, others, f"{path}: {others:o}")

    def test_what_it_starts_has_the_users_mask(self):
        self.assertEqual(0o077, mask(self.velorin.pid))
        guards = waiting.until("the guard", 5, lambda: children(self.velorin.pid))
        self.assertEqual([0], [mask(guard) for guard in guards])


if __name__ == "__main__":
    unittest.main(verbosity=2)
