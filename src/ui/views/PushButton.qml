// A button, for the mouse and for the keyboard.
import QtQuick

Rectangle {
    id: button
    property string text
    property string name: text
    property bool isPrimary: false
    signal clicked()
    implicitWidth: label.implicitWidth + 28
    implicitHeight: label.implicitHeight + 12
    radius: 7
    color: isPrimary ? (area.pressed ? theme.accentPress : theme.accentFill)
                     : (area.pressed ? theme.segmentTrack : theme.cardMuted)
    border.color: activeFocus ? theme.accent : isPrimary ? "transparent" : theme.borderStrong
    border.width: activeFocus ? 2 : 1
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.focusable: true
    Accessible.onPressAction: clicked()
    Keys.onSpacePressed: clicked()
    Keys.onReturnPressed: clicked()

    PlainText {
        id: label
        anchors.centerIn: parent
        wrapMode: Text.NoWrap
        text: button.text
        color: button.isPrimary ? theme.onAccent : theme.primary
        Accessible.ignored: true
    }
    MouseArea {
        id: area
        anchors.fill: parent
        onClicked: button.clicked()
    }
}
