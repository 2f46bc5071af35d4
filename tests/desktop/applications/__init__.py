"""The applications of the matrix, in the order of its rows."""
from . import accessible_editors, browsers, mail, office, telling, terminals

ALL = [
    terminals.XTerm, terminals.GnomeTerminal, terminals.QTerminal,
    accessible_editors.Mousepad, accessible_editors.GnomeTextEditor, accessible_editors.FeatherPad,
    accessible_editors.QtField, telling.TkEntry, telling.SwingTextArea, telling.Emacs, office.Writer,
    browsers.FirefoxTextArea, browsers.FirefoxEditable, browsers.FirefoxPassword, browsers.FirefoxAddressBar,
    browsers.ChromiumTextArea, browsers.ChromiumEditable, browsers.ChromiumPassword, browsers.ChromiumAddressBar,
    browsers.ElectronLike, mail.Thunderbird,
]

# What every machine with the tests has.
QUICK = [terminals.XTerm, accessible_editors.Mousepad, accessible_editors.QtField, telling.TkEntry]
