"""Thunderbird's composer, in plain text, with an account that leads nowhere."""
import os
import time

import accessible
import waiting

from .target import State, Target

_PREFERENCES = """
user_pref("mail.accountmanager.accounts", "account1,account2");
user_pref("mail.accountmanager.defaultaccount", "account2");
user_pref("mail.accountmanager.localfoldersserver", "server1");
user_pref("mail.account.account1.server", "server1");
user_pref("mail.account.account2.identities", "id1");
user_pref("mail.account.account2.server", "server2");
user_pref("mail.server.server2.type", "pop3");
user_pref("mail.server.server2.hostname", "localhost");
user_pref("mail.server.server2.userName", "somebody");
user_pref("mail.server.server2.name", "Somebody");
user_pref("mail.server.server2.login_at_startup", false);
user_pref("mail.server.server2.check_new_mail", false);
user_pref("mail.identity.id1.fullName", "Somebody");
user_pref("mail.identity.id1.useremail", "somebody@example.org");
user_pref("mail.identity.id1.valid", true);
user_pref("mail.identity.id1.compose_html", false);
user_pref("mail.identity.id1.smtpServer", "smtp1");
user_pref("mail.server.server1.type", "none");
user_pref("mail.server.server1.hostname", "Local Folders");
user_pref("mail.server.server1.name", "Local Folders");
user_pref("mail.server.server1.userName", "nobody");
user_pref("mail.smtpservers", "smtp1");
user_pref("mail.smtpserver.smtp1.hostname", "localhost");
user_pref("mail.spellcheck.inline", false);
user_pref("mail.shell.checkDefaultClient", false);
user_pref("mail.provider.enabled", false);
user_pref("mailnews.start_page.enabled", false);
user_pref("mailnews.start_page_override.mstone", "ignore");
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("app.donation.eoy.version.viewed", 999);
user_pref("mail.compose.autosave", false);
"""


class Thunderbird(Target):
    name = "Thunderbird: composer"
    package = "thunderbird"
    program = "thunderbird"
    start_seconds = 90.0

    def launch(self):
        with open(os.path.join(self.folder, "user.js"), "w", encoding="utf-8") as file:
            file.write(_PREFERENCES)
        self.run_in_front("thunderbird", "--no-remote", "--profile", self.folder)

    def enter(self):
        pid = self.windows.pid(self.window)
        accessible.find(pid, "the main window", lambda each: each.get_name() == "Search", self.start_seconds)
        main = self.window
        self.user.chord("Control_L", "n")
        self.window = waiting.until("the composer", self.start_seconds, lambda: self._new_window(main))
        self._element = accessible.find(pid, "the body", accessible.is_editable_document, self.start_seconds)
        accessible.focus(self._element)
        accessible.find(pid, "the body with the focus", lambda each: accessible.is_editable_document(each)
                        and accessible.has_state(each, accessible.FOCUSED))

    def state(self):
        self._read_at = time.monotonic()
        # The last line feed is the editor's own.
        text = accessible.text_of(self._element).replace("\ufeff", "")
        return State(text.removesuffix("\n"))

    def read_at(self):
        return self._read_at
