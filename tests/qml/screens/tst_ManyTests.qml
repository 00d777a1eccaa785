import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/SectionLayout.js" as SectionLayout

Screen {
    name: "ManyTests"

    /// More rows than that are never needed for one screen.
    readonly property int screenfuls: 30

    /// How many rows there are, on the screen or off it.
    function madeRows(item) {
        let count = item.slice !== undefined && item.status !== undefined ? 1 : 0
        for (let i = 0; i < item.children.length; ++i)
            count += madeRows(item.children[i])
        return count
    }

    Component {
        id: resetCounter

        Connections {
            property int count: 0

            function onModelReset() { ++count }
        }
    }

    function openManyTests() {
        openJob(service.jobIds().find(id => id.startsWith("GEN-")))
        verify(page.tests.count >= 5000)
    }

    function test_onlyTheRowsOfTheScreenAreMade_data() {
        return [{ tag: "job order", groupType: TestGroupType.DEFAULT_VIEW },
                { tag: "location", groupType: TestGroupType.GROUPBY_LOCATION },
                { tag: "test type", groupType: TestGroupType.GROUPBY_TEST_NAME },
                { tag: "not grouped", groupType: TestGroupType.NONE }]
    }

    function test_onlyTheRowsOfTheScreenAreMade(data) {
        JobManager.groupType = data.groupType
        openManyTests()
        const tests = page.tests
        for (let part = 0; part <= 10; ++part) {
            tests.scrollTo(part / 10 * tests.flickable.contentHeight)
            waitForRendering(window.pages)
            verify(tests.rowsOnScreen().length >= 3)
            verify(tests.rowsOnScreen().every(row => row !== null && row.test !== null))
            verify(madeRows(tests) < screenfuls)
        }
    }

    function test_lastTestIsAtTheEnd() {
        openManyTests()
        const list = page.feed.list
        page.tests.scrollTo(page.tests.flickable.contentHeight)
        waitForRendering(window.pages)
        const rows = page.tests.rowsOnScreen()
        const last = rows[rows.length - 1]
        compare(last.test, list.data(list.index(list.rowCount() - 1, 0), TestList.Test))
        compare(topOnScreen(last) + last.height, topOnScreen(page.tests) + page.tests.height)
    }

    function test_rowsFollowEachOtherWithoutAGap() {
        JobManager.groupType = TestGroupType.GROUPBY_TEST_NAME
        openManyTests()
        const tests = page.tests
        for (let y = 10000; y < 11000; y += 37) {
            tests.scrollTo(y)
            const rows = tests.rowsOnScreen()
            for (let i = 1; i < rows.length; ++i)
                compare(topOnScreen(rows[i]), topOnScreen(rows[i - 1]) + SectionLayout.rowHeight)
        }
    }

    function test_foldingABigSectionMakesNoMoreRows() {
        JobManager.groupType = TestGroupType.GROUPBY_TEST_NAME
        openManyTests()
        const tests = page.tests
        const title = tests.sections[0].title
        tests.toggle(title)
        waitForRendering(window.pages)
        verify(madeRows(tests) < screenfuls)
        tests.toggle(title)
        waitForRendering(window.pages)
        verify(madeRows(tests) < screenfuls)
    }

    function test_newResultShowsInPlaceAmongManyTests() {
        openManyTests()
        page.tests.scrollTo(100000)
        waitForRendering(window.pages)
        const shown = shownTests()
        service.setResult(page.jobID, shown[2], "rework")
        tryVerify(() => testRow(shown[2]).status === "rework", aWhile)
        compare(page.tests.flickable.contentY, 100000)
        compare(shownTests(), shown)
    }

    function test_keysInARowAreSearchedForOnce() {
        openManyTests()
        // Other changes would reset the list as well.
        JobManager.pauseAutomaticUpdates = true
        tryVerify(() => page.feed.readable, aWhile)
        const resets = createTemporaryObject(resetCounter, page, { target: page.feed.list })
        const field = findChild(page, "searchField")
        for (const text of ["p", "po", "port 2"])
            field.text = text
        compare(resets.count, 0)
        tryVerify(() => page.feed.list.searchRegExpStr === "port 2", aWhile)
        compare(resets.count, 1)
        verify(page.tests.rowsOnScreen().every(row => row.test.location === "Port 2"))
    }
}
