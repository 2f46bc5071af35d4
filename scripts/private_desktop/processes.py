"""Processes that are all gone in the end: adoption of orphans, waiting, taking down."""
import ctypes
import os
import signal
import time

_libc = ctypes.CDLL(None, use_errno=True)
_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36

# How long a process has to end after SIGTERM before it is killed.
GRACE_SECONDS = 2.0
_POLL_SECONDS = 0.01


def _prctl(option: int, value: int) -> None:
    if _libc.prctl(option, value, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


def adopt_orphans() -> None:
    """From now on, processes whose parents end become children of this one, not of init."""
    _prctl(_PR_SET_CHILD_SUBREAPER, 1)


def ask_for_signal_at_parents_end(number: int) -> None:
    """The calling process, just forked, gets the signal when its parent ends. It adopts orphans too."""
    _prctl(_PR_SET_PDEATHSIG, number)
    adopt_orphans()


def exit_code(status: int) -> int:
    """The exit code that a shell would give for a status of waitpid."""
    code = os.waitstatus_to_exitcode(status)
    return code if code >= 0 else 128 - code


def wait_for(pid: int, seconds: float | None = None) -> int | None:
    """Waits for a child, collecting adopted ones that end meanwhile. None: it runs on after the time."""
    deadline = None if seconds is None else time.monotonic() + seconds
    while True:
        ended, status = os.waitpid(-1, 0 if deadline is None else os.WNOHANG)
        if ended == pid:
            return status
        if ended == 0:
            if time.monotonic() >= deadline:
                return None
            time.sleep(_POLL_SECONDS)


def _children() -> list[int]:
    found = []
    me = os.getpid()
    for name in os.listdir("/proc"):
        if not name.isdigit():
            continue
        try:
            with open(f"/proc/{name}/stat", "rb") as file:
                # The name of the program, in parentheses, may hold anything.
                parent = int(file.read().rpartition(b")")[2].split()[1])
        except OSError:
            continue
        if parent == me:
            found.append(int(name))
    return found


def end_all_children() -> None:
    """Ends all children, and theirs as they become ours, until there are none."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_IGN)
    asked = set()
    kill_from = time.monotonic() + GRACE_SECONDS
    while True:
        for pid in _children():
            if time.monotonic() >= kill_from:
                os.kill(pid, signal.SIGKILL)
            elif pid not in asked:
                asked.add(pid)
                os.kill(pid, signal.SIGTERM)
                os.kill(pid, signal.SIGCONT)  # one that is stopped would never see it
        try:
            while os.waitpid(-1, os.WNOHANG)[0] != 0:
                pass
        except ChildProcessError:
            return
        time.sleep(_POLL_SECONDS)
