// What was understood so far with the caret behind it, or the placeholder.
import QtQuick
import Velorin

Item {
    id: line
    property real size: 14.5
    property real strength: 0.94
    property bool fades: true
    baselineOffset: text.textBaseline

    Accessible.role: Accessible.StaticText
    Accessible.name: overlay.text

    LiveTextView {
        id: text
        anchors.fill: parent
        text: overlay.text
        pixelSize: line.size
        fades: line.fades
        color: Qt.alpha(theme.primary, overlay.isLive ? line.strength : 0.55)
    }
    Caret {
        x: text.caretX
        y: (line.height - height) / 2
        visible: overlay.phase === "listening"
    }
}
