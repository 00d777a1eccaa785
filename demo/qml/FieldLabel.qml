import QtQuick 2.15

/// What something is called, and what is wrong with it beside that.
Item {
    id: line

    property alias name: nameLabel.text
    /// What is wrong; empty if nothing is.
    property alias fault: faultLabel.text

    implicitHeight: nameLabel.height

    PlainLabel {
        id: nameLabel
        width: Math.min(implicitWidth, line.width - Math.min(faultLabel.implicitWidth, line.width / 2) - Theme.gap)
        color: Theme.textQuiet
        font.pixelSize: Theme.small
    }
    PlainLabel {
        id: faultLabel
        objectName: "fault"
        anchors.left: nameLabel.right
        anchors.leftMargin: Theme.gap
        anchors.right: line.right
        anchors.baseline: nameLabel.baseline
        color: Theme.failed
        font.pixelSize: Theme.small
        font.bold: true
        horizontalAlignment: Text.AlignRight
    }
}
