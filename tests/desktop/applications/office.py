"""LibreOffice Writer, asked for its text over its own bridge."""
import json
import os
import subprocess

import clipboard
import waiting

from .target import TARGETS, State, Target


class Writer(Target):
    name = "LibreOffice Writer"
    package = "libreoffice-writer, libreoffice-gtk3, python3-uno"
    program = "soffice"
    start_seconds = 90.0

    def launch(self):
        self._pipe = "velorin" + self.folder.rpartition("/")[2]
        self.run_in_front("soffice", f"-env:UserInstallation=file://{self.folder}/profile", "--writer", "--norestore",
                          "--nologo", "--nofirststartwizard", f"--accept=pipe,name={self._pipe};urp;")
        self._asker = subprocess.Popen(["/usr/bin/python3", "-B", os.path.join(TARGETS, "writer_text.py"), self._pipe],
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)

    def close(self):
        self._asker.kill()
        self._asker.communicate()
        super().close()

    def enter(self):
        waiting.until("an empty document", self.start_seconds, lambda: self.state().text == "")
        self.window = self._window_in_front() or self.window
        # What is selected first in it, it offers late.
        self.user.tap("a")
        self.wait_for(State("a", 1, 1))
        self.user.chord("Control_L", "a")
        waiting.until("the selection offered", 10, lambda: clipboard.read(selection="primary") == b"a")
        self.clear()

    def state(self):
        self._asker.stdin.write("\n")
        told = json.loads(self._asker.stdout.readline())
        if not told:
            return State("(no document yet)")
        self._read_at = told["at"]
        return State(told["text"].replace("\r\n", "\n"), told["start"], told["end"])

    def read_at(self):
        return self._read_at
