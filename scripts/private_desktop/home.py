"""The folders of a private desktop, the files in them, and the environment that points at them."""
import fcntl
import glob
import os
import pathlib
import pwd
import secrets
import shutil
import socket
import struct
import tempfile

_PASSED_ON = ("PATH", "TERM")
_PASSED_ON_PREFIXES = ("VELORIN_", "CTEST_", "GTEST_", "ASAN_", "LSAN_", "TSAN_", "UBSAN_")

# Windows look the same on every machine: one family, grey antialiasing, slight hinting.
_FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts/truetype/dejavu</dir>
  <dir>/usr/share/fonts-droid-fallback/truetype</dir>
  <dir>/usr/share/fonts/truetype/noto</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <match target="pattern">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="hinting" mode="assign"><bool>true</bool></edit>
    <edit name="autohint" mode="assign"><bool>false</bool></edit>
    <edit name="hintstyle" mode="assign"><const>hintslight</const></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
    <edit name="lcdfilter" mode="assign"><const>lcdnone</const></edit>
    <edit name="dpi" mode="assign"><double>96</double></edit>
  </match>
  <alias><family>sans-serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
  <alias><family>monospace</family><prefer><family>DejaVu Sans Mono</family></prefer></alias>
  <match target="pattern"><edit name="family" mode="append_last"><string>DejaVu Sans</string></edit></match>
</fontconfig>
"""

_GTK = """[Settings]
gtk-theme-name=Adwaita
gtk-icon-theme-name=Adwaita
gtk-font-name=DejaVu Sans 10
gtk-enable-animations=0
gtk-cursor-blink=0
"""

_PULSE_CLIENT = "autospawn = no\nauto-connect-display = no\n"

_TINT2 = """panel_items = TSC
panel_size = 100% 30
panel_position = bottom center horizontal
panel_monitor = all
font_shadow = 0
taskbar_mode = single_desktop
task_icon = 1
task_text = 1
task_font = DejaVu Sans 9
time1_font = DejaVu Sans 9
systray_padding = 4 2 4
systray_icon_size = 22
systray_monitor = 1
systray_name_filter =
time1_format = %H:%M
"""

_DUNST = """[global]
    font = DejaVu Sans 10
    origin = top-right
    offset = 10x10
    frame_width = 1
"""


_PREFIX = "/tmp/velorin-"
_LOCK = "lock"


def make_folder() -> str:
    """A short path: that of a socket ends at 107 bytes. It is ours as long as this process or a fork of it lives."""
    _remove_abandoned_folders()
    folder = tempfile.mkdtemp(prefix=os.path.basename(_PREFIX), dir="/tmp")
    _lock(folder, os.O_CREAT)
    return folder


def _lock(folder: str, flags: int) -> int | None:
    """Takes the lock of a folder, which goes with the last process that holds it; None: another one has it."""
    lock = os.open(f"{folder}/{_LOCK}", os.O_RDWR | os.O_NOFOLLOW | flags, 0o600)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        return lock
    except BlockingIOError:
        os.close(lock)
        return None


def _remove_abandoned_folders() -> None:
    """What a desktop has left whose watchers were killed both at once, as a test runner does after its time-out."""
    for folder in glob.glob(_PREFIX + "*"):
        try:
            lock = _lock(folder, 0)
        except OSError:  # not a folder of ours
            continue
        if lock is not None:
            remove(folder)
            os.close(lock)


def remove(folder: str) -> None:
    """Also what a test has closed to itself."""
    for path, folders, _files in os.walk(folder):
        for each in folders:
            if not os.path.islink(f"{path}/{each}"):
                os.chmod(f"{path}/{each}", 0o700)  # before the walk goes into it
    shutil.rmtree(folder, ignore_errors=True)


class Home:
    """home/, run/ (sockets), tmp/ and log/ below one folder, and the environment of the desktop."""

    def __init__(self, folder: str):
        self.folder = pathlib.Path(folder)
        self.user_home = self.folder / "home"
        self.runtime = self.folder / "run"
        self.logs = self.folder / "log"
        self.authority = self.runtime / "Xauthority"
        for each in (self.user_home, self.runtime, self.logs, self.folder / "tmp"):
            each.mkdir(mode=0o700)
        self.environment = self._make_environment()
        self._write_files()

    def config(self, name: str) -> pathlib.Path:
        return self.user_home / ".config" / name

    def _make_environment(self) -> dict[str, str]:
        kept = {key: value for key, value in os.environ.items()
                if key in _PASSED_ON or key.startswith(_PASSED_ON_PREFIXES)}
        # Folders of root's that are closed to us would turn "not found" into "permission denied".
        kept["PATH"] = ":".join(each for each in kept.get("PATH", os.defpath).split(":") if os.access(each, os.X_OK))
        user = pwd.getpwuid(os.getuid()).pw_name
        home = self.user_home
        return kept | {
            "HOME": str(home), "USER": user, "LOGNAME": user, "SHELL": "/bin/sh",
            "LANG": "C.UTF-8", "TMPDIR": str(self.folder / "tmp"),
            "XDG_CACHE_HOME": str(home / ".cache"),
            "XDG_CONFIG_DIRS": "/etc/xdg",
            "XDG_CONFIG_HOME": str(home / ".config"),
            "XDG_CURRENT_DESKTOP": "openbox",
            "XDG_DATA_DIRS": "/usr/local/share:/usr/share",
            "XDG_DATA_HOME": str(home / ".local/share"),
            "XDG_RUNTIME_DIR": str(self.runtime),
            "XDG_SESSION_TYPE": "x11",
            "XDG_STATE_HOME": str(home / ".local/state"),
            "XAUTHORITY": str(self.authority),
            # A part that is left out must not be found elsewhere: the addresses are always given.
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.runtime}/bus",
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.runtime}/system-bus",
            "PULSE_SERVER": f"unix:{self.runtime}/pulse/native",
            "PULSE_RUNTIME_PATH": f"{self.runtime}/pulse",
            "PULSE_COOKIE": f"{self.runtime}/pulse-cookie",
            "FONTCONFIG_FILE": str(self.config("fonts.conf")),
            # Settings and files of GTK programs without the daemons that usually hold them.
            "GSETTINGS_BACKEND": "memory", "GIO_USE_VFS": "local",
        }

    def _write_files(self) -> None:
        for name in (".cache", ".config", ".local/share", ".local/state"):
            (self.user_home / name).mkdir(parents=True, mode=0o700)
        for name, text in (("fonts.conf", _FONTS), ("gtk-3.0/settings.ini", _GTK),
                           ("pulse/client.conf", _PULSE_CLIENT), ("tint2/tint2rc", _TINT2),
                           ("dunst/dunstrc", _DUNST)):
            path = self.config(name)
            path.parent.mkdir(exist_ok=True)
            path.write_text(text)
        self._cookie = secrets.token_bytes(16)
        self.write_authority("")

    def write_authority(self, display_number: str) -> None:
        """Lets programs into the X server: at first whatever number it chooses, then by that number."""
        family_local, family_wild = 256, 0xFFFF
        host = socket.gethostname().encode()
        # Some libraries look for the exact display only.
        self.authority.write_bytes(self._authority_entry(family_local, host, display_number.encode())
                                   + self._authority_entry(family_wild, b"", b""))

    def _authority_entry(self, family: int, address: bytes, number: bytes) -> bytes:
        fields = (address, number, b"MIT-MAGIC-COOKIE-1", self._cookie)
        return struct.pack(">H", family) + b"".join(struct.pack(">H", len(each)) + each for each in fields)
