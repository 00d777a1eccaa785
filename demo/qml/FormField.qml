import QtQuick 2.15
import QtQuick.Controls 2.15

/// A line to write something in, with what it is above it, and what is wrong with it beside that.
Item {
    id: field

    property alias name: label.name
    property alias text: input.text
    /// What is wrong with the text; empty if nothing is.
    property alias fault: label.fault
    /// Shows while there is no text.
    property alias hint: hintLabel.text
    readonly property alias input: input

    /// The text was ended with the return key.
    signal accepted()

    implicitHeight: label.height + 2 + Theme.touch

    FieldLabel {
        id: label
        width: field.width
    }
    TextField {
        id: input
        objectName: "input"
        y: label.height + 2
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
