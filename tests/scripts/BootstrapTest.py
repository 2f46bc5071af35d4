"""The bootstrap is quick when all is there, and says in a sentence what it could not do."""
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import unittest

CHECKOUT = pathlib.Path(__file__).parents[2]
SECONDS = 60


class Bootstrap(unittest.TestCase):
    def setUp(self):
        # A copy, in which things may be missing.
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        shutil.copytree(CHECKOUT / "scripts", self.folder / "scripts")
        self.commands = self.folder / "commands"
        self.commands.mkdir()

    def fake(self, name, script):
        command = self.commands / name
        command.write_text("#!/bin/sh\n" + script)
        command.chmod(0o755)

    def environment(self, **variables):
        return os.environ | {"PATH": f"{self.commands}:{os.environ['PATH']}"} | variables

    def run_copy(self, **variables):
        return subprocess.run([self.folder / "scripts/bootstrap"], env=self.environment(**variables),
                              capture_output=True, text=True, timeout=SECONDS)

    def assert_nothing_half_done(self):
        self.assertEqual([], list((self.folder / ".cache").glob("*")))
        self.assertFalse((self.folder / "third_party").exists())

    def test_is_quiet_and_quick_when_all_is_there(self):
        begin = time.monotonic()
        done = subprocess.run([CHECKOUT / "scripts/bootstrap"], capture_output=True, text=True, timeout=SECONDS)
        seconds = time.monotonic() - begin
        self.assertEqual((0, "", ""), (done.returncode, done.stdout, done.stderr))
        self.assertLess(seconds, 1)

    def test_says_when_packages_cannot_be_fetched(self):
        self.fake("dpkg-query", "exit 1")
        self.fake("apt-get", "echo 'E: Could not resolve the host'; exit 100")
        self.fake("sudo", 'exec "$@"')
        done = self.run_copy()
        self.assertEqual(1, done.returncode)
        self.assertIn("E: Could not resolve the host", done.stderr)
        self.assertIn("bootstrap: apt-get could not fetch the lists of packages. Is there a network?", done.stderr)
        self.assert_nothing_half_done()

    def test_says_when_packages_cannot_be_installed(self):
        self.fake("dpkg-query", "exit 1")
        self.fake("apt-get", 'case "$*" in *update*) exit 0;; esac; echo "E: Unable to locate package"; exit 100')
        self.fake("sudo", 'exec "$@"')
        done = self.run_copy()
        self.assertEqual(1, done.returncode)
        self.assertIn("bootstrap: apt-get could not install: ", done.stderr)

    def test_asks_for_missing_packages_only(self):
        self.fake("dpkg-query", 'for each; do case "$each" in -*|cmake) ;; *) echo "$each installed";; esac; done')
        self.fake("apt-get", f'echo "$*" >> {self.folder}/asked')
        self.fake("sudo", 'exec "$@"')
        self.run_copy(PIP_NO_INDEX="1", PIP_FIND_LINKS="/nonexistent")
        asked = (self.folder / "asked").read_text().splitlines()
        self.assertTrue(asked[-1].endswith("install --no-install-recommends cmake"), asked)

    def test_says_when_the_speech_parts_cannot_be_fetched(self):
        done = self.run_copy(PIP_NO_INDEX="1", PIP_FIND_LINKS="/nonexistent")
        self.assertEqual(1, done.returncode)
        self.assertIn("the parts of the speech recognition could not be fetched. Is there a network?", done.stderr)
        self.assert_nothing_half_done()

    def test_refuses_other_files_than_the_pinned_ones(self):
        wheels = self.folder / "wheels"
        wheels.mkdir()
        for name in ("sherpa_onnx_core-2.0.1", "moonshine_voice-0.0.44", "silero_vad-6.2.3"):
            (wheels / f"{name}-py3-none-any.whl").write_bytes(b"something else")
        done = self.run_copy(PIP_NO_INDEX="1", PIP_FIND_LINKS=str(wheels))
        self.assertEqual(1, done.returncode)
        self.assertIn("DO NOT MATCH", done.stderr)
        self.assert_nothing_half_done()

    def test_leaves_nothing_when_interrupted(self):
        with socket.create_server(("127.0.0.1", 0)) as silent:
            # A server that never answers.
            index = f"http://127.0.0.1:{silent.getsockname()[1]}/simple"
            process = subprocess.Popen([self.folder / "scripts/bootstrap"], stderr=subprocess.DEVNULL,
                                       env=self.environment(PIP_INDEX_URL=index, PIP_FIND_LINKS="", PIP_TIMEOUT="50"),
                                       start_new_session=True)
            silent.settimeout(SECONDS)
            connection, _ = silent.accept()
            with connection:
                # As Ctrl-C in a terminal does: to all of them.
                os.killpg(process.pid, signal.SIGINT)
                self.assertEqual(130, process.wait(SECONDS))
        self.assert_nothing_half_done()


if __name__ == "__main__":
    unittest.main()
