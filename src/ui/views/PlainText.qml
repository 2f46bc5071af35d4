// A text of a window.
import QtQuick

Text {
    property real size: 13
    font.pointSize: size * 0.75
    color: theme.primary
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    renderType: Text.QtRendering
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
