"""One private desktop, from its first process to its last.

Two processes watch over it. The inner one starts the parts and the command, and takes everything
down when the command has ended. The outer one only waits: should the inner one be killed, all that
it started falls to the outer one, which takes it down then; should the outer one be killed, the
kernel tells the inner one. Both adopt what their descendants leave behind, so a program that goes
to the background does not get away.
"""
import os
import signal
import subprocess
import sys
import traceback

from . import home, ordinary_user, parts, processes

# How long the command has to end by itself once it was asked to.
FAREWELL_SECONDS = 5.0


def run(command: list[str]) -> int:
    """Runs the command in a desktop of its own and returns its exit code (128 + signal if killed)."""
    ordinary_user.become()
    folder = home.make_folder()
    processes.adopt_orphans()
    inner = os.fork()
    if inner == 0:
        code = 1
        try:
            processes.ask_for_signal_at_parents_end(signal.SIGTERM)
            code = _run_inside(folder, command)
        except parts.NotReady as error:
            print(f"desktop: {error}", file=sys.stderr)
        except Exception:
            traceback.print_exc()
        finally:
            processes.end_all_children()
            home.remove(folder)
            sys.stdout.flush()
            sys.stderr.flush()
            os._exit(code)
    return _wait_outside(folder, inner)


def _wait_outside(folder: str, inner: int) -> int:
    def pass_on(number, _frame):
        os.kill(inner, number)

    # The terminal tells the inner process of Ctrl-C by itself.
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    signal.signal(signal.SIGTERM, pass_on)
    signal.signal(signal.SIGHUP, pass_on)
    code = processes.exit_code(processes.wait_for(inner))
    processes.end_all_children()
    home.remove(folder)
    return code


class _Stop(Exception):
    """Somebody wants the desktop to end."""


def _stop(number, _frame):
    raise _Stop(number)


def _run_inside(folder: str, command: list[str]) -> int:
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, _stop)
    try:
        environment = parts.start_all(folder)
        try:
            process = subprocess.Popen(command, env=environment)
        except OSError as error:
            print(f"desktop: cannot start {command[0]}: {error.strerror}", file=sys.stderr)
            return 127
        return _wait_for_command(process)
    except _Stop as stop:
        return 128 + stop.args[0]


def _wait_for_command(process: subprocess.Popen) -> int:
    try:
        return processes.exit_code(processes.wait_for(process.pid))
    except _Stop as stop:
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, signal.SIG_IGN)
        process.send_signal(stop.args[0])
        status = processes.wait_for(process.pid, FAREWELL_SECONDS)
        return 128 + stop.args[0] if status is None else processes.exit_code(status)
