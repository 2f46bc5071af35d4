"""writer_text.py PIPE: asked by a line, answers what stands in the open document of LibreOffice Writer.

A process of its own, since the bridge's library hangs when the office ends.
"""
import json
import sys
import time

import uno
from com.sun.star.connection import NoConnectException

_PAUSE_SECONDS = 0.05


def connect(pipe: str):
    context = uno.getComponentContext()
    resolver = context.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", context)
    while True:
        try:
            return resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
        except NoConnectException:  # not yet
            time.sleep(_PAUSE_SECONDS)


def told(document) -> dict:
    if document is None or not hasattr(document, "Text"):
        return {}
    at = time.monotonic()
    selection = document.CurrentController.ViewCursor
    before = document.Text.createTextCursorByRange(selection.Start)
    before.gotoStart(True)
    start = len(before.String)
    return {"text": document.Text.String, "at": at, "start": start, "end": start + len(selection.String)}


office = connect(sys.argv[1])
desktop = office.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", office)
for _ in sys.stdin:
    print(json.dumps(told(desktop.getCurrentComponent())), flush=True)
