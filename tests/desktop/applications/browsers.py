"""Browsers: the fields of a page, and the address bar."""
import os
import shutil
import time

import accessible
import waiting

from .page import Page
from .target import State, Target


class Browser(Target):
    """A field of a page: `kind` is that of targets/page.html."""

    kind = "textarea"
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
    nature = "has one line: line feeds become blanks."

    def normal(self, text):
        return text.replace("\n", " ")


class _AddressBar:
    """Read through the accessibility bus: no page is told of it."""

    kind = "none"
    nature = "has one line: line feeds become blanks."

    def enter(self):
        super().enter()
        self.user.chord("Control_L", "l")
        self._element = accessible.focused_text(self.windows.pid(self.window), seconds=self.start_seconds)

    def clear(self):
        self.user.chord("Control_L", "l")
        self.user.tap("Delete")

    def state(self):
        self._read_at = time.monotonic()
        # Firefox tells one more character after each that takes two units.
        return State(accessible.text_of(self._element).replace("\ufeff", ""), *accessible.selection_of(self._element))

    def normal(self, text):
        return text.replace("\n", " ")


class FirefoxTextArea(_TextArea, FirefoxField):
    name = "Firefox: text area"


class FirefoxEditable(_ContentEditable, FirefoxField):
    name = "Firefox: editable page"


class FirefoxPassword(_Password, FirefoxField):
    name = "Firefox: password field"


class FirefoxAddressBar(_AddressBar, FirefoxField):
    name = "Firefox: address bar"
    nature = "has one line: line feeds become blanks; so do tabs in what is pasted into the empty bar."

    def expected(self, text, situation, path):
        # What becomes the whole of it is cleaned.
        content = text.content if situation.whole else text.content.replace("\t", " ")
        return situation.before + self.normal(content) + situation.after


class ChromiumTextArea(_TextArea, ChromiumField):
    name = "Chromium: text area"


class ChromiumEditable(_ContentEditable, ChromiumField):
    name = "Chromium: editable page"


class ChromiumPassword(_Password, ChromiumField):
    name = "Chromium: password field"


class ChromiumAddressBar(_AddressBar, ChromiumField):
    name = "Chromium: address bar"

    def command(self):
        # It waits to be asked for its elements in ways of its own.
        return [*super().command(), "--force-renderer-accessibility"]


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
