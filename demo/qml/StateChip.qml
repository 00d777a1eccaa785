import QtQuick 2.15

/// The management state of a job. Nothing shows for a job that has none.
Rectangle {
    id: chip

    property alias text: label.text

    implicitWidth: label.implicitWidth + 2 * Theme.gap
    implicitHeight: label.implicitHeight + 6
    radius: height / 2
    color: Theme.chip
    visible: text.length > 0

    PlainLabel {
        id: label
        objectName: "state"
        width: chip.width - 2 * Theme.gap
        anchors.centerIn: parent
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.small
    }
}
