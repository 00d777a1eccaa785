import QtQuick 2.15

/// The status of a test; one that has none is open. While the test runs, that stands here instead.
Rectangle {
    id: chip

    property string status
    property bool running: false

    readonly property bool known: chip.running || chip.status.length > 0
    readonly property string kind: chip.running ? "running" : chip.status.toLowerCase()

    implicitWidth: label.implicitWidth + 2 * Theme.gap
    implicitHeight: label.implicitHeight + 6
    radius: height / 2
    color: {
        switch (chip.kind) {
        case "pass": return Theme.done
        case "fail": return Theme.failed
        case "running": return Theme.accent
        default: return chip.known ? Theme.notice : "transparent"
        }
    }
    border.width: chip.known ? 0 : 1
    border.color: Theme.textQuiet

    PlainLabel {
        id: label
        objectName: "status"
        width: chip.width - 2 * Theme.gap
        anchors.centerIn: parent
        text: chip.running ? qsTr("running") : chip.known ? chip.status : qsTr("open")
        color: chip.known ? Theme.barText : Theme.textQuiet
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.small
        font.bold: chip.known
    }
}
