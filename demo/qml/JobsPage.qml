import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// The first page: the current job, and below it the others in two lists.
PageFrame {
    id: page

    property alias tabIndex: tabs.currentIndex
    readonly property alias requiredList: requiredList
    readonly property alias archivedList: archivedList
    readonly property alias currentJobCard: currentJobCard

    /// The person wants to see this job.
    signal jobChosen(string id, QtObject job)
    /// The person wants to make a new job.
    signal newJobWanted()
    /// The person wants to see the settings.
    signal settingsWanted()

    title: qsTr("Jobs")
    subtitle: JobManager.pauseAutomaticUpdates ? qsTr("Updates are paused") : ""
    canGoBack: false
    barButtons: [
        BusyIndicator {
            objectName: "busy"
            running: JobManager.fetchingJobList || JobManager.isSyncInProgress
            implicitWidth: Theme.touch
            implicitHeight: Theme.touch
            palette.dark: Theme.barText
        },
        BarButton {
            objectName: "syncButton"
            enabled: !JobManager.isSyncInProgress
            // As wide while it says something else.
            implicitWidth: 96
            text: JobManager.isSyncInProgress ? qsTr("Syncing\u2026") : qsTr("Sync")
            onClicked: JobManager.syncWithNimbrel()
        },
        BarButton {
            objectName: "newJobButton"
            text: qsTr("New job")
            onClicked: page.newJobWanted()
        },
        BarButton {
            objectName: "settingsButton"
            text: qsTr("Settings")
            onClicked: page.settingsWanted()
        }
    ]

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        CurrentJobCard {
            id: currentJobCard
            objectName: "currentJobCard"
            job: JobManager.currentJob
            Layout.fillWidth: true
            Layout.margins: Theme.gap
            Layout.leftMargin: Theme.margin / 2
            Layout.rightMargin: Theme.margin / 2
            onClicked: page.jobChosen(JobTable.idOf(JobManager, job), job)
        }
        TabBar {
            id: tabs
            objectName: "tabs"
            spacing: 0
            Layout.fillWidth: true

            JobTab {
                name: qsTr("Required")
                count: requiredList.count
            }
            JobTab {
                name: qsTr("Archived")
                count: archivedList.count
            }
        }
        StackLayout {
            currentIndex: tabs.currentIndex
            Layout.fillWidth: true
            Layout.fillHeight: true

            JobList {
                id: requiredList
                objectName: "requiredList"
                model: JobManager.requiredJobs
                emptyText: JobManager.fetchingJobList ? qsTr("Looking for jobs\u2026") : qsTr("No open jobs")
                onChosen: page.jobChosen(id, job)
            }
            JobList {
                id: archivedList
                objectName: "archivedList"
                model: JobManager.archivedJobs
                emptyText: JobManager.fetchingJobList ? qsTr("Looking for jobs\u2026") : qsTr("No archived jobs")
                onChosen: page.jobChosen(id, job)
            }
        }
    }
}
