// A small word on a rounded ground of its own colour.
import QtQuick

Rectangle {
    id: tag
    property alias text: label.text
    property color tint: theme.primary
    property real strength: 0.55
    property real ground: 0.07
    implicitWidth: label.implicitWidth + 10
    implicitHeight: label.implicitHeight + 4
    radius: 4
    color: Qt.alpha(tint, ground)

    OverlayText {
        id: label
        anchors.centerIn: parent
        size: 9
        font.weight: Font.DemiBold
        font.letterSpacing: 0.4
        color: Qt.alpha(tag.tint, tag.strength)
    }
}
