// A dot in the colour of the phase; while listening a ring grows out of it and fades.
import QtQuick

Item {
    id: dot
    property color tint
    property bool active
    property real size: 6
    property real pulse: 0
    readonly property bool moves: active && overlay.isShown && theme.movesThings
    implicitWidth: size
    implicitHeight: size

    Rectangle {
        anchors.centerIn: parent
        visible: dot.moves
        width: dot.size * (1 + dot.pulse)
        height: width
        radius: width / 2
        color: "transparent"
        border.width: 1
        border.color: Qt.alpha(dot.tint, 0.5)
        opacity: 0.85 * (1 - dot.pulse)
    }
    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: dot.tint
    }
    NumberAnimation {
        target: dot
        property: "pulse"
        running: dot.moves
        loops: Animation.Infinite
        from: 0
        to: 1
        duration: theme.pulsePeriod
        easing.type: Easing.OutQuad
    }
}
