"""Clipboard managers: which of them keep a dictated text in their history."""
import contextlib
import os
import shutil
import subprocess
import time
from typing import NamedTuple

import clipboard
import waiting
from applications.accessible_editors import QtField
from applications.target import Target
from delivery import Delivery
from user import User
from windows import Windows


class Manager(NamedTuple):
    name: str
    command: list[str]
    end: list[str] | None = None  # how it is asked to write its history; None: by a signal
    tell: list[str] | None = None  # how it is asked what it holds, if it writes nothing while it runs


MANAGERS = [
    Manager("CopyQ", ["copyq"], ["copyq", "exit"]),
    Manager("Xfce Clipman", ["xfce4-clipman"]),
    Manager("Klipper", ["klipper"], tell=["dbus-send", "--session", "--print-reply", "--dest=org.kde.klipper", "/klipper",
                                          "org.kde.klipper.klipper.getClipboardHistoryMenu"]),
    Manager("Parcellite", ["parcellite", "-n"]),
    Manager("Diodon", ["diodon"]),
    Manager("GPaste", ["/usr/libexec/gpaste/gpaste-daemon"]),
]
_OWN = "copied by the user herself beside "
_DICTATED = "dictated, and nobody should keep it, beside "


def _is_kept(text: str) -> bool:
    """Whether any file of the home holds it, in one of the ways in which histories are written."""
    wanted = [text.encode(), text.encode("utf-16-le"), text.encode("utf-16-be")]
    for folder, _, files in os.walk(os.environ["HOME"]):
        for name in files:
            path = os.path.join(folder, name)
            if not os.path.isfile(path):  # to open a pipe would wait for somebody who writes to it
                continue
            try:
                with open(path, "rb") as file:
                    content = file.read()
            except OSError:
                continue
            if any(each in content for each in wanted):
                return True
    return False


@contextlib.contextmanager
def _running(command: list[str]):
    """Says nothing to us: what it starts itself may outlive it and would hold a pipe open."""
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait(5)


def check(manager: Manager, target: Target, delivery: Delivery) -> str:
    """What it keeps, in a few words."""
    if shutil.which(manager.command[0]) is None:
        return "not checked"
    own, dictated = _OWN + manager.name, _DICTATED + manager.name
    told = b""
    with _running(manager.command) as running:
        # It has taken its place when it looks at what is copied; what it does not keep of the user tells nothing.
        time.sleep(3)
        clipboard.write(own.encode())
        time.sleep(2)
        target.clear()
        delivery.direct(False)  # by the clipboard, whatever else the field takes
        delivery.aim()
        delivery.insert(dictated + "\n")
        waiting.until("the text", 5, lambda: dictated in target.state().text)
        time.sleep(2)
        if manager.tell is not None:
            told = subprocess.run(manager.tell, timeout=10, capture_output=True).stdout
        if manager.end is not None:
            subprocess.run(manager.end, timeout=10, capture_output=True)
            running.wait(10)
    if not (own.encode() in told or _is_kept(own)):
        return "not told: not even what the user copied is in its history"
    return "**keeps the dictated text**" if dictated.encode() in told or _is_kept(dictated) else "does not keep it"


def section(windows: Windows, user: User, words: list[str]) -> str:
    """For the page; the managers whose names hold one of the words, if there are any."""
    chosen = [each for each in MANAGERS if not words or any(word.lower() in each.name.lower() for word in words)]
    if not chosen:
        return ""
    rows = []
    target = QtField(windows, user)
    try:
        target.start()
        with Delivery() as delivery:
            for manager in chosen:
                try:
                    found = check(manager, target, delivery)
                except (AssertionError, subprocess.SubprocessError) as error:
                    found = f"not told: {error}"
                rows.append(f"| {manager.name} | {found} |\n")
                print(rows[-1], end="", flush=True)
    finally:
        target.close()
    return ("\n## Clipboard managers\n\nWhether they keep a dictated text that passes through the clipboard, marked for "
            "them not to.\n\n| Manager | |\n|---|---|\n" + "".join(rows))
