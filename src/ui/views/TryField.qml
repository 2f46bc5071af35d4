// A field of several lines to write and dictate into.
import QtQuick

Rectangle {
    radius: 7
    color: theme.field
    border.color: edit.activeFocus ? theme.accent : theme.borderStrong
    border.width: edit.activeFocus ? 2 : 1

    Flickable {
        id: flickable
        anchors { fill: parent; margins: 8 }
        contentHeight: edit.height
        clip: true

        TextEdit {
            id: edit
            width: flickable.width
            height: Math.max(flickable.height, contentHeight)
            font.pointSize: 13 * 0.75
            color: theme.primary
            selectionColor: theme.accentFill
            selectedTextColor: theme.onAccent
            wrapMode: TextEdit.Wrap
            textFormat: TextEdit.PlainText
            renderType: TextEdit.QtRendering
            selectByMouse: true
            activeFocusOnTab: true
            Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus()
            Accessible.role: Accessible.EditableText
            Accessible.name: qsTr("Field to try a dictation in")
            Accessible.multiLine: true
            // The end of what was dictated stays in view.
            onCursorRectangleChanged: {
                const rect = cursorRectangle
                if (rect.y < flickable.contentY)
                    flickable.contentY = rect.y
                else if (rect.y + rect.height > flickable.contentY + flickable.height)
                    flickable.contentY = rect.y + rect.height - flickable.height
            }
        }
    }
}
