import QtQuick 2.15
import QtQuick.Controls 2.15

/// What stands where something is being fetched.
Column {
    id: loading

    property alias text: label.text

    spacing: Theme.margin

    BusyIndicator {
        anchors.horizontalCenter: parent.horizontalCenter
        running: loading.visible
    }
    PlainLabel {
        id: label
        objectName: "loadingText"
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.textQuiet
        font.pixelSize: Theme.large
    }
}
