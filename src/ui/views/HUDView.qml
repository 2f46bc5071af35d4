// What fills the overlay's window: one of the two looks.
import QtQuick

Item {
    id: view
    Accessible.role: Accessible.StatusBar
    Accessible.name: qsTr("Velorin dictation: %1").arg(overlay.stateLabel)
    Accessible.description: overlay.text

    OverlaySurface {
        anchors.fill: parent
        cornerRadius: overlay.look === "card" ? theme.cardRadius : theme.capsuleRadius
        look: overlay.look === "card" ? card : capsule
    }
    Component {
        id: capsule
        CapsuleOverlay {}
    }
    Component {
        id: card
        CardOverlay {}
    }
}
