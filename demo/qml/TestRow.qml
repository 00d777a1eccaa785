import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

/// One test in a list.
AbstractButton {
    id: row

    required property int index
    /// The model whose row this is.
    property PartialModel slice: null
    property bool readable: false
    property bool marked: false
    property bool running: false

    // Not a required property that the view fills: a job ends before the rows of the old model do, and the view takes
    // that for a write to its own property.
    property Test test: row.slice ? row.slice.data(row.slice.index(row.index, 0), TestList.Test) || null : null

    readonly property alias status: texts.status

    leftPadding: 2 * Theme.margin
    rightPadding: 2 * Theme.margin
    topPadding: 4
    bottomPadding: 4

    TestTexts {
        id: texts
        test: row.test
        readable: row.readable
    }

    background: Rectangle {
        color: row.down ? Theme.cardPressed : Theme.card

        Rectangle {
            objectName: "mark"
            visible: row.marked
            width: 6
            height: parent.height
            color: Theme.accent
        }
        Rectangle {
            width: parent.width
            height: 1
            anchors.bottom: parent.bottom
            color: Theme.line
        }
    }
    contentItem: RowLayout {
        spacing: 2 * Theme.gap

        ColumnLayout {
            spacing: 1
            Layout.fillWidth: true
            Layout.preferredWidth: 300

            PlainLabel {
                objectName: "name"
                text: texts.name
                font.bold: true
                horizontalAlignment: Text.AlignLeft
                Layout.fillWidth: true
            }
            PlainLabel {
                objectName: "location"
                text: texts.location
                visible: texts.hasLocation
                horizontalAlignment: Text.AlignLeft
                Layout.fillWidth: true
            }
        }
        PlainLabel {
            objectName: "requirement"
            text: texts.requirement
            color: Theme.textQuiet
            font.pixelSize: Theme.small
            Layout.preferredWidth: 100
            Layout.maximumWidth: 100
        }
        ColumnLayout {
            spacing: 3
            Layout.preferredWidth: 140
            Layout.maximumWidth: 140

            TestStatusChip {
                status: texts.status
                running: row.running
                visible: texts.statusKnown
                Layout.maximumWidth: 140
            }
            PlainLabel {
                objectName: "time"
                text: texts.error.length > 0 ? qsTr("Not started") : texts.time
                visible: text.length > 0
                color: texts.error.length > 0 ? Theme.failed : Theme.textQuiet
                font.pixelSize: Theme.small
                Layout.fillWidth: true
            }
        }
        PlainLabel {
            text: "\u203a"
            color: Theme.textQuiet
            font.pixelSize: Theme.title
        }
    }
}
