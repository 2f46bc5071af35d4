// What the program can do and how, until the settings and the introduction have views of their own.
import QtQuick

Rectangle {
    id: view
    property bool isIntroduction: false
    signal finished()
    color: theme.window
    Component.onCompleted: status.recheck()

    Flickable {
        anchors { fill: parent; bottomMargin: bar.height }
        contentHeight: column.height + 40
        clip: true

        Column {
            id: column
            x: 24
            y: 20
            width: parent.width - 48
            spacing: 16

            Column {
                width: parent.width
                spacing: 4
                PlainText {
                    text: view.isIntroduction ? qsTr("Welcome to Velorin") : qsTr("Velorin")
                    size: 22
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                }
                PlainText {
                    width: parent.width
                    text: qsTr("Hold the shortcut, speak, let go: the words appear at the cursor.")
                    color: theme.secondary
                }
            }
            StatusCard {
                visible: status.lastError !== ""
                StatusRow {
                    title: qsTr("Last problem")
                    value: status.lastError
                    tone: theme.red
                }
            }
            StatusCard {
                StatusRow {
                    title: qsTr("Microphone")
                    value: status.microphoneGranted ? qsTr("Allowed") : qsTr("Not allowed")
                    tone: status.microphoneGranted ? theme.green : theme.red
                }
                StatusRow {
                    title: qsTr("Keys and typing")
                    value: status.accessibilityGranted ? qsTr("Allowed") : qsTr("Not allowed in this session")
                    tone: status.accessibilityGranted ? theme.green : theme.red
                }
                StatusRow {
                    title: qsTr("Tray icon")
                    value: status.hasTray ? qsTr("Shown")
                        : qsTr("This desktop shows none. Start Velorin again to open this window.")
                    tone: status.hasTray ? theme.green : theme.amber
                }
            }
            StatusCard {
                StatusRow { title: qsTr("Hold to dictate"); value: status.holdShortcut }
                StatusRow {
                    visible: status.fnKey !== ""
                    title: qsTr("The key that is Fn here")
                    value: status.fnKey
                }
                StatusRow { title: qsTr("Tap to begin and to end"); value: status.toggleShortcut }
                StatusRow { title: qsTr("Insert the last text again"); value: status.copyAgainShortcut }
            }
            StatusCard {
                Column {
                    width: parent.width
                    spacing: 8
                    PlainText { text: qsTr("Try it: click into the field, then dictate"); font.weight: Font.Medium }
                    TryField { width: parent.width; height: 84 }
                }
            }
            StatusCard {
                StatusRow {
                    title: qsTr("Start at login")
                    Switch {
                        objectName: "startAtLogin"
                        name: qsTr("Start at login")
                        isOn: status.startsAtLogin
                        onToggled: status.startsAtLogin = !status.startsAtLogin
                    }
                }
                StatusRow {
                    title: qsTr("Preferences file")
                    value: status.preferencesFile
                    PushButton {
                        text: qsTr("Show")
                        name: qsTr("Show the preferences file")
                        onClicked: status.showPreferencesFile()
                    }
                }
            }
        }
    }
    Rectangle {
        id: bar
        readonly property bool isNeeded: view.isIntroduction || !status.onboardingCompleted
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: isNeeded ? 60 : 0
        visible: isNeeded
        color: theme.sidebar
        Rectangle { width: parent.width; height: 1; color: theme.border }
        PushButton {
            anchors { right: parent.right; rightMargin: 24; verticalCenter: parent.verticalCenter }
            objectName: "done"
            text: qsTr("Done")
            isPrimary: true
            onClicked: {
                status.completeOnboarding()
                if (view.isIntroduction)
                    view.finished()
            }
        }
    }
}
