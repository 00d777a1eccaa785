import QtQuick 2.15
import QtQuick.Controls 2.15

/// One of the things that a new job can be made from.
AbstractButton {
    id: row

    property bool chosen: false

    implicitHeight: Theme.touch + Theme.gap
    leftPadding: Theme.margin
    rightPadding: Theme.margin

    contentItem: PlainLabel {
        objectName: "templateName"
        text: row.text
        font.bold: row.chosen
        color: row.chosen ? Theme.accent : Theme.text
        horizontalAlignment: Text.AlignLeft
    }
    background: Rectangle {
        color: row.down || row.visualFocus ? Theme.cardPressed : Theme.card

        Rectangle {
            visible: row.chosen
            width: 6
            height: parent.height
            color: Theme.accent
        }
        Rectangle {
            width: parent.width
            height: 1
            anchors.bottom: parent.bottom
            color: Theme.line
        }
    }
}
