// How long the recording has lasted.
import QtQuick

OverlayText {
    size: 11
    strength: 0.6
    text: overlay.elapsed
    // Digits of one width, so that nothing moves when they change.
    horizontalAlignment: Text.AlignRight
    width: Math.max(implicitWidth, widest.advanceWidth)
    Accessible.name: qsTr("Elapsed time %1").arg(text)

    TextMetrics {
        id: widest
        font.pointSize: 11 * 0.75
        text: overlay.elapsed.replace(/[0-9]/g, "0")
    }
    Timer {
        interval: theme.elapsedPeriod
        repeat: true
        running: overlay.isShown
        onTriggered: overlay.refreshElapsed()
    }
}
