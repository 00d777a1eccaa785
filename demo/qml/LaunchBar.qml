import QtQuick 2.15
import JobManagerUi 1.0

/// Launches the test of a page, and tells how that goes; or answers for the prompt of a manual test, which has its own
/// buttons. Both name no job to the service, so that they are offered on the current job alone.
StatusBar {
    id: bar

    /// The test, or null.
    property Test test: null
    /// Whether it is a manual one, its status, and why it was not launched the last time.
    property bool manual: false
    property string status
    property string error
    /// Whether the values of the test can be had at once: a launch reads the test first.
    property bool readable: false
    /// Whether the test's job is the current one.
    property bool current: false
    /// What became of the last launch, of whatever test.
    property LaunchWatch watch: null
    /// What becomes of an answer to this test.
    required property AnswerRequest answerRequest

    property bool wanted: false
    readonly property bool watched: watch !== null && test !== null && watch.test === test
    readonly property bool starting: wanted || (watched && JobManager.isTestLaunching)
    readonly property bool running: watched && watch.running
    readonly property bool refused: error.length > 0 || answerRequest.refused

    /// The person wants the test's job to be the current one.
    signal currentJobWanted()

    /// Launches the test, as soon as that does not block.
    function launch() {
        bar.wanted = true
        bar.begin()
    }

    function begin() {
        if (!bar.wanted || !bar.readable)
            return
        bar.wanted = false
        if (bar.test !== null && bar.current)
            JobManager.launchTest(bar.test)
    }

    function words() {
        if (bar.starting)
            return qsTr("Starting the test\u2026")
        if (bar.answerRequest.waiting)
            return qsTr("Saving the answer\u2026")
        if (bar.answerRequest.refused)
            return qsTr("Not saved: the job service did not accept the answer.")
        if (bar.error.length > 0)
            return bar.error
        if (bar.running)
            return qsTr("Running. The result shows here when there is one.")
        if (bar.watched && bar.watch.pending)
            return qsTr("There is no new result yet.")
        if (!bar.current)
            return bar.manual ? qsTr("Prompts are answered on the current job alone.")
                              : qsTr("Tests are launched on the current job alone.")
        if (bar.manual)
            return bar.answerRequest.answer.length > 0 ? qsTr("Answered.") : qsTr("Not answered yet.")
        if (JobManager.isTestLaunching)
            return qsTr("Another test is being started.")
        if (bar.watched && bar.watch.finished && bar.status.length > 0)
            return qsTr("Finished: %1").arg(bar.status)
        return ""
    }

    message: words()
    busy: starting || answerRequest.waiting || (running && !refused)
    failed: refused && !busy
    action: !current ? qsTr("Make current") : manual ? "" : qsTr("Launch test")
    actionEnabled: current ? !starting && !JobManager.isTestLaunching : !JobManager.settingCurrentJob
    onReadableChanged: begin()
    onChosen: current ? launch() : currentJobWanted()
}
