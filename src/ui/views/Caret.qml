// The caret behind the live text. It blinks by the clock, not by its own start, so all carets blink together.
import QtQuick

Rectangle {
    id: caret
    width: 2
    height: 15
    radius: 1
    color: theme.accent
    opacity: 1

    Timer {
        id: blinking
        running: caret.visible && overlay.isShown && theme.movesThings
        repeat: true
        interval: theme.caretPeriod
        onTriggered: {
            caret.opacity = overlay.isCaretLit() ? 1 : 0
            interval = overlay.caretRest()
        }
        onRunningChanged: if (!running) caret.opacity = 1
    }
}
