import QtQuick 2.15
import QtQuick.Controls 2.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// The window of the front end.
ApplicationWindow {
    id: window

    /// The port of the job service; 0 for the module's own.
    property int servicePort: 0

    readonly property alias pages: pages
    readonly property alias jobsPage: jobsPage

    function showJob(id, job, operation = StackView.PushTransition) {
        pages.push("JobPage.qml", { jobID: id, job: job, watch: watch, lateEdits: lateEdits }, operation)
    }

    function showTest(test, feed) {
        pages.push("TestPage.qml", { test: test, feed: feed, watch: watch })
    }

    /// The page of a job that has just been created here, in the place of the page that it was created on.
    function showNewJob(job) {
        // Between the creation and the news of it somebody else may have deleted it.
        if (job === null)
            return
        const properties = { jobID: JobTable.idOf(JobManager, job), job: job, watch: watch, lateEdits: lateEdits }
        if (pages.currentItem instanceof NewJobPage)
            pages.replace("JobPage.qml", properties)
        else
            pages.push("JobPage.qml", properties)
    }

    function goBack() {
        if (pages.depth > 1)
            pages.pop()
    }

    width: 800
    height: 480
    minimumWidth: 640
    minimumHeight: 400
    visible: true
    title: qsTr("Jobs")
    color: Theme.page

    Component.onCompleted: {
        if (servicePort > 0)
            JobManager.restApiPort = servicePort
    }

    StackView {
        id: pages
        anchors.fill: parent
        focus: true

        initialItem: JobsPage {
            id: jobsPage
            onJobChosen: window.showJob(id, job)
            onNewJobWanted: pages.push("NewJobPage.qml")
            onSettingsWanted: pages.push("SettingsPage.qml")
        }
        pushEnter: Transition { NumberAnimation { property: "x"; from: pages.width; to: 0; duration: Theme.slide } }
        pushExit: Transition { NumberAnimation { property: "x"; from: 0; to: -pages.width; duration: Theme.slide } }
        popEnter: Transition { NumberAnimation { property: "x"; from: -pages.width; to: 0; duration: Theme.slide } }
        popExit: Transition { NumberAnimation { property: "x"; from: 0; to: pages.width; duration: Theme.slide } }
    }
    Connections {
        target: pages.currentItem
        // Not every page lets everything be chosen.
        ignoreUnknownSignals: true

        function onFinished() { window.goBack() }
        function onTold(message, failed) { notice.show(message, failed) }
        function onTestChosen(test, feed) { window.showTest(test, feed) }
        function onCurrentJobWanted(job) { currentJobRequest.ask(job) }
        // Inside a reset of the rows, from which a page had better not be built.
        function onCreated(job) { Qt.callLater(window.showNewJob, job) }
    }
    Connections {
        target: JobManager

        // Inside a reset, too.
        function onNewJobCreated(job) { Qt.callLater(window.showNewJob, job) }
    }
    CurrentJobRequest {
        id: currentJobRequest
        onRefused: notice.show(wantsNone ? qsTr("Still the current job: the job service did not accept it.")
                                         : qsTr("Not made current: the job service did not accept it."), true)
    }
    LaunchWatch {
        id: watch
    }
    LateEdits {
        id: lateEdits
        onRefused: notice.show(qsTr("Not taken by the job service: %1").arg(label), true)
    }
    Notice {
        id: notice
        objectName: "notice"
        x: Math.round((window.width - width) / 2)
        y: window.height - height - Theme.touch - 3 * Theme.gap
    }
    Shortcut {
        sequences: ["Escape", "Back", StandardKey.Back]
        onActivated: window.goBack()
    }
}
