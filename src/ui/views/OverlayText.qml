// A line of text of the overlay. Sizes are in units of the view.
import QtQuick

Text {
    property real size: 11
    property real strength: 1
    font.pointSize: size * 0.75
    color: Qt.alpha(theme.primary, strength)
    renderType: Text.QtRendering
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
