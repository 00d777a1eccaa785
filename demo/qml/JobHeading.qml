import QtQuick 2.15

/// The label of a work order and its number, on one line. Where room is short, the label gives way first.
Item {
    id: heading

    property alias label: labelText.text
    property alias number: numberText.text
    property int pixelSize: Theme.large

    implicitWidth: labelText.implicitWidth + Theme.gap + numberText.implicitWidth
    implicitHeight: numberText.implicitHeight

    PlainLabel {
        id: labelText
        objectName: "workOrderLabel"
        visible: text.length > 0
        width: Math.min(implicitWidth, heading.width * 0.4)
        anchors.baseline: numberText.baseline
        color: Theme.textQuiet
        font.pixelSize: heading.pixelSize - 2
    }
    PlainLabel {
        id: numberText
        objectName: "jobNumber"
        x: labelText.visible ? labelText.width + Theme.gap : 0
        width: heading.width - x
        font.pixelSize: heading.pixelSize
        font.bold: true
        horizontalAlignment: Text.AlignLeft
    }
}
