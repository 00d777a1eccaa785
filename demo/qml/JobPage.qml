import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// Everything that the job list knows of one job, and the way into the archive and out of it.
PageFrame {
    id: page

    // Given when the page is pushed. Not a required property: a StackView never completes a page that has one.
    property string jobID: ""
    /// The job; null from the moment it is gone from the service.
    property QtObject job: null

    readonly property bool gone: job === null
    property string modifiedOn: ""

    function readModifiedOn() {
        const row = JobTable.rowOf(JobManager, page.jobID)
        if (row >= 0)
            page.modifiedOn = JobTable.valueAt(JobManager, row, JobTable.modifiedRole)
    }

    function toggleArchived() {
        const wanted = !page.job.isArchived
        page.job.isArchived = wanted
        if (page.job.isArchived !== wanted)
            notice.show(qsTr("Not changed: the job service did not accept it."))
    }

    title: gone ? qsTr("Job") : texts.number
    subtitle: texts.label
    Component.onCompleted: readModifiedOn()

    JobTexts {
        id: texts
        job: page.job
    }
    Connections {
        target: JobManager

        function onModelReset() { page.readModifiedOn() }
    }
    Timer {
        running: page.gone
        interval: 3000
        onTriggered: page.finished()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        visible: !page.gone

        Flickable {
            id: flickable
            clip: true
            contentHeight: card.height + 2 * Theme.margin
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
                            text: texts.fullProgress
                            font.pixelSize: Theme.large
                            font.bold: true
                        }
                        RequiredTestsBar {
                            required: texts.required
                            completed: texts.completed
                            implicitHeight: 14
                            Layout.fillWidth: true
                        }
                        StateChip {
                            text: texts.state
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
                                { key: "customer", name: qsTr("Customer"), value: texts.customer },
                                { key: "type", name: qsTr("Type"), value: texts.type },
                                { key: "number", name: qsTr("Job number"), value: texts.number },
                                { key: "label", name: qsTr("Work order label"), value: texts.label },
                                { key: "managedBy", name: qsTr("Managed by"), value: texts.managedBy },
                                { key: "team", name: qsTr("Team"), value: texts.team },
                                { key: "archived", name: qsTr("Archived"),
                                  value: texts.archived ? qsTr("Yes") : qsTr("No") },
                                { key: "modified", name: qsTr("Last modified"),
                                  value: JobTable.timeText(page.modifiedOn) }
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
        }
        Rectangle {
            color: Theme.card
            implicitHeight: Theme.touch + 2 * Theme.gap
            Layout.fillWidth: true

            ActionButton {
                objectName: "archiveButton"
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                text: texts.archived ? qsTr("Restore job") : qsTr("Archive job")
                enabled: !page.gone
                onClicked: page.toggleArchived()
            }
        }
    }
    EmptyState {
        objectName: "goneText"
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.margin
        visible: page.gone
        text: qsTr("This job is gone: the job service has it no longer.")
    }
    Notice {
        id: notice
        objectName: "notice"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.touch + 3 * Theme.gap
    }
}
