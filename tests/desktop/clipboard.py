"""The clipboard, as another program sees it."""
import random
import struct
import subprocess
import zlib

import waiting
from Xlib import X
from Xlib.display import Display

_SECONDS = 5


def write(data: bytes, target: str = "UTF8_STRING", selection: str = "clipboard"):
    """Offers the bytes; a process of its own holds them until somebody else takes the clipboard."""
    display = Display()
    name = display.intern_atom(selection.upper())

    def owner() -> int:
        window = display.get_selection_owner(name)
        return window.id if window else X.NONE

    before = owner()
    subprocess.run(["xclip", "-in", "-selection", selection, "-target", target], input=data, check=True,
                   timeout=_SECONDS, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    # The process that holds them is a child of the one that was waited for, and takes the clipboard on its own time.
    waiting.until(f"somebody to take the {selection}", _SECONDS, lambda: owner() not in (before, X.NONE))
    display.close()


def read(target: str = "UTF8_STRING", selection: str = "clipboard") -> bytes | None:
    """What is offered in this form; None if nothing is."""
    done = subprocess.run(["xclip", "-out", "-selection", selection, "-target", target], capture_output=True,
                          timeout=_SECONDS)
    return done.stdout if done.returncode == 0 else None


def targets(selection: str = "clipboard") -> list[str]:
    return (read("TARGETS", selection) or b"").decode().split()


def png(width: int, height: int) -> bytes:
    """A picture of noise, which does not become small: 3 bytes a pixel and a little more."""
    chance = random.Random(1)
    rows = b"".join(b"\0" + chance.randbytes(width * 3) for _ in range(height))

    def chunk(name: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows, 1)) + chunk(b"IEND", b""))
