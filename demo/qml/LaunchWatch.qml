import QtQuick 2.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// Follows the test that was launched last, on whatever page the person is meanwhile. The module tells when the launch
/// has an outcome; the result of the run comes later, with the job, and shows by the test's time.
QtObject {
    id: watch

    /// The test; null before the first launch, and from the moment it is gone from its job.
    property Test test: null
    /// The launch was accepted, and there is no result yet.
    property bool pending: false
    /// A result is to be expected soon. Not any more if the job has changed without one: a run that fails leaves none
    /// where there was a better one.
    readonly property bool running: pending && !doubtful
    /// The run has left its result in the test.
    property bool finished: false

    property bool doubtful: false
    property real timeBefore: NaN
    property string jobID: ""
    property string modifiedBefore: ""

    function hasNewTime() {
        return watch.test !== null && !Object.is(watch.test.testTime.getTime(), watch.timeBefore)
    }

    function modifiedOn() {
        const row = JobTable.rowOf(JobManager, watch.jobID)
        return row < 0 ? "" : JobTable.valueAt(JobManager, row, JobTable.modifiedRole)
    }

    function begin(test) {
        watch.test = test
        watch.timeBefore = test.testTime.getTime()
        watch.jobID = JobTable.idOf(JobManager, JobManager.currentJob)
        watch.pending = false
        watch.finished = false
    }

    function launched() {
        if (watch.test === null || watch.test.errorMessage.length > 0)
            return
        watch.modifiedBefore = watch.modifiedOn()
        watch.doubtful = false
        watch.pending = true
        watch.look()
    }

    function look() {
        if (!watch.pending || !watch.hasNewTime())
            return
        watch.pending = false
        watch.finished = true
    }

    onTestChanged: if (test === null) pending = false
    onPendingChanged: if (!pending) changed.stop()

    property Connections managerConnections: Connections {
        target: JobManager

        function onTestAboutToLaunch(test) { watch.begin(test) }
        function onIsTestLaunchingChanged() {
            if (!JobManager.isTestLaunching)
                watch.launched()
        }
        function onModelReset() {
            if (watch.running && watch.modifiedOn() !== watch.modifiedBefore)
                changed.start()
        }
    }
    property Connections testConnections: Connections {
        target: watch.test

        function onTestTimeChanged() { watch.look() }
    }
    // The tests of a changed job are read a little later than the job.
    property Timer changedTimer: Timer {
        id: changed
        interval: 3000
        onTriggered: watch.doubtful = true
    }
    // Of a run that was cut off with the service nothing is ever heard.
    property Timer patience: Timer {
        running: watch.running
        interval: 15 * 60 * 1000
        onTriggered: watch.doubtful = true
    }
}
