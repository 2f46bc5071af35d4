"""The programs that make up the desktop: how each is started, and when it is ready."""
import os
import pathlib
import select
import socket
import subprocess
import sys
import time
from collections.abc import Callable

from .home import Home

# For all parts together; a warm start takes well under a second.
START_SECONDS = 20.0
_POLL_SECONDS = 0.005

VOICE_SINK = "velorin_voice"
SPEAKER_SINK = "velorin_speakers"
MICROPHONE = "velorin_mic"


class NotReady(Exception):
    """A part did not start; the message says which and why."""


def start_all(folder: str) -> dict[str, str]:
    """Starts every part that is wanted, waits until all are ready, returns the environment of the desktop."""
    desktop = _Desktop(Home(folder))
    desktop.start_display()
    desktop.start_sound()
    desktop.finish_display()
    desktop.start_bus()
    desktop.start_window_manager()
    desktop.start_tray()
    desktop.start_accessibility()
    desktop.start_notifications()
    desktop.start_keyring()
    desktop.start_microphone()
    desktop.wait_for_all()
    return desktop.environment


class _Desktop:
    def __init__(self, home: Home):
        self._home = home
        self.environment = home.environment
        self._without = set(os.environ.get("VELORIN_DESKTOP_WITHOUT", "").split())
        if "bus" in self._without:
            self._without |= {"accessibility", "notifications", "keyring"}
        if "sound" in self._without:
            self._without.add("microphone")
        if "wm" in self._without:
            self._without.add("tray")  # the panel waits for a window manager
        self._begin = time.monotonic()
        self._deadline = self._begin + START_SECONDS
        self._processes: dict[str, subprocess.Popen] = {}
        self._awaited: dict[str, Callable[[], bool]] = {}

    # Starting and waiting

    def _start(self, name: str, *command: str, **options) -> None:
        with open(self._log(name), "wb") as log:
            options.setdefault("stdin", subprocess.DEVNULL)
            try:
                # A session of its own: Ctrl-C in the terminal is for the command.
                self._processes[name] = subprocess.Popen(
                    command, env=self.environment, cwd=self._home.user_home, stdout=log, stderr=log,
                    start_new_session=True, **options)
            except OSError as error:
                raise NotReady(f"cannot start {command[0]}: {error.strerror}; run scripts/bootstrap") from error

    def _log(self, name: str) -> pathlib.Path:
        return self._home.logs / f"{name}.log"

    def _await(self, name: str, is_ready) -> None:
        self._awaited[name] = is_ready

    def wait_for_all(self) -> None:
        while self._awaited:
            for name, is_ready in list(self._awaited.items()):
                if is_ready():
                    del self._awaited[name]
                    self._tell_time(name)
                else:
                    self._look_after(name)
            time.sleep(_POLL_SECONDS)

    def _look_after(self, name: str) -> None:
        process = self._processes.get(name)
        if process is not None and process.poll() is not None:
            raise NotReady(f"{name} ended at its start (exit code {process.returncode})\n{self._last_words(name)}")
        if time.monotonic() > self._deadline:
            raise NotReady(f"{name} was not ready after {START_SECONDS:.0f} s\n{self._last_words(name)}")

    def _last_words(self, name: str) -> str:
        log = self._log(name)
        return log.read_text(errors="replace")[-1500:] if log.exists() else ""

    def _tell_time(self, name: str) -> None:
        if "VELORIN_DESKTOP_TIMES" in os.environ:
            print(f"desktop: {name} ready after {1000 * (time.monotonic() - self._begin):.0f} ms", file=sys.stderr)

    def _read_line(self, name: str, descriptor: int) -> str:
        """The line by which a program says that it is ready."""
        text = b""
        while not text.endswith(b"\n"):
            if select.select([descriptor], [], [], 0.1)[0]:
                text += os.read(descriptor, 200)
            if not text:
                self._look_after(name)
        self._tell_time(name)
        return text.decode().strip()

    # The display

    def start_display(self) -> None:
        screen = os.environ.get("VELORIN_DESKTOP_SCREEN", "1280x800")
        self._display_pipe, number = os.pipe()
        self._start("display", "Xvfb", "-displayfd", str(number), "-screen", "0", f"{screen}x24", "-dpi", "96",
                    "-noreset", "-nolisten", "tcp", "-auth", str(self._home.authority), pass_fds=[number])
        os.close(number)

    def finish_display(self) -> None:
        number = self._read_line("display", self._display_pipe)
        self._home.write_authority(number)
        self.environment["DISPLAY"] = ":" + number
        os.close(self._display_pipe)

    def _connect(self):
        from Xlib import display  # imported late: the X server starts meanwhile
        os.environ["XAUTHORITY"] = self.environment["XAUTHORITY"]
        self._x = display.Display(self.environment["DISPLAY"])
        self._root = self._x.screen().root

    def start_window_manager(self) -> None:
        self._connect()
        if "wm" in self._without:
            return
        self._start("wm", "openbox", "--sm-disable")
        check = self._x.intern_atom("_NET_SUPPORTING_WM_CHECK")
        self._await("wm", lambda: self._root.get_full_property(check, 0) is not None)

    def start_tray(self) -> None:
        if "tray" in self._without:
            return
        self._start("tray", "tint2")
        selection = self._x.intern_atom("_NET_SYSTEM_TRAY_S0")
        self._await("tray", lambda: self._x.get_selection_owner(selection) != 0)

    # The buses

    def start_bus(self) -> None:
        if "bus" in self._without:
            return
        ready, write = os.pipe()
        self._start("bus", "dbus-daemon", "--session", "--nofork", "--nosyslog", f"--print-address={write}",
                    f"--address={self.environment['DBUS_SESSION_BUS_ADDRESS']}", pass_fds=[write])
        os.close(write)
        self._read_line("bus", ready)
        os.close(ready)
        from gi.repository import Gio
        self._gio = Gio
        self._bus = Gio.DBusConnection.new_for_address_sync(
            self.environment["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self._bus.set_exit_on_close(False)

    def _has_owner(self, name: str) -> bool:
        from gi.repository import GLib
        answer = self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                     "NameHasOwner", GLib.Variant("(s)", (name,)), None,
                                     self._gio.DBusCallFlags.NONE, 1000, None)
        return answer[0]

    def start_accessibility(self) -> None:
        if "accessibility" in self._without:
            return
        self._start("accessibility", "/usr/libexec/at-spi-bus-launcher", "--launch-immediately")
        self._await("accessibility", lambda: self._has_owner("org.a11y.Bus"))

    def start_notifications(self) -> None:
        if "notifications" in self._without:
            return
        self._start("notifications", "dunst")
        self._await("notifications", lambda: self._has_owner("org.freedesktop.Notifications"))

    def start_keyring(self) -> None:
        if "keyring" in self._without:
            return
        # The password of the keyring is one line feed; with none the daemon hangs in a prompt.
        password, write = os.pipe()
        os.write(write, b"\n")
        os.close(write)
        self._start("keyring", "gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets",
                    stdin=password)
        os.close(password)
        self._await("keyring", lambda: self._has_owner("org.freedesktop.secrets"))

    # Sound

    def start_sound(self) -> None:
        if "sound" in self._without:
            return
        modules = [f"module-null-sink sink_name={VOICE_SINK} rate=48000 channels=1",
                   f"module-null-sink sink_name={SPEAKER_SINK} rate=48000"]
        if "microphone" not in self._without:
            # A bare monitor is no microphone.
            modules.append(f"module-remap-source source_name={MICROPHONE} master={VOICE_SINK}.monitor "
                           "source_properties=device.description=Microphone")
        # The last one: who can connect finds all the others.
        modules.append("module-native-protocol-unix")
        self._start("sound", "pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                    "--realtime=no", "--high-priority=no", "--log-target=stderr",
                    *(f"--load={module}" for module in modules))

    def start_microphone(self) -> None:
        if "sound" in self._without:
            return
        self._await("sound", self._can_connect_to_sound)
        self.wait_for_all()
        defaults = [["set-default-sink", SPEAKER_SINK]]
        if "microphone" not in self._without:
            defaults.append(["set-default-source", MICROPHONE])
        for words in defaults:
            subprocess.run(["pactl", *words], env=self.environment, check=True, timeout=START_SECONDS)
        # A reader keeps the sink at 10 ms; without it an idle source gives its first sample after two seconds.
        self._start("microphone", "parec", "--verbose", "--latency-msec=10", f"--device={VOICE_SINK}.monitor",
                    "/dev/null")
        self._await("microphone", lambda: "created" in self._log("microphone").read_text())

    def _can_connect_to_sound(self) -> bool:
        with socket.socket(socket.AF_UNIX) as attempt:
            return attempt.connect_ex(f"{self._home.runtime}/pulse/native") == 0
