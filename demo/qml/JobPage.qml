import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// One job: its tests, and everything that the job list knows of it.
PageFrame {
    id: page

    // Given when the page is pushed. Not a required property: a StackView never completes a page that has one.
    property string jobID: ""
    /// The job; null from the moment it is gone from the service.
    property QtObject job: null

    property bool detailsShown: false
    readonly property bool gone: job === null
    readonly property bool loading: !gone && feed.list === null
    property string modifiedOn: ""
    readonly property alias feed: feed
    readonly property alias tests: tests
    readonly property alias properties: properties
    readonly property alias tools: tools

    /// The person wants to see this test.
    signal testChosen(QtObject test, TestFeed feed)

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
    subtitle: gone ? "" : [texts.label, texts.fullProgress].filter(text => text.length > 0).join(" \u2013 ")
    barButtons: [
        BusyIndicator {
            running: !page.gone && feed.busy
            implicitWidth: Theme.touch
            implicitHeight: Theme.touch
            palette.dark: Theme.barText
        },
        BarButton {
            objectName: "viewButton"
            visible: !page.gone
            text: page.detailsShown ? qsTr("Tests") : qsTr("Details")
            onClicked: page.detailsShown = !page.detailsShown
        }
    ]
    Component.onCompleted: readModifiedOn()

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

        function onNewTestResultsReceived() { notice.show(qsTr("New test results")) }
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
                onSearchTextChanged: {
                    tests.startOver()
                    feed.searchText = searchText
                }
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
            onTold: notice.show(message)
            onArchiveToggled: page.toggleArchived()
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
