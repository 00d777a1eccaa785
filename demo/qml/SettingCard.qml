import QtQuick 2.15
import QtQuick.Layouts 1.15

/// One setting: its name, a line on it, and the controls that set it.
Rectangle {
    id: card

    property alias name: nameLabel.text
    property alias description: descriptionLabel.text
    default property alias controls: controlRow.data

    implicitHeight: Math.max(texts.implicitHeight, controlRow.implicitHeight) + 2 * Theme.margin
    radius: Theme.radius
    color: Theme.card
    border.width: 1
    border.color: Theme.line
    Layout.fillWidth: true

    RowLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.margin

        ColumnLayout {
            id: texts
            spacing: 1
            Layout.fillWidth: true

            PlainLabel {
                id: nameLabel
                font.bold: true
                Layout.fillWidth: true
            }
            PlainLabel {
                id: descriptionLabel
                color: Theme.textQuiet
                font.pixelSize: Theme.small
                wrapMode: Text.Wrap
                maximumLineCount: 2
                Layout.fillWidth: true
            }
        }
        RowLayout {
            id: controlRow
            spacing: Theme.gap
            Layout.fillWidth: false
        }
    }
}
