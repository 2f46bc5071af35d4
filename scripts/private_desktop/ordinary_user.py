"""Gives up root for good: root may read what a user may not, and browsers refuse root."""
import ctypes
import os
import pwd
import stat
import sys

USER = "nobody"
_X_SOCKETS = "/tmp/.X11-unix"

_libc = ctypes.CDLL(None, use_errno=True)
_PR_SET_KEEPCAPS = 8
_PR_CAP_AMBIENT = 47
_PR_CAP_AMBIENT_RAISE = 2
_CAP_DAC_OVERRIDE = 1
_CAP_DAC_READ_SEARCH = 2
_CAPABILITY_VERSION_3 = 0x20080522


def become() -> None:
    """Called as root, goes on as an ordinary user; else does nothing."""
    if os.geteuid() != 0:
        return
    _make_folder_of_x_sockets()
    user = pwd.getpwnam(USER)
    _call("prctl", _PR_SET_KEEPCAPS, 1, 0, 0, 0)
    os.setgroups([])
    os.setresgid(user.pw_gid, user.pw_gid, user.pw_gid)
    os.setresuid(user.pw_uid, user.pw_uid, user.pw_uid)
    checkout = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
    if all(os.access(folder, os.R_OK | os.X_OK) for folder in (checkout, os.curdir)):
        _keep_capabilities(())
    else:
        # Cloned below root's own home, for instance.
        print("desktop: the checkout is closed to ordinary users; the desktop may read every file",
              file=sys.stderr)
        _keep_capabilities((_CAP_DAC_READ_SEARCH, _CAP_DAC_OVERRIDE))


def _make_folder_of_x_sockets() -> None:
    # An X server of an ordinary user does not make it.
    if not os.path.isdir(_X_SOCKETS):
        os.mkdir(_X_SOCKETS)
        os.chmod(_X_SOCKETS, 0o777 | stat.S_ISVTX)


def _keep_capabilities(choice: tuple[int, ...]) -> None:
    """Keeps the first capability of the choice that this process may have, for its children as well."""
    header = (ctypes.c_uint32 * 2)(_CAPABILITY_VERSION_3, 0)
    data = (ctypes.c_uint32 * 6)()  # effective, permitted, inheritable; twice 32 bits of them
    _call("capget", header, data)
    kept = next((number for number in choice if data[1] & (1 << number)), None)
    mask = 0 if kept is None else 1 << kept
    for index in range(6):
        data[index] = mask if index < 3 else 0
    _call("capset", header, data)
    if kept is not None:
        _call("prctl", _PR_CAP_AMBIENT, _PR_CAP_AMBIENT_RAISE, kept, 0, 0)


def _call(name: str, *arguments) -> None:
    if getattr(_libc, name)(*arguments) != 0:
        raise OSError(ctypes.get_errno(), f"{name}: {os.strerror(ctypes.get_errno())}")
