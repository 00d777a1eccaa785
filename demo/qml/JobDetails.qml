import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

import "JobTable.js" as JobTable

/// Everything that the job list knows of one job, the way into the archive and out of it, and the end of the job.
ColumnLayout {
    id: details

    /// What there is to show of the job.
    required property JobTexts summary
    /// When the job was last modified, as the service's own text.
    property string modifiedOn: ""
    required property PropertyFeed properties
    readonly property alias flickable: flickable

    /// The person wants the job in the archive, or out of it.
    signal archiveToggled()
    /// The person is to read this.
    signal told(string message, bool failed)
    /// The person wants the job deleted, and has not been asked yet.
    signal deletionWanted()

    spacing: 0

    Flickable {
        id: flickable
        clip: true
        contentHeight: form.y + form.height + Theme.margin
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar { width: 10 }
        Layout.fillWidth: true
        Layout.fillHeight: true

        Rectangle {
            id: card
            x: Theme.margin
            y: Theme.margin
            width: flickable.width - 2 * Theme.margin
            height: content.height + 2 * Theme.margin
            radius: Theme.radius
            color: Theme.card
            border.width: 1
            border.color: Theme.line

            // Positioners and not layouts, whose heights go in circles where a text takes several lines.
            Column {
                id: content
                x: Theme.margin
                y: Theme.margin
                width: card.width - 2 * Theme.margin
                spacing: Theme.margin

                RowLayout {
                    width: content.width
                    spacing: 2 * Theme.gap

                    PlainLabel {
                        objectName: "progress"
                        text: details.summary.fullProgress
                        font.pixelSize: Theme.large
                        font.bold: true
                    }
                    RequiredTestsBar {
                        required: details.summary.required
                        completed: details.summary.completed
                        implicitHeight: 14
                        Layout.fillWidth: true
                    }
                    StateChip {
                        text: details.summary.state
                        Layout.maximumWidth: 240
                    }
                }
                Flow {
                    id: fields
                    readonly property int columns: width >= 600 ? 2 : 1

                    width: content.width
                    spacing: Theme.margin

                    Repeater {
                        model: [
                            { key: "customer", name: qsTr("Customer"), value: details.summary.customer },
                            { key: "type", name: qsTr("Type"), value: details.summary.type },
                            { key: "number", name: qsTr("Job number"), value: details.summary.number },
                            { key: "label", name: qsTr("Work order label"), value: details.summary.label },
                            { key: "managedBy", name: qsTr("Managed by"), value: details.summary.managedBy },
                            { key: "team", name: qsTr("Team"), value: details.summary.team },
                            { key: "archived", name: qsTr("Archived"),
                              value: details.summary.archived ? qsTr("Yes") : qsTr("No") },
                            { key: "modified", name: qsTr("Last modified"),
                              value: JobTable.timeText(details.modifiedOn) }
                        ]
                        delegate: DetailField {
                            required property var modelData

                            objectName: modelData.key
                            width: (fields.width + fields.spacing) / fields.columns - fields.spacing
                            name: modelData.name
                            value: modelData.value
                        }
                    }
                }
            }
        }

        PropertyForm {
            id: form
            objectName: "properties"
            x: Theme.margin
            y: card.y + card.height + Theme.margin
            width: card.width
            feed: details.properties
            onTold: details.told(message, failed)
        }
    }
    ActionBar {
        Layout.fillWidth: true

        ActionButton {
            objectName: "deleteButton"
            quiet: true
            danger: true
            text: qsTr("Delete job")
            onClicked: details.deletionWanted()
        }
        ActionButton {
            objectName: "archiveButton"
            anchors.right: parent.right
            text: details.summary.archived ? qsTr("Restore job") : qsTr("Archive job")
            onClicked: details.archiveToggled()
        }
    }
}
