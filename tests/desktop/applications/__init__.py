"""The applications of the matrix, in the order of its rows."""
from .accessible_editors import FeatherPad, GnomeTextEditor, Mousepad, QtField
from .browsers import (ChromiumEditable, ChromiumPassword, ChromiumTextArea, ElectronLike, FirefoxEditable,
                       FirefoxPassword, FirefoxTextArea)
from .telling import Emacs, SwingTextArea, TkEntry
from .terminals import GnomeTerminal, QTerminal, XTerm

ALL = [XTerm, GnomeTerminal, QTerminal, Mousepad, GnomeTextEditor, FeatherPad, QtField, TkEntry, SwingTextArea, Emacs, FirefoxTextArea, FirefoxEditable,
       FirefoxPassword, ChromiumTextArea, ChromiumEditable, ChromiumPassword, ElectronLike]

# What every machine with the tests has.
QUICK = [XTerm, Mousepad, QtField, TkEntry]
