"""Waiting for what must happen, with a deadline: never for a while and then hoping."""
import time

POLL_SECONDS = 0.005


class TookTooLong(AssertionError):
    """What was waited for did not happen in time."""


def until(what: str, seconds: float, look):
    """Calls look() until it gives something true, and returns that."""
    deadline = time.monotonic() + seconds
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > deadline:
            raise TookTooLong(f"after {seconds:g} s there was still not: {what}")
        time.sleep(POLL_SECONDS)
