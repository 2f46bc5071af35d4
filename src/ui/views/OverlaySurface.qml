// The glass around either look, and its entrance: a spring from nothing, a little smaller and lower.
import QtQuick
import Velorin

Item {
    id: surface
    property real cornerRadius
    property Component look
    // Without a compositor the window has its shape at once, and so has what is in it.
    readonly property bool enters: overlay.isComposited && theme.movesThings
    // From 0, not shown, to 1; a spring may overshoot.
    property real shown: 0

    opacity: enters ? Math.max(0, Math.min(1, shown)) : 1
    transform: [
        Scale {
            origin.x: surface.width / 2
            origin.y: surface.height / 2
            xScale: surface.enters ? 0.985 + 0.015 * surface.shown : 1
            yScale: xScale
        },
        Translate { y: surface.enters ? 5 * (1 - surface.shown) : 0 }
    ]

    function play() {
        entrance.stop()
        shown = 0
        if (enters)
            Qt.callLater(entrance.start)
        else
            shown = 1
    }

    // How far a damped spring has come after so many milliseconds.
    function spring(milliseconds) {
        const omega = 2 * Math.PI / theme.entranceResponse
        const zeta = theme.entranceDamping
        const damped = omega * Math.sqrt(1 - zeta * zeta)
        const t = milliseconds
        return 1 - Math.exp(-zeta * omega * t)
            * (Math.cos(damped * t) + zeta * omega / damped * Math.sin(damped * t))
    }

    NumberAnimation {
        id: entrance
        target: clock
        property: "elapsed"
        from: 0
        to: 500
        duration: 500
        onFinished: surface.shown = 1
    }
    QtObject {
        id: clock
        property real elapsed: 0
        onElapsedChanged: surface.shown = surface.spring(elapsed)
    }
    Connections {
        target: overlay
        function onRestarted() { if (overlay.isShown) surface.play() }
        function onIsShownChanged() { if (overlay.isShown) surface.play(); else entrance.stop() }
    }
    Component.onCompleted: play()

    OverlayBackdrop {
        anchors.fill: parent
        cornerRadius: surface.cornerRadius
        fill: theme.overlayFill
        border: theme.overlayBorder
        edge: theme.overlayEdge
        composited: overlay.isComposited
    }
    Loader {
        anchors.fill: parent
        anchors.margins: theme.overlayPadding
        sourceComponent: surface.look
    }
}
