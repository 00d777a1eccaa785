import QtQuick 2.15
import QtQuick.Controls 2.15
import QtTest 1.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/JobTable.js" as JobTable
import "../../../demo/qml/SectionLayout.js" as SectionLayout

/// The demo's window over a real job service, and how tests look at it.
TestCase {
    id: screen

    /// The window; made anew for each test.
    property var window: null
    readonly property var jobsPage: window === null ? null : window.jobsPage
    readonly property var page: window === null ? null : window.pages.currentItem

    /// For waits whose length is of no matter.
    readonly property int aWhile: service.stretched(10000)

    when: windowShown

    function init() {
        if (JobManager.currentJob !== null)
            service.setActiveJob("")
        window = createTemporaryObject(windowComponent, screen)
        tryVerify(() => JobManager.currentJob === null, aWhile)
        tryVerify(() => idsOf(JobManager).length === service.jobIds().length, aWhile)
        showFrame()
    }

    /// What "within a second" means at the moment.
    function oneSecond() {
        return service.stretched(1000)
    }

    function cleanup() {
        verify(outage.end())
        JobManager.pauseAutomaticUpdates = false
        JobManager.groupType = TestGroupType.DEFAULT_VIEW
    }

    /// Waits until everything is laid out and on the screen. Touches something first: where nothing has changed, no
    /// frame would come.
    function showFrame() {
        window.contentItem.opacity = 0.9
        window.contentItem.opacity = 1
        verify(waitForRendering(window.pages, aWhile))
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
        showFrame()
        mouseClick(rowItem(list, id))
        tryVerify(() => page !== jobsPage && !window.pages.busy, aWhile)
    }

    /// Opens the page of a job, and waits for its tests.
    function openJob(id) {
        window.showJob(id, JobTable.jobAt(JobManager, JobTable.rowOf(JobManager, id)), StackView.Immediate)
        compare(page.jobID, id)
        tryVerify(() => page.feed.readable, aWhile)
        showFrame()
    }

    /// Opens the page of the test with this index string, as a finger does.
    function tapTest(uiIndex) {
        const tests = page.tests
        const list = page.feed.list
        const rows = Array.from({ length: list.rowCount() }, (_, row) => row)
        const row = rows.find(row => uiIndexOf(list.data(list.index(row, 0), TestList.Test)) === uiIndex)
        tests.scrollTo(SectionLayout.topOfRow(tests.sections, row) - 2 * SectionLayout.headerHeight)
        showFrame()
        mouseClick(testRow(uiIndex))
        tryVerify(() => page.test !== undefined && !window.pages.busy && page.details.statusKnown, aWhile)
    }

    function uiIndexOf(test) {
        return test.testIndex + (test.locationIndex < 0 ? "" : "_" + test.locationIndex)
    }

    /// The index strings of the tests on the screen of a job's page, from the top.
    function shownTests() {
        return page.tests.rowsOnScreen().map(row => uiIndexOf(row.test))
    }

    /// The row of a test on the screen of a job's page.
    function testRow(uiIndex) {
        return page.tests.rowsOnScreen().find(row => uiIndexOf(row.test) === uiIndex)
    }

    /// Where an item is on the screen.
    function topOnScreen(item) {
        return item.mapToItem(window.pages, 0, 0).y
    }

    Component {
        id: windowComponent

        Main {}
    }
}
