import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/JobTable.js" as JobTable
import "../../../demo/qml/SectionLayout.js" as SectionLayout

Screen {
    name: "JobTests"

    /// The sections of the open page: their names, and how many tests they tell to have.
    function sectionsShown() {
        return page.tests.sections.map(section => page.tests.nameOf(section.title) + ": " + section.count)
    }

    /// These tests are on the screen, or soon: a change that comes during a fetch shows after it.
    function showsTests(expected) {
        tryVerify(() => String(shownTests()) === String(expected), aWhile, "not " + expected + " but " + shownTests())
    }

    function header(sectionIndex) {
        return findChild(page.tests.placeOf(sectionIndex), "sectionHeader")
    }

    function type(text) {
        mouseClick(findChild(page, "searchField"))
        for (const letter of text)
            keyClick(letter)
    }

    function chooseGrouping(groupType) {
        mouseClick(findChild(page, "groupButton"))
        const popup = findChild(page, "groupings")
        tryVerify(() => popup.opened, aWhile)
        mouseClick(findChild(popup.contentItem, "grouping" + groupType))
        tryVerify(() => !popup.visible, aWhile)
        tryCompare(JobManager, "groupType", groupType, aWhile)
    }

    function test_pageOpensAtOnceAndShowsThatItLoads() {
        const list = jobsPage.requiredList
        list.view.positionViewAtIndex(JobTable.rowOf(list.model, "WO-2026-004400"), ListView.Center)
        waitForRendering(window.pages)
        JobManager.updateDataFromAPI(true)
        tryVerify(() => !JobManager.fetchingJobList, aWhile)
        mouseClick(rowItem(list, "WO-2026-004400"))
        compare(page.jobID, "WO-2026-004400")
        verify(findChild(page, "loading").visible)
        compare(textIn(page, "loadingText"), "Loading the tests…")
        tryVerify(() => page.tests.count === 500, aWhile)
        verify(!findChild(page, "loading").visible)
    }

    function test_rowShowsItsTest() {
        openJob("WO-2026-004711")
        const row = testRow("0_1")
        compare(textIn(row, "name"), "OTDR")
        compare(textIn(row, "location"), "Fibre 2")
        compare(textIn(row, "status"), "fail")
        compare(textIn(row, "time"), Qt.formatDateTime(new Date("2026-02-27T10:09:45+01:00"), "yyyy-MM-dd hh:mm"))
        compare(textIn(row, "requirement"), "Required")
    }

    function test_testWithoutAResultIsOpenAndHasNoTime() {
        openJob("WO-2026-004802")
        const row = page.tests.rowsOnScreen()[0]
        compare(textIn(row, "status"), "open")
        verify(!findChild(row, "time").visible)
    }

    function test_sectionsHaveTheirNamesAndCounts_data() {
        return [{ tag: "job order", groupType: TestGroupType.DEFAULT_VIEW,
                  sections: ["1. OTDR: 4", "2. Optical power: 1", "3. OTDR: 2", "4. Optical power: 1",
                             "5. Manual step: 1"] },
                { tag: "location", groupType: TestGroupType.GROUPBY_LOCATION,
                  sections: ["Fibre 1: 1", "Fibre 2: 1", "Fibre 3: 1", "Fibre 4: 1", "Fibre 17: 1", "Fibre 18: 1",
                             "Without a location: 3"] },
                { tag: "test type", groupType: TestGroupType.GROUPBY_TEST_NAME,
                  sections: ["OTDR: 6", "Optical power: 2", "Manual step: 1"] }]
    }

    function test_sectionsHaveTheirNamesAndCounts(data) {
        openJob("WO-2026-004711")
        chooseGrouping(data.groupType)
        compare(sectionsShown(), data.sections)
    }

    function test_testsThatAreNotGroupedShowWithoutSections() {
        JobManager.groupType = TestGroupType.NONE
        openJob("WO-2026-004802")
        compare(shownTests(), ["0_0", "0_1", "1"].slice(0, page.tests.count))
        verify(page.tests.sections.every(section => !section.hasHeader))
    }

    function test_tapOnAHeaderFoldsItsSectionAndOpensIt() {
        openJob("WO-2026-004711")
        compare(shownTests().slice(0, 4), ["0_0", "0_1", "0_2", "0_3"])
        mouseClick(header(0))
        compare(shownTests(), ["1", "2_0", "2_1", "3", "4"].slice(0, shownTests().length))
        verify(header(0).visible)
        compare(textIn(header(0), "sectionCount"), "4")
        mouseClick(header(0))
        compare(shownTests().slice(0, 4), ["0_0", "0_1", "0_2", "0_3"])
    }

    function test_headerStaysOnTheScreenWithItsRowsAndFoldsThere() {
        openJob("WO-2026-004400")
        chooseGrouping(TestGroupType.GROUPBY_TEST_NAME)
        page.tests.scrollTo(3000)
        waitForRendering(window.pages)
        compare(topOnScreen(header(0)), topOnScreen(page.tests))
        mouseClick(header(0))
        waitForRendering(window.pages)
        compare(topOnScreen(header(0)), topOnScreen(page.tests))
        verify(page.tests.sections[0].folded)
        compare(page.tests.flickable.contentY, 0)
    }

    function test_filterShowsTheTestsOfAStatus_data() {
        return [{ tag: "completed", filter: TestList.TESTFILTER_COMPLETED, matches: status => status.length > 0 },
                { tag: "open", filter: TestList.TESTFILTER_INCOMPLETE, matches: status => status.length === 0 },
                { tag: "all", filter: TestList.TESTFILTER_ALL, matches: () => true }]
    }

    function test_filterShowsTheTestsOfAStatus(data) {
        openJob("WO-2026-004400")
        const button = findChild(page, "filter" + data.filter)
        const all = Array.from({ length: 500 }, (_, row) => page.feed.list.data(page.feed.list.index(row, 0),
                                                                               TestList.TestStatus))
        mouseClick(button)
        verify(button.chosen)
        tryCompare(page.tests, "count", all.filter(data.matches).length, aWhile)
        verify(page.tests.rowsOnScreen().every(row => data.matches(row.status)))
    }

    function test_searchGoesByLocationAsOneTypes() {
        openJob("WO-2026-004711")
        type("fibre 1")
        showsTests(["0_0", "2_0", "2_1"])
        keyClick("7")
        showsTests(["2_0"])
        mouseClick(findChild(page, "clearSearch"))
        tryCompare(page.tests, "count", 9, aWhile)
    }

    function test_searchedTextIsNoPattern() {
        openJob("WO-2026-004790")
        type("(entry)")
        tryCompare(page.tests, "count", 1, aWhile)
        compare(textIn(page.tests.rowsOnScreen()[0], "location"), "지하 1층 인입구 (entry)")
    }

    function test_searchThatFindsNothingSaysSo() {
        openJob("WO-2026-004711")
        verify(!findChild(page, "noTests").visible)
        type("nowhere")
        tryCompare(page.tests, "count", 0, aWhile)
        verify(findChild(page, "noTests").visible)
        compare(findChild(page, "noTests").text, "No test of this job matches")
    }

    function test_jobWithoutTestsSaysSo() {
        openJob("WO-2026-004801")
        verify(findChild(page, "noTests").visible)
        compare(findChild(page, "noTests").text, "This job has no tests")
    }

    function test_newResultShowsInPlaceWithinASecond() {
        openJob("WO-2026-004400")
        const tests = page.tests
        mouseClick(header(0))
        tests.scrollTo(5000)
        waitForRendering(window.pages)
        const shown = shownTests()
        const place = topOnScreen(testRow(shown[2]))
        const test = testRow(shown[2]).test
        tests.marked = test
        service.setResult("WO-2026-004400", shown[2], "rework")
        tryVerify(() => testRow(shown[2]).status === "rework", oneSecond())
        const notice = findChild(window, "notice")
        verify(notice.visible)
        compare(notice.text, "New test results")
        waitForRendering(window.pages)
        compare(testRow(shown[2]).test, test)
        verify(testRow(shown[2]).marked)
        compare(shownTests(), shown)
        compare(topOnScreen(testRow(shown[2])), place)
        verify(tests.sections[0].folded)
    }

    function test_placeIsKeptOverManyUpdates() {
        openJob("WO-2026-004400")
        const tests = page.tests
        tests.scrollTo(5003)
        waitForRendering(window.pages)
        const shown = shownTests()
        for (let i = 0; i < 5; ++i) {
            service.setResult("WO-2026-004400", shown[3], "run " + i)
            tryVerify(() => testRow(shown[3]).status === "run " + i, aWhile)
            compare(tests.flickable.contentY, 5003)
            compare(shownTests(), shown)
        }
    }

    function test_screenFollowsItsTestsWhenOnesAboveGo() {
        openJob("WO-2026-004400")
        mouseClick(findChild(page, "filter" + TestList.TESTFILTER_INCOMPLETE))
        tryVerify(() => page.tests.count < 500, aWhile)
        const first = shownTests()[0]
        page.tests.scrollTo(1000)
        waitForRendering(window.pages)
        const seen = shownTests()[1]
        const place = topOnScreen(testRow(seen))
        const count = page.tests.count
        service.setResult("WO-2026-004400", first, "pass")
        tryVerify(() => page.tests.count === count - 1, aWhile)
        waitForRendering(window.pages)
        compare(topOnScreen(testRow(seen)), place)
    }

    function test_filterAndSearchHoldOverAnUpdate() {
        openJob("WO-2026-004711")
        type("fibre 1")
        mouseClick(findChild(page, "filter" + TestList.TESTFILTER_INCOMPLETE))
        showsTests(["2_0", "2_1"])
        service.setResult("WO-2026-004711", "2_0", "pass")
        tryVerify(() => page.tests.count === 1, aWhile)
        showsTests(["2_1"])
    }

    function test_listStaysOnTheScreenWhileItIsFetchedAnew() {
        openJob("WO-2026-004711")
        const shown = shownTests()
        JobManager.updateDataFromAPI(true)
        verify(!page.feed.readable)
        compare(shownTests(), shown)
        compare(textIn(testRow("0_1"), "status"), "fail")
        verify(!findChild(page, "loading").visible)
        tryVerify(() => page.feed.readable, aWhile)
        compare(shownTests(), shown)
    }

    function test_searchDuringAFetchIsDoneAfterIt() {
        openJob("WO-2026-004711")
        JobManager.updateDataFromAPI(true)
        type("fibre 17")
        showsTests(["2_0"])
    }

    function test_regroupingElsewhereShowsOnThePage() {
        openJob("WO-2026-004711")
        JobManager.groupType = TestGroupType.GROUPBY_TEST_NAME
        compare(sectionsShown(), ["OTDR: 6", "Optical power: 2", "Manual step: 1"])
    }

    function test_sectionsAreFoldedUnderOneGroupingOnly() {
        openJob("WO-2026-004711")
        mouseClick(header(0))
        chooseGrouping(TestGroupType.GROUPBY_TEST_NAME)
        verify(page.tests.sections.every(section => !section.folded))
        chooseGrouping(TestGroupType.DEFAULT_VIEW)
        verify(page.tests.sections[0].folded)
    }

    function test_jobThatVanishesTakesItsTestsFromTheScreen() {
        openJob("WO-2026-004533")
        verify(page.tests.count > 0)
        service.deleteJob("WO-2026-004533")
        tryVerify(() => page.gone, aWhile)
        compare(page.tests.count, 0)
        compare(page.tests.rowsOnScreen(), [])
        verify(findChild(page, "goneText").visible)
        tryVerify(() => page === jobsPage, aWhile)
    }
}
