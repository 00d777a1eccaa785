import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// One job in a list.
AbstractButton {
    id: row

    required property int index
    required property string jobID
    /// When the job was last modified, as the service's own text.
    required property string jobSort

    /// The job, or null.
    property Job job: null
    property bool selected: false

    implicitHeight: 84
    leftPadding: 2 * Theme.margin
    rightPadding: 2 * Theme.margin
    topPadding: Theme.gap / 2
    bottomPadding: Theme.gap / 2

    JobTexts {
        id: texts
        job: row.job
    }

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: Theme.margin / 2
            anchors.rightMargin: Theme.margin / 2
            anchors.topMargin: 3
            anchors.bottomMargin: 3
            radius: Theme.radius
            color: row.down ? Theme.cardPressed : Theme.card
            border.width: row.selected ? 2 : 1
            border.color: row.selected ? Theme.accent : Theme.line

            Rectangle {
                objectName: "selectionMark"
                visible: row.selected
                width: 6
                height: parent.height
                radius: 3
                color: Theme.accent
            }
        }
    }
    contentItem: RowLayout {
        spacing: 2 * Theme.gap

        ColumnLayout {
            spacing: 1
            Layout.fillWidth: true
            Layout.preferredWidth: 300

            JobHeading {
                label: texts.label
                number: texts.number
                Layout.fillWidth: true
            }
            PlainLabel {
                objectName: "customer"
                text: texts.customer
                visible: text.length > 0
                horizontalAlignment: Text.AlignLeft
                Layout.fillWidth: true
            }
            PlainLabel {
                objectName: "type"
                text: texts.type
                visible: text.length > 0
                color: Theme.textQuiet
                font.pixelSize: Theme.small
                horizontalAlignment: Text.AlignLeft
                Layout.fillWidth: true
            }
        }
        ColumnLayout {
            spacing: 5
            Layout.preferredWidth: 168
            Layout.maximumWidth: 168

            PlainLabel {
                objectName: "progress"
                text: texts.progress
                font.pixelSize: Theme.small
                Layout.fillWidth: true
            }
            RequiredTestsBar {
                required: texts.required
                completed: texts.completed
                Layout.fillWidth: true
            }
            PlainLabel {
                objectName: "modified"
                text: JobTable.timeText(row.jobSort)
                color: Theme.textQuiet
                font.pixelSize: Theme.small
                Layout.fillWidth: true
            }
        }
        ColumnLayout {
            spacing: 6
            Layout.preferredWidth: 150
            Layout.maximumWidth: 150

            StateChip {
                text: texts.state
                Layout.maximumWidth: 150
            }
            PlainLabel {
                objectName: "managedBy"
                text: texts.managedBy
                visible: text.length > 0
                color: Theme.textQuiet
                font.pixelSize: Theme.small
                horizontalAlignment: Text.AlignLeft
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
