import QtQuick 2.15
import QtQuick.Controls 2.15

/// A tab that tells how many jobs are behind it.
TabButton {
    id: tab

    property string name
    property int count: 0

    implicitHeight: Theme.touch
    text: name + " (" + count + ")"

    contentItem: PlainLabel {
        text: tab.text
        color: tab.checked ? Theme.accent : Theme.textQuiet
        font.pixelSize: Theme.large
        font.bold: tab.checked
        horizontalAlignment: Text.AlignHCenter
    }
    background: Rectangle {
        color: tab.down ? Theme.cardPressed : Theme.card

        Rectangle {
            width: parent.width
            height: 4
            anchors.bottom: parent.bottom
            color: tab.checked ? Theme.accent : Theme.line
        }
    }
}
