// The large look: who receives the text and how it goes, above the level and the text.
import QtQuick
import Velorin

Item {
    id: card
    readonly property color phaseColor: ({ listening: theme.accent, processing: theme.amber,
                                           done: theme.green, error: theme.red })[overlay.phase]
    Item {
        id: header
        anchors { left: parent.left; right: parent.right; top: parent.top
                  leftMargin: 14; rightMargin: 14; topMargin: 12 }
        height: 18

        TargetAppIcon {
            id: icon
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
        OverlayText {
            id: name
            anchors { left: icon.right; leftMargin: 7; verticalCenter: parent.verticalCenter }
            width: Math.min(implicitWidth, state.x - x - tags.width - 24)
            elide: Text.ElideRight
            size: 11.5
            font.weight: Font.Medium
            strength: 0.75
            text: overlay.appName
        }
        Row {
            id: tags
            anchors { left: name.right; leftMargin: 7; verticalCenter: parent.verticalCenter }
            spacing: 5
            OverlayTag { text: overlay.profileTitle }
            OverlayTag {
                visible: overlay.sessionTag !== ""
                text: overlay.sessionTag
                tint: theme.accent
                strength: 0.9
                ground: 0.12
            }
        }
        Row {
            id: state
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            spacing: 7
            PulseDot {
                anchors.verticalCenter: parent.verticalCenter
                active: overlay.phase === "listening"
                tint: card.phaseColor
            }
            OverlayText {
                anchors.verticalCenter: parent.verticalCenter
                size: 11
                strength: 0.75
                text: overlay.stateLabel
            }
        }
    }
    WaveformView {
        id: meter
        anchors { left: header.left; right: header.right; top: header.bottom; topMargin: 6 }
        height: 24
        content: overlay
        barCount: 30
        fixedBarWidth: 3
        spacing: 2.5
        minBarHeight: 4
        fade: 0.09
        idle: overlay.phase !== "listening"
        tip: theme.accent
        base: theme.accentPress
        Accessible.role: Accessible.Indicator
        Accessible.name: qsTr("Microphone level")
    }
    LiveText {
        id: line
        anchors { left: header.left; right: elapsed.left; rightMargin: 8
                  top: meter.bottom; bottom: parent.bottom; topMargin: 6; bottomMargin: 10 }
        size: 14
        strength: 0.95
        fades: false
    }
    Elapsed {
        id: elapsed
        anchors { right: header.right; baseline: line.baseline }
    }
}
