import QtQuick 2.15

/// The strip at the lower end of a page, for what can be done there. What it holds goes round it in a row.
Rectangle {
    id: bar

    default property alias content: row.data

    implicitHeight: Theme.touch + 2 * Theme.gap
    color: Theme.card

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Item {
        id: row
        anchors.fill: parent
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.margin
        anchors.topMargin: Theme.gap
        anchors.bottomMargin: Theme.gap
    }
}
