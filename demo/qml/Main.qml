import QtQuick 2.15
import QtQuick.Controls 2.15
import JobManagerUi 1.0

/// The window of the front end.
ApplicationWindow {
    id: window

    /// The port of the job service; 0 for the module's own.
    property int servicePort: 0

    readonly property alias pages: pages
    readonly property alias jobsPage: jobsPage

    function showJob(id, job, operation = StackView.PushTransition) {
        pages.push("JobPage.qml", { jobID: id, job: job }, operation)
    }

    function showTest(test, feed) {
        pages.push("TestPage.qml", { test: test, feed: feed })
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
            onSettingsWanted: pages.push("SettingsPage.qml")
        }
        pushEnter: Transition { NumberAnimation { property: "x"; from: pages.width; to: 0; duration: Theme.slide } }
        pushExit: Transition { NumberAnimation { property: "x"; from: 0; to: -pages.width; duration: Theme.slide } }
        popEnter: Transition { NumberAnimation { property: "x"; from: -pages.width; to: 0; duration: Theme.slide } }
        popExit: Transition { NumberAnimation { property: "x"; from: 0; to: pages.width; duration: Theme.slide } }
    }
    Connections {
        target: pages.currentItem
        // Not every page lets a test be chosen.
        ignoreUnknownSignals: true

        function onFinished() { window.goBack() }
        function onTestChosen(test, feed) { window.showTest(test, feed) }
    }
    Shortcut {
        sequences: ["Escape", "Back", StandardKey.Back]
        onActivated: window.goBack()
    }
}
