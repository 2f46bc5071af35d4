"""run_endurance.py COUNT: so many insertions in a row, 0 to 1 s apart, into applications taken in turn.

Ends with 1 unless every text is exact, the clipboard is as before, and neither the program's memory nor what it
holds in the X server has grown. Counted is what the program's own connections hold, kind by kind: other programs
open and close windows as they like.
"""
import random
import sys
import time
from collections import Counter

import accessible
import clipboard
import waiting
from applications import QUICK
from applications.target import Target
from delivery import Delivery
from user import User
from windows import Windows

_COPIED = b"what the user copied before all of it"
_WARM_UP = 40
_GROWTH_KILOBYTES = 512
_REST_SECONDS = 5  # in which everything borrowed goes back


def memory(pid: int) -> int:
    with open(f"/proc/{pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))


def resources(windows: Windows, pid: int) -> Counter:
    """What the process holds in the X server: how many windows, pixmaps and so on."""
    display = windows.display
    held = Counter()
    for client in display.res_query_clients().clients:
        # Which processes are behind a connection: the second kind of id.
        found = display.res_query_client_ids([{"client": client.resource_base, "mask": 2}]).ids
        if any(pid in each.value for each in found):
            for kind in display.res_query_client_resources(client.resource_base).types:
                held[display.get_atom_name(kind.resource_type)] += kind.count
    return held


def rested(windows: Windows, pid: int, before: Counter) -> Counter:
    """What it holds when it holds no more than before, or when it has had the time to let go."""
    end = time.monotonic() + _REST_SECONDS
    while (held := resources(windows, pid)) - before and time.monotonic() < end:
        time.sleep(0.1)
    return held


def bring_to_front(windows: Windows, target: Target):
    windows.bring_to_front(target.window)
    waiting.until(f"{target.name} in front", 20, lambda: windows.is_active(target.window))


def insert(target: Target, delivery: Delivery, number: int) -> str:
    """What is wrong; empty if nothing is."""
    target.clear()
    target.wait_for(target.state()._replace(text="", start=0, end=0))
    text = f"Insertion number {number}: „Grüße“."
    delivery.aim()
    reply = delivery.insert(text)
    try:
        waiting.until("the text", 6, lambda: target.state().text == text)
    except waiting.TookTooLong:
        return f"{number} {target.name} {reply.path!r}: {target.state().text!r}, told {reply.told!r}"
    return ""


def main(count: int) -> int:
    windows, user = Windows(), User()
    accessible.switch_on()
    chance = random.Random(1)
    wrong = []
    with Delivery() as delivery:
        targets = [row(windows, user) for row in QUICK]
        for target in targets:
            target.start()
        clipboard.write(_COPIED)
        for number in range(count):
            target = targets[number % len(targets)]
            bring_to_front(windows, target)
            if fault := insert(target, delivery, number):
                wrong.append(fault)
                print(fault, flush=True)
            if number % 100 == 99:
                print(f"{number + 1 - len(wrong)} of {number + 1} exact, memory {memory(delivery.pid)} kB", flush=True)
            if number == _WARM_UP:
                before = memory(delivery.pid), resources(windows, delivery.pid)
            time.sleep(chance.random() if number % 2 else 0)  # people pause as they like
        waiting.until("the clipboard as before", 10, lambda: clipboard.read() == _COPIED)
        after = memory(delivery.pid), rested(windows, delivery.pid, before[1])
        for target in targets:
            target.close()
    print(f"{count - len(wrong)} of {count} exact; memory {before[0]} kB, then {after[0]} kB; "
          f"in the server {sum(before[1].values())}, then {sum(after[1].values())}; more of {dict(after[1] - before[1])}",
          flush=True)
    return 1 if wrong or after[0] - before[0] > _GROWTH_KILOBYTES or after[1] - before[1] else 0


sys.exit(main(int(sys.argv[1])))
