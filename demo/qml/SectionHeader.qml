import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// The header of a section of tests: its name and how many tests it holds. A tap folds it or opens it.
AbstractButton {
    id: header

    property string name
    property int count: 0
    property bool folded: false

    leftPadding: Theme.margin
    rightPadding: 2 * Theme.margin

    background: Rectangle {
        color: header.down ? Theme.cardPressed : Theme.section

        Rectangle {
            width: parent.width
            height: 1
            anchors.bottom: parent.bottom
            color: Theme.line
        }
    }
    contentItem: RowLayout {
        spacing: Theme.gap

        PlainLabel {
            text: "\u203a"
            rotation: header.folded ? 0 : 90
            color: Theme.accent
            font.pixelSize: Theme.title
            horizontalAlignment: Text.AlignHCenter
            Layout.preferredWidth: 24
        }
        PlainLabel {
            objectName: "sectionName"
            text: header.name
            font.bold: true
            horizontalAlignment: Text.AlignLeft
            Layout.fillWidth: true
        }
        PlainLabel {
            objectName: "sectionCount"
            text: header.count
            color: Theme.textQuiet
            font.bold: true
        }
    }
}
