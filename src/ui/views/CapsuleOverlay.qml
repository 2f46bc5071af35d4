// The small look: one row.
import QtQuick
import Velorin

Item {
    TargetAppIcon {
        id: icon
        x: 15
        anchors.verticalCenter: parent.verticalCenter
        width: 18
        height: 18
        hasApp: overlay.hasApp
        icon: overlay.appIcon
        name: overlay.appName
        isError: overlay.phase === "error"
        secondary: theme.secondary
        red: theme.red
        Accessible.role: Accessible.Graphic
        Accessible.name: overlay.appName
    }
    PulseDot {
        id: dot
        anchors { left: icon.right; leftMargin: 10; verticalCenter: parent.verticalCenter }
        active: overlay.phase === "listening"
        tint: ({ listening: theme.accent, processing: theme.amber, done: theme.green,
                 error: theme.red })[overlay.phase]
    }
    LiveText {
        anchors {
            left: dot.right; leftMargin: 4
            right: elapsed.left; rightMargin: 8
            top: parent.top; bottom: parent.bottom
        }
    }
    Elapsed {
        id: elapsed
        anchors { right: meter.left; rightMargin: 10; verticalCenter: parent.verticalCenter }
    }
    WaveformView {
        id: meter
        anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
        width: 44
        height: 24
        content: overlay
        barCount: 10
        fixedBarWidth: 2.5
        spacing: 2
        minBarHeight: 5
        idle: overlay.phase !== "listening"
        tip: theme.accent
        base: theme.accentPress
        Accessible.role: Accessible.Indicator
        Accessible.name: qsTr("Microphone level")
    }
}
