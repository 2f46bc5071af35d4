"""line.py FILE WORD: edits a line as shells do, and writes what stands in it into FILE at every change.

Pasted text is taken as it is, its line feeds too (bracketed paste); a typed tab completes, so it leaves nothing.
"""
import codecs
import json
import os
import re
import sys
import time
import tty

_PIECE = re.compile(r"\x1b\[200~(?P<pasted>.*?)\x1b\[201~|\x1b\[(?P<arrow>[A-D])|(?P<control>[\x00-\x1f\x7f])|"
                    r"(?P<text>[^\x00-\x1f\x7f]+)", re.DOTALL)


class Line:
    def __init__(self):
        self.text = ""
        self.caret = 0

    def insert(self, text: str):
        self.text = self.text[:self.caret] + text + self.text[self.caret:]
        self.caret += len(text)

    def take(self, piece: re.Match):
        if piece["pasted"] is not None:
            self.insert(piece["pasted"].replace("\r\n", "\n").replace("\r", "\n"))
        elif piece["text"] is not None:
            self.insert(piece["text"])
        elif piece["arrow"] == "D":
            self.caret = max(0, self.caret - 1)
        elif piece["arrow"] == "C":
            self.caret = min(len(self.text), self.caret + 1)
        elif piece["control"] == "\x05":
            self.caret = len(self.text)
        elif piece["control"] == "\x15":
            self.text, self.caret = self.text[self.caret:], 0
        elif piece["control"] == "\r":
            self.text, self.caret = "", 0

    def take_all(self, unread: str) -> str:
        """Takes what is whole and returns the rest."""
        at = 0
        while at < len(unread):
            piece = _PIECE.match(unread, at)
            # What begins with an escape may not have come whole; it begins a paste or an arrow.
            if piece is None or piece["control"] == "\x1b":
                break
            self.take(piece)
            at = piece.end()
        return unread[at:]


def tell(file: str, line: Line):
    with open(file + ".new", "w", encoding="utf-8") as new:
        json.dump({"text": line.text, "caret": line.caret, "at": time.monotonic()}, new)
    os.replace(file + ".new", file)


def main(file: str, word: str):
    tty.setraw(0)
    decoder = codecs.getincrementaldecoder("utf-8")("replace")
    line, unread = Line(), ""
    os.write(1, f"\x1b[?2004h\x1b[2J\x1b[H{word}".encode())
    while True:
        shown = line.text[-60:].replace("\n", "\r\n")
        os.write(1, f"\x1b[2;1H\x1b[J{shown}".encode())
        tell(file, line)
        unread = line.take_all(unread + decoder.decode(os.read(0, 65536)))


main(*sys.argv[1:])
