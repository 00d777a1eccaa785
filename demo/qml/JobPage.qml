import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// One job: its tests, and everything that the job list knows of it; whether it is the current one, and how long it is
/// kept.
PageFrame {
    id: page

    // Given when the page is pushed. Not a required property: a StackView never completes a page that has one.
    property string jobID: ""
    /// The job; null from the moment it is gone from the service.
    property Job job: null

    /// What became of the last launch.
    property LaunchWatch watch: null
    /// Writes what could not be written before the page goes.
    property LateEdits lateEdits: null

    property bool detailsShown: false
    /// The person has just deleted the job here.
    property bool deleted: false
    readonly property bool gone: job === null
    readonly property bool current: !gone && JobManager.currentJob === job
    readonly property bool loading: !gone && feed.list === null
    property string modifiedOn: ""
    readonly property alias feed: feed
    readonly property alias tests: tests
    readonly property alias properties: properties
    readonly property alias tools: tools

    /// The person wants to see this test.
    signal testChosen(QtObject test, TestFeed feed)
    /// The person wants this job to be the current one; null for none.
    signal currentJobWanted(QtObject job)

    function readModifiedOn() {
        const row = JobTable.rowOf(JobManager, page.jobID)
        if (row >= 0)
            page.modifiedOn = JobTable.valueAt(JobManager, row, JobTable.modifiedRole)
    }

    function setArchived(archived) {
        page.job.isArchived = archived
        if (page.job.isArchived !== archived)
            page.told(qsTr("Not changed: the job service did not accept it."), true)
    }

    /// Archives the job or restores it. Archiving the current job is asked about: it leaves no current job.
    function toggleArchived() {
        if (page.current && !page.job.isArchived)
            archiveQuestion.open()
        else
            page.setArchived(!page.job.isArchived)
    }

    function deleteJob() {
        const number = texts.number
        page.deleted = JobManager.deleteJob(page.job)
        if (!page.deleted) {
            page.told(qsTr("Not deleted: the job service did not accept it."), true)
            return
        }
        page.told(qsTr("%1 is deleted").arg(number), false)
        page.finished()
    }

    title: gone ? qsTr("Job") : texts.number
    subtitle: {
        if (gone)
            return ""
        const parts = [current ? qsTr("Current job") : "", texts.label, texts.fullProgress]
        return parts.filter(text => text.length > 0).join(" \u2013 ")
    }
    barButtons: [
        BusyIndicator {
            running: !page.gone && (feed.busy || JobManager.settingCurrentJob)
            implicitWidth: Theme.touch
            implicitHeight: Theme.touch
            palette.dark: Theme.barText
        },
        BarButton {
            objectName: "currentButton"
            // As wide with the one text as with the other.
            implicitWidth: 136
            visible: !page.gone
            enabled: !JobManager.settingCurrentJob
            text: page.current ? qsTr("Set aside") : qsTr("Make current")
            onClicked: page.currentJobWanted(page.current ? null : page.job)
        },
        BarButton {
            objectName: "viewButton"
            implicitWidth: 84
            visible: !page.gone
            text: page.detailsShown ? qsTr("Tests") : qsTr("Details")
            onClicked: page.detailsShown = !page.detailsShown
        }
    ]
    Component.onCompleted: readModifiedOn()
    Component.onDestruction: {
        if (page.lateEdits !== null)
            page.lateEdits.take(properties)
    }

    JobTexts {
        id: texts
        job: page.job
    }
    TestFeed {
        id: feed
        job: page.job
    }
    PropertyFeed {
        id: properties
        job: page.job
    }
    Connections {
        target: JobManager

        function onModelReset() { page.readModifiedOn() }
    }
    Connections {
        target: page.job

        function onNewTestResultsReceived() { page.told(qsTr("New test results"), false) }
    }
    Timer {
        id: typing
        // Short enough to search as one types, long enough for a key to come before the search for the one before it.
        interval: 120
        onTriggered: {
            tests.startOver()
            feed.searchText = tools.searchText
        }
    }
    Timer {
        // Not under another page, which has to go first.
        running: page.gone && page.StackView.status === StackView.Active
        interval: 3000
        onTriggered: page.finished()
    }

    StackLayout {
        anchors.fill: parent
        currentIndex: page.detailsShown ? 1 : 0
        visible: !page.gone

        ColumnLayout {
            spacing: 0

            TestTools {
                id: tools
                objectName: "testTools"
                filter: feed.filter
                Layout.fillWidth: true
                onFilterChosen: {
                    tests.startOver()
                    feed.filter = filter
                }
                onSearchTextChanged: typing.restart()
                onGroupingChosen: {
                    tests.startOver()
                    feed.group(groupType)
                }
            }
            SectionedTests {
                id: tests
                objectName: "tests"
                job: page.job
                list: feed.list
                readable: feed.readable
                watch: page.watch
                Layout.fillWidth: true
                Layout.fillHeight: true
                onChosen: page.testChosen(test, feed)

                LoadingState {
                    objectName: "loading"
                    anchors.centerIn: parent
                    visible: page.loading
                    text: qsTr("Loading the tests\u2026")
                }
                EmptyState {
                    objectName: "noTests"
                    anchors.centerIn: parent
                    width: parent.width - 4 * Theme.margin
                    visible: feed.list !== null && tests.count === 0
                    text: feed.searching ? qsTr("No test of this job matches") : qsTr("This job has no tests")
                }
            }
        }
        JobDetails {
            objectName: "details"
            summary: texts
            modifiedOn: page.modifiedOn
            properties: properties
            onTold: page.told(message, failed)
            onArchiveToggled: page.toggleArchived()
            onDeletionWanted: deleteQuestion.open()
        }
    }
    EmptyState {
        objectName: "goneText"
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.margin
        visible: page.gone && !page.deleted
        text: qsTr("This job is gone: the job service has it no longer.")
    }
    Question {
        id: deleteQuestion
        objectName: "deleteQuestion"
        title: qsTr("Delete %1?").arg(texts.number)
        text: qsTr("Its tests and their results go with it, and cannot be brought back.")
        yes: qsTr("Delete job")
        onConfirmed: page.deleteJob()
    }
    Question {
        id: archiveQuestion
        objectName: "archiveQuestion"
        title: qsTr("Archive the current job?")
        text: qsTr("%1 is then no longer the current job. It can be restored from the archive.").arg(texts.number)
        yes: qsTr("Archive job")
        danger: false
        onConfirmed: page.setArchived(true)
    }
    onGoneChanged: {
        deleteQuestion.close()
        archiveQuestion.close()
    }
}
