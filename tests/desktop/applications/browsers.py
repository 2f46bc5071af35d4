"""Browsers: the fields of a page, and the address bar."""
import os
import shutil

import clipboard
import waiting

from .page import Page
from .target import State, Target


class Browser(Target):
    """A field of a page: `kind` is that of targets/page.html."""

    kind = "textarea"
    line_feed = ""  # what becomes of one in a field of one line

    def launch(self):
        self.page = Page()
        self.run_in_front(*self.command(), self.page.address(self.kind))

    def command(self) -> list[str]:
        raise NotImplementedError

    def enter(self):
        waiting.until("a field with the focus", self.start_seconds, lambda: self.page.told.get("focused"))

    def close(self):
        super().close()
        self.page.close()

    def state(self):
        told = self.page.told
        self._read_at = self.page.told_at
        return State(told.get("text", ""), told.get("start"), told.get("end"))

    def read_at(self):
        return self._read_at


class FirefoxField(Browser):
    package = "firefox-esr"
    program = "firefox-esr"
    _PREFERENCES = {"browser.aboutwelcome.enabled": False, "browser.shell.checkDefaultBrowser": False,
                    "browser.startup.homepage_override.mstone": "ignore", "datareporting.policy.dataSubmissionEnabled": False,
                    "app.normandy.enabled": False, "browser.startup.page": 1, "browser.urlbar.suggest.searches": False,
                    "browser.sessionstore.resume_from_crash": False, "signon.rememberSignons": False,
                    "toolkit.telemetry.reportingpolicy.firstRun": False, "browser.urlbar.autoFill": False,
                    "trailhead.firstrun.didSeeAboutWelcome": True}

    def command(self):
        with open(os.path.join(self.folder, "user.js"), "w", encoding="utf-8") as file:
            for name, value in self._PREFERENCES.items():
                shown = f'"{value}"' if isinstance(value, str) else str(value).lower()
                file.write(f'user_pref("{name}", {shown});\n')
        return ["firefox-esr", "--no-remote", "--profile", self.folder]


class ChromiumField(Browser):
    package = "chromium"
    program = "chromium"
    line_feed = " "

    def executable(self) -> str:
        return "chromium"

    def command(self):
        # The sandbox needs rights that a private desktop does not have.
        return [self.executable(), "--no-sandbox", "--no-first-run", "--disable-gpu", "--password-store=basic",
                "--disable-background-networking", "--disable-component-update", "--no-default-browser-check",
                f"--user-data-dir={self.folder}/profile"]


class _TextArea:
    kind = "textarea"


class _ContentEditable:
    kind = "contenteditable"


class _Password:
    kind = "password"
    has_lines = False

    def normal(self, text):
        return text.replace("\n", self.line_feed)


class _AddressBar:
    """Read by copying: a page is not told of it."""

    kind = "none"
    has_lines = False

    def enter(self):
        super().enter()
        self.user.chord("Control_L", "l")

    def clear(self):
        self.user.chord("Control_L", "l")
        self.user.tap("Delete")

    def state(self):
        self.user.chord("Control_L", "a")
        self.user.chord("Control_L", "c")
        return State((clipboard.read() or b"").decode())

    def normal(self, text):
        return text.replace("\n", " ")


class FirefoxTextArea(_TextArea, FirefoxField):
    name = "Firefox: text area"


class FirefoxEditable(_ContentEditable, FirefoxField):
    name = "Firefox: editable page"


class FirefoxPassword(_Password, FirefoxField):
    name = "Firefox: password field"


class ChromiumTextArea(_TextArea, ChromiumField):
    name = "Chromium: text area"


class ChromiumEditable(_ContentEditable, ChromiumField):
    name = "Chromium: editable page"


class ChromiumPassword(_Password, ChromiumField):
    name = "Chromium: password field"


class ElectronLike(_TextArea, ChromiumField):
    """What makes an Electron application one are two files beside its executable."""

    name = "an application like Electron's: text area"

    def executable(self):
        folder = os.path.join(self.folder, "electron")
        shutil.copytree("/usr/lib/chromium", folder)
        for each in ("resources/app.asar", "chrome_100_percent.pak"):
            path = os.path.join(folder, each)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            if not os.path.exists(path):
                open(path, "wb").close()
        os.rename(os.path.join(folder, "chromium"), os.path.join(folder, "notes-app"))
        return os.path.join(folder, "notes-app")

    def command(self):
        return [*super().command(), "--class=NotesApp"]
