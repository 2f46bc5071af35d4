"""Elements of other programs, through the accessibility bus."""
import contextlib

import gi
import waiting

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402  (the version comes first)

_CALL_MILLISECONDS = 2000
FOCUSED = Atspi.StateType.FOCUSED


def switch_on():
    """Toolkits that wait to be asked tell of themselves from now on."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
                  GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", True))), None,
                  Gio.DBusCallFlags.NONE, _CALL_MILLISECONDS, None)


def _application(pid: int):
    Atspi.set_timeout(_CALL_MILLISECONDS, _CALL_MILLISECONDS)
    desktop = Atspi.get_desktop(0)
    # No main loop runs here, so nothing that is remembered is brought up to date.
    desktop.clear_cache()
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application is not None and application.get_process_id() == pid:
            application.clear_cache()
            return application
    return None


def _all_below(element):
    for index in range(element.get_child_count()):
        child = element.get_child_at_index(index)
        if child is not None:
            yield child
            yield from _all_below(child)


def find(pid: int, what: str, matches, seconds: float = 10):
    """The first element of the process for which matches(element) is true, waited for."""
    def look():
        try:
            application = _application(pid)
            return application and next((each for each in _all_below(application) if matches(each)), None)
        except GLib.Error:  # it went away while we looked
            return None

    return waiting.until(what, seconds, look)


def has_state(element, state) -> bool:
    return element.get_state_set().contains(state)


def focused_text(pid: int, seconds: float = 10):
    """The element of the process that has the focus and can be written into."""
    return find(pid, f"a text with the focus in process {pid}", seconds=seconds, matches=lambda each: (
        has_state(each, Atspi.StateType.FOCUSED) and has_state(each, Atspi.StateType.EDITABLE)))


def text_of(element) -> str:
    return Atspi.Text.get_text(element, 0, -1)


def replace_text(element, text: str):
    if not Atspi.EditableText.set_text_contents(element, text):
        raise AssertionError("the element does not let its text be replaced")


def selection_of(element) -> tuple[int, int]:
    """The ends of the first selection, in characters; both the caret where nothing is selected."""
    if Atspi.Text.get_n_selections(element) > 0:
        with contextlib.suppress(GLib.Error):  # it may have gone since
            selected = Atspi.Text.get_selection(element, 0)
            return selected.start_offset, selected.end_offset
    caret = Atspi.Text.get_caret_offset(element)
    return caret, caret


def is_editable_document(element) -> bool:
    return element.get_role() == Atspi.Role.DOCUMENT_WEB and has_state(element, Atspi.StateType.EDITABLE)


def focus(element):
    if not Atspi.Component.grab_focus(element):
        raise AssertionError("the element does not take the focus")
