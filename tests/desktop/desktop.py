"""Everything that a test in the private desktop needs, in one name each.

    from desktop import Mousepad, Program, User, Windows, speak

Run by scripts/desktop; VELORIN_DESKTOP_TOOLS names the folder of the built tools.
"""
import clipboard
import waiting
from accessible import switch_on as switch_accessibility_on
from editor import Mousepad
from program import Program
from sentences import all_sentences
from tray import EmbeddedTray, StatusNotifierHost
from user import Microphone, Speech, User, speak
from windows import Windows

__all__ = ["EmbeddedTray", "Microphone", "Mousepad", "Program", "Speech", "StatusNotifierHost", "User", "Windows",
           "all_sentences", "clipboard", "speak", "switch_accessibility_on", "waiting"]
