// A switch, for the mouse and for the keyboard. It asks to be toggled and shows what is.
import QtQuick

Rectangle {
    id: control
    property string name
    property bool isOn
    signal toggled()
    implicitWidth: 38
    implicitHeight: 22
    radius: 11
    color: isOn ? theme.accentFill : theme.segmentTrack
    border.color: activeFocus ? theme.accent : theme.borderStrong
    border.width: activeFocus ? 2 : 1
    activeFocusOnTab: true
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.focusable: true
    Accessible.onToggleAction: toggled()
    Accessible.onPressAction: toggled()
    Keys.onSpacePressed: toggled()

    Rectangle {
        y: 3
        x: control.isOn ? control.width - width - 3 : 3
        width: 16
        height: 16
        radius: 8
        color: control.isOn ? theme.onAccent : theme.secondary
    }
    MouseArea {
        anchors.fill: parent
        onClicked: control.toggled()
    }
}
