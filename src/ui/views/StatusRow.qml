// A title at the left; at the right its value, or something to use.
import QtQuick

Item {
    id: row
    property string title
    property string value
    // The colour of a dot before the value; none where it tells nothing.
    property color tone: "transparent"
    default property alias trailing: trailingRow.data
    width: parent ? parent.width : 0
    height: Math.max(titleText.height, valueText.visible ? valueText.height : 0, trailingRow.height)
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("%1: %2").arg(title).arg(value)

    PlainText {
        id: titleText
        width: parent.width * 0.4
        anchors.verticalCenter: parent.verticalCenter
        text: row.title
    }
    Rectangle {
        x: valueText.x + valueText.width - valueText.contentWidth - width - 7
        anchors.verticalCenter: parent.verticalCenter
        width: 7
        height: 7
        radius: 3.5
        visible: row.tone.a > 0
        color: row.tone
    }
    PlainText {
        id: valueText
        anchors { right: trailingRow.left; verticalCenter: parent.verticalCenter
                  rightMargin: trailingRow.width > 0 ? 10 : 0 }
        width: parent.width * 0.56 - trailingRow.width
        visible: row.value !== ""
        horizontalAlignment: Text.AlignRight
        wrapMode: Text.WrapAtWordBoundaryOrAnywhere
        text: row.value
        color: theme.secondary
    }
    Row {
        id: trailingRow
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
    }
}
