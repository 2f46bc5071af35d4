"""A private desktop stands quickly, keeps to itself, and leaves nothing behind, however it ends."""
import os
import pathlib
import signal
import subprocess
import time
import unittest

import waiting

DESKTOP = str(pathlib.Path(__file__).parents[2] / "scripts/desktop")
SECONDS = 30

# Tells where the desktop is, and has a child that went to the background.
COMMAND = "echo $(dirname $XDG_RUNTIME_DIR) $DISPLAY $PPID $$; setsid sleep 100 & exec sleep 100"
# The child does not want to end, which costs some patience each time.
STUBBORN = "(trap '' TERM; setsid sh -c 'sleep 100; sleep 100') & " + COMMAND


def processes_with(word: str) -> list[int]:
    """The processes in whose environment or arguments the word is."""
    found = []
    for entry in os.listdir("/proc"):
        if entry.isdigit() and int(entry) != os.getpid():
            try:
                text = pathlib.Path(f"/proc/{entry}/environ").read_bytes()
                text += pathlib.Path(f"/proc/{entry}/cmdline").read_bytes()
            except OSError:
                continue
            if word.encode() in text:
                found.append(int(entry))
    return found


class PrivateDesktop(unittest.TestCase):
    def run_command(self, *command, **environment):
        return subprocess.run([DESKTOP, *command], capture_output=True, text=True, timeout=SECONDS,
                              env=os.environ | environment)

    def start(self, script=COMMAND, without="tray"):  # the panel takes a second to start
        """A running desktop: its process, its folder, its display, the process that watches inside, the command."""
        process = subprocess.Popen([DESKTOP, "sh", "-c", script], stdout=subprocess.PIPE, text=True,
                                   start_new_session=True, env=os.environ | {"VELORIN_DESKTOP_WITHOUT": without})
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.terminate)
        folder, display, inner, command = process.stdout.readline().split()
        self.assertTrue(pathlib.Path(folder).is_dir())
        return process, folder, display, int(inner), int(command)

    def assert_nothing_left(self, folder, display):
        number = display.lstrip(":")
        waiting.until("the end of all processes", SECONDS, lambda: not processes_with(folder))
        waiting.until("the end of the folder", SECONDS, lambda: not os.path.exists(folder))
        self.assertFalse(os.path.exists(f"/tmp/.X11-unix/X{number}"))
        self.assertFalse(os.path.exists(f"/tmp/.X{number}-lock"))

    def test_stands_within_three_seconds(self):
        begin = time.monotonic()
        self.assertEqual(0, self.run_command("true").returncode)
        seconds = time.monotonic() - begin
        print(f"up and down again in {seconds:.2f} s")
        self.assertLess(seconds, 3)

    def test_gives_the_commands_exit_code(self):
        self.assertEqual(42, self.run_command("sh", "-c", "exit 42").returncode)
        self.assertEqual(137, self.run_command("sh", "-c", "kill -KILL $$").returncode)
        self.assertEqual(127, self.run_command("no-such-program").returncode)

    def test_is_a_home_of_its_own_for_an_ordinary_user(self):
        said = self.run_command("sh", "-c", "id -u; env", XDG_CONFIG_HOME="/outside", SECRET="x").stdout
        self.assertNotEqual("0", said.splitlines()[0])
        variables = dict(line.split("=", 1) for line in said.splitlines()[1:])
        self.assertNotIn("SECRET", variables)
        home = variables["HOME"]
        self.assertTrue(home.startswith("/tmp/velorin-"))
        for name in ("CONFIG", "DATA", "CACHE", "STATE"):
            self.assertTrue(variables[f"XDG_{name}_HOME"].startswith(home + "/"))

    def test_leaves_parts_out(self):
        def answer(without, command):
            return self.run_command("sh", "-c", command, VELORIN_DESKTOP_WITHOUT=without).returncode

        window_manager = "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'"
        sources = "pactl list short sources | grep -v monitor | grep -q velorin_mic"
        secrets = ("dbus-send --session --print-reply --reply-timeout=2000 --dest=org.freedesktop.secrets / "
                   "org.freedesktop.DBus.Peer.Ping")
        self.assertEqual(0, answer("tray", f"{window_manager} && {sources} && {secrets}"))
        self.assertNotEqual(0, answer("tray wm", window_manager))
        self.assertNotEqual(0, answer("tray microphone", sources))
        self.assertNotEqual(0, answer("tray sound", "pactl info"))
        self.assertNotEqual(0, answer("tray bus", secrets))

    def test_leaves_nothing_when_the_command_is_killed(self):
        process, folder, display, _, command = self.start(STUBBORN, without="")
        os.kill(command, signal.SIGKILL)
        self.assertEqual(137, process.wait(SECONDS))
        self.assert_nothing_left(folder, display)

    def test_leaves_nothing_when_asked_to_end(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            process, folder, display, _, _ = self.start()
            process.send_signal(number)
            self.assertEqual(128 + number, process.wait(SECONDS))
            self.assert_nothing_left(folder, display)

    def test_removes_folders_that_were_closed(self):
        script = ("mkdir -p $HOME/a/b && touch $HOME/a/b/c && ln -s /usr $HOME/a/b/link && "
                  "chmod 0 $HOME/a/b $HOME/a && chmod 500 $HOME && dirname $HOME")
        done = self.run_command("sh", "-c", script, VELORIN_DESKTOP_WITHOUT="tray")
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        self.assertFalse(os.path.exists(done.stdout.strip()))

    def test_leaves_nothing_after_ctrl_c(self):
        process, folder, display, _, _ = self.start()
        os.killpg(process.pid, signal.SIGINT)
        self.assertEqual(128 + signal.SIGINT, process.wait(SECONDS))
        self.assert_nothing_left(folder, display)

    def test_leaves_nothing_when_either_watcher_is_killed(self):
        process, folder, display, inner, _ = self.start()
        os.kill(inner, signal.SIGKILL)
        self.assertEqual(137, process.wait(SECONDS))
        self.assert_nothing_left(folder, display)
        process, folder, display, _, _ = self.start()
        process.kill()
        process.wait(SECONDS)
        self.assert_nothing_left(folder, display)

    def test_removes_what_was_left_when_everything_was_killed(self):
        process, folder, _, inner, _ = self.start()
        running, other_folder, _, _, _ = self.start()
        # The watchers first, stopped, so that neither can do its work.
        for number in (signal.SIGSTOP, signal.SIGKILL):
            for pid in [process.pid, inner] + processes_with(folder):
                os.kill(pid, number)
        process.wait(SECONDS)
        self.assertTrue(os.path.exists(folder))
        self.assertEqual(0, self.run_command("true").returncode)
        self.assertFalse(os.path.exists(folder))
        self.assertTrue(os.path.exists(other_folder))
        running.terminate()
        running.wait(SECONDS)


if __name__ == "__main__":
    unittest.main()
