// A rounded ground for rows that belong together.
import QtQuick

Rectangle {
    id: card
    default property alias rows: column.data
    width: parent ? parent.width : 0
    height: column.height + 24
    radius: 10
    color: theme.card
    border.color: theme.border

    Column {
        id: column
        x: 14
        y: 12
        width: parent.width - 28
        spacing: 10
    }
}
