import QtQuick 2.15

/// The status of a test; one that has none is open.
Rectangle {
    id: chip

    property string status

    readonly property string kind: chip.status.toLowerCase()

    implicitWidth: label.implicitWidth + 2 * Theme.gap
    implicitHeight: label.implicitHeight + 6
    radius: height / 2
    color: chip.kind === "pass" ? Theme.done : chip.kind === "fail" ? Theme.failed
                                             : chip.kind.length > 0 ? Theme.notice : "transparent"
    border.width: chip.kind.length > 0 ? 0 : 1
    border.color: Theme.textQuiet

    PlainLabel {
        id: label
        objectName: "status"
        width: chip.width - 2 * Theme.gap
        anchors.centerIn: parent
        text: chip.status.length > 0 ? chip.status : qsTr("open")
        color: chip.status.length > 0 ? Theme.barText : Theme.textQuiet
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.small
        font.bold: chip.status.length > 0
    }
}
