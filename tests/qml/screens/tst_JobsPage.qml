import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/JobTable.js" as JobTable

Screen {
    name: "JobsPage"

    function test_tabsTellHowManyJobsAreBehindThem() {
        const summaries = service.jobIds().map(id => service.summary(id))
        const archived = summaries.filter(summary => summary.archived).length
        const tabs = findChild(jobsPage, "tabs")
        compare(tabs.itemAt(0).contentItem.text, "Required (" + (summaries.length - archived) + ")")
        compare(tabs.itemAt(1).contentItem.text, "Archived (" + archived + ")")
    }

    function test_eachListHasItsJobsNewestFirst_data() {
        return [{ tag: "required", list: "requiredList", archived: false },
                { tag: "archived", list: "archivedList", archived: true }]
    }

    function test_eachListHasItsJobsNewestFirst(data) {
        const list = jobsPage[data.list]
        const modified = idsOf(list.model).map(id => service.summary(id).modifiedOn)
        verify(modified.length >= 5)
        compare(modified, modified.slice().sort().reverse())
        compare(idsOf(list.model).filter(id => service.summary(id).archived !== data.archived), [])
    }

    function test_rowShowsTheSummaryOfItsJob() {
        const list = jobsPage.requiredList
        const id = "WO-2026-004730"
        list.view.positionViewAtIndex(JobTable.rowOf(list.model, id), ListView.Center)
        const row = rowItem(list, id)
        compare(textIn(row, "jobNumber"), id)
        compare(textIn(row, "workOrderLabel"), "Work order")
        compare(textIn(row, "customer"), "Universität Süd – Rechenzentrum")
        compare(textIn(row, "type"), "End-face inspection")
        compare(textIn(row, "state"), "in progress")
        compare(textIn(row, "managedBy"), "Dispatch North")
        compare(textIn(row, "modified"),
                Qt.formatDateTime(new Date("2026-03-02T08:31:00.777Z"), "yyyy-MM-dd hh:mm"))
        const summary = service.summary(id)
        compare(textIn(row, "progress"),
                summary.numberOfCompletedRequiredTests + " of " + summary.totalNumberOfRequiredTests + " tests")
    }

    function test_barIsAsLongAsTheProgress() {
        const list = jobsPage.requiredList
        const id = "WO-2026-004730"
        list.view.positionViewAtIndex(JobTable.rowOf(list.model, id), ListView.Center)
        const fill = findChild(rowItem(list, id), "fill")
        const summary = service.summary(id)
        fuzzyCompare(fill.width / fill.parent.width,
                     summary.numberOfCompletedRequiredTests / summary.totalNumberOfRequiredTests, 0.01)
    }

    function test_markupInACustomersNameShowsAsItIs() {
        const list = jobsPage.requiredList
        const id = "WO-2026-004711"
        list.view.positionViewAtIndex(JobTable.rowOf(list.model, id), ListView.Center)
        const customer = findChild(rowItem(list, id), "customer")
        compare(customer.text, "a < b > c & sons")
        compare(customer.textFormat, Text.PlainText)
    }

    function test_rowsAreFingerSized() {
        verify(jobsPage.requiredList.view.itemAtIndex(0).height >= 48)
        verify(findChild(jobsPage, "tabs").height >= 48)
        verify(findChild(jobsPage, "settingsButton").height >= 48)
        verify(findChild(jobsPage, "currentJobCard").height >= 48)
    }

    function test_withoutACurrentJobTheCardSaysSo() {
        const label = findChild(jobsPage.currentJobCard, "noCurrentJob")
        tryCompare(label, "visible", true, aWhile)
        compare(label.text, "No current job")
        verify(!jobsPage.currentJobCard.enabled)
    }

    function test_currentJobStandsAboveTheListsAndInNone() {
        const id = "WO-2026-004711"
        service.setActiveJob(id)
        tryVerify(() => textIn(jobsPage.currentJobCard, "jobNumber") === id, aWhile)
        compare(textIn(jobsPage.currentJobCard, "customer"), "a < b > c & sons – Fibre backbone acceptance")
        compare(JobTable.rowOf(jobsPage.requiredList.model, id), -1)
        compare(JobTable.rowOf(jobsPage.archivedList.model, id), -1)
    }

    function test_changeInTheServiceShowsWithinASecond() {
        const list = jobsPage.requiredList
        const id = "WO-2026-004802"
        list.view.positionViewAtIndex(JobTable.rowOf(list.model, id), ListView.Center)
        compare(textIn(rowItem(list, id), "progress"), "0 of 2 tests")
        list.view.positionViewAtBeginning()
        service.completeJob(id)
        tryVerify(() => list.view.itemAtIndex(0) !== null && list.view.itemAtIndex(0).jobID === id, oneSecond())
        tryVerify(() => textIn(rowItem(list, id), "progress") === "2 of 2 tests", oneSecond())
    }

    function test_archivedJobMovesToTheOtherList() {
        makeJob("MOVES")
        service.archiveJob("MOVES")
        tryVerify(() => JobTable.rowOf(jobsPage.archivedList.model, "MOVES") === 0, aWhile)
        compare(JobTable.rowOf(jobsPage.requiredList.model, "MOVES"), -1)
    }

    function test_scrollPositionAndSelectionStayWhenAJobComesInOnTop() {
        const list = jobsPage.requiredList
        const id = idsOf(list.model)[8]
        list.select(id)
        list.view.positionViewAtIndex(8, ListView.Center)
        waitForRendering(window.pages)
        const place = () => rowItem(list, id).y - list.view.contentY
        const before = place()
        service.createJob("ON-TOP")
        tryVerify(() => JobTable.rowOf(list.model, "ON-TOP") === 0, aWhile)
        waitForRendering(window.pages)
        compare(place(), before)
        compare(list.selectedId, id)
        verify(rowItem(list, id).selected)
        verify(findChild(rowItem(list, id), "selectionMark").visible)
    }

    function test_tapOnATabShowsItsList() {
        mouseClick(findChild(jobsPage, "tabs").itemAt(1))
        verify(jobsPage.archivedList.visible)
        verify(!jobsPage.requiredList.visible)
    }

    function test_rowGoesWithItsJobAndWithoutAWarning() {
        makeJob("SHORT-LIVED")
        const list = jobsPage.requiredList
        list.view.positionViewAtBeginning()
        tryVerify(() => list.view.itemAtIndex(0).jobID === "SHORT-LIVED", aWhile)
        service.deleteJob("SHORT-LIVED")
        tryVerify(() => JobTable.rowOf(list.model, "SHORT-LIVED") === -1, aWhile)
        waitForRendering(window.pages)
        verify(list.view.itemAtIndex(0).jobID !== "SHORT-LIVED")
    }
}
