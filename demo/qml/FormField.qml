import QtQuick 2.15
import QtQuick.Controls 2.15

/// A line to write something in, with what it is above it, and what is wrong with it beside that.
Item {
    id: field

    property alias name: nameLabel.text
    property alias text: input.text
    /// What is wrong with the text; empty if nothing is.
    property alias fault: faultLabel.text
    /// Shows while there is no text.
    property alias hint: hintLabel.text
    readonly property alias input: input

    /// The text was ended with the return key.
    signal accepted()

    implicitHeight: nameLabel.height + 2 + Theme.touch

    PlainLabel {
        id: nameLabel
        width: Math.min(implicitWidth, field.width - Math.min(faultLabel.implicitWidth, field.width / 2) - Theme.gap)
        color: Theme.textQuiet
        font.pixelSize: Theme.small
    }
    PlainLabel {
        id: faultLabel
        objectName: "fault"
        anchors.left: nameLabel.right
        anchors.leftMargin: Theme.gap
        anchors.right: field.right
        anchors.baseline: nameLabel.baseline
        color: Theme.failed
        font.pixelSize: Theme.small
        font.bold: true
        horizontalAlignment: Text.AlignRight
    }
    TextField {
        id: input
        objectName: "input"
        y: nameLabel.height + 2
        width: field.width
        height: Theme.touch
        font.pixelSize: Theme.medium
        selectByMouse: true
        inputMethodHints: Qt.ImhNoPredictiveText
        onAccepted: field.accepted()

        PlainLabel {
            id: hintLabel
            anchors.fill: parent
            anchors.leftMargin: input.leftPadding
            visible: input.text.length === 0 && input.preeditText.length === 0
            color: Theme.textQuiet
        }
    }
}
