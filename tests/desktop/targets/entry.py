"""entry.py FILE: an entry of Tk, which writes what stands in it into FILE at every change."""
import json
import os
import sys
import time
import tkinter

root = tkinter.Tk()
root.title("Entry")
entry = tkinter.Entry(root, width=80)
entry.pack(padx=10, pady=10)
entry.focus_set()
# As every toolkit but this one has it.
entry.bind("<Control-a>", lambda _: (entry.select_range(0, "end"), "break")[1])
last = None


def look():
    global last
    selected = entry.selection_present()
    caret = entry.index("insert")
    now = (entry.get(), *((entry.index("sel.first"), entry.index("sel.last")) if selected else (caret, caret)))
    if now != last:
        last = now
        with open(sys.argv[1] + ".new", "w", encoding="utf-8") as file:
            json.dump({"text": now[0], "start": now[1], "end": now[2], "at": time.monotonic()}, file)
        os.replace(sys.argv[1] + ".new", sys.argv[1])
    root.after(1, look)


look()
root.mainloop()
