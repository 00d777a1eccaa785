import QtQuick 2.15
import QtTest 1.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/JobTable.js" as JobTable

/// The demo's window over a real job service, and how tests look at it.
TestCase {
    id: screen

    /// The window; made anew for each test.
    property var window: null
    readonly property var jobsPage: window === null ? null : window.jobsPage
    readonly property var page: window === null ? null : window.pages.currentItem

    readonly property int oneSecond: service.stretched(1000)
    readonly property int aWhile: 10 * oneSecond

    when: windowShown

    function init() {
        service.setActiveJob("")
        window = createTemporaryObject(windowComponent, screen)
        tryVerify(() => JobManager.currentJob === null, aWhile)
        tryVerify(() => idsOf(JobManager).length === service.jobIds().length, aWhile)
        waitForRendering(window.pages)
    }

    function cleanup() {
        JobManager.pauseAutomaticUpdates = false
    }

    /// The ids of a model of jobs, in row order.
    function idsOf(model) {
        return Array.from({ length: model.rowCount() }, (_, row) => JobTable.idAt(model, row))
    }

    /// A job of the test's own, in the required list.
    function makeJob(id) {
        service.createJob(id)
        tryVerify(() => JobTable.rowOf(JobManager.requiredJobs, id) >= 0, aWhile)
    }

    /// The row of a job on the screen; null if it isn't there.
    function rowItem(list, id) {
        return list.view.itemAtIndex(JobTable.rowOf(list.model, id))
    }

    /// The text of a label inside an item.
    function textIn(item, name) {
        return findChild(item, name).text
    }

    /// Opens the page of a job as a finger does.
    function tapJob(list, id) {
        list.view.positionViewAtIndex(JobTable.rowOf(list.model, id), ListView.Center)
        waitForRendering(window.pages)
        mouseClick(rowItem(list, id))
        tryVerify(() => page !== jobsPage && !window.pages.busy, aWhile)
    }

    Component {
        id: windowComponent

        Main {}
    }
}
