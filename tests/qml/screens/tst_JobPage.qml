import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/JobTable.js" as JobTable

Screen {
    name: "JobPage"

    function field(key) {
        return textIn(findChild(page, key), "value")
    }

    function showDetails() {
        mouseClick(findChild(page.header, "viewButton"))
        verify(findChild(page, "details").visible)
    }

    function test_tapOnARowOpensThePageOfItsJob() {
        tapJob(jobsPage.requiredList, "WO-2026-004761")
        compare(page.jobID, "WO-2026-004761")
        compare(textIn(page.header, "title"), "WO-2026-004761")
        compare(textIn(page.header, "subtitle"), "Site task – Required tests: 1 of 3")
    }

    function test_pageShowsTheWholeSummary() {
        tapJob(jobsPage.requiredList, "WO-2026-004761")
        showDetails()
        const summary = service.summary("WO-2026-004761")
        compare(field("customer"), "Site 0417 – Grand Hôtel, toiture")
        compare(field("type"), "5G fronthaul acceptance")
        compare(field("number"), "WO-2026-004761")
        compare(field("label"), "Site task")
        compare(field("managedBy"), "Rollout")
        compare(field("team"), "T-1201, T-1202, T-1203, T-1204")
        compare(field("archived"), "No")
        compare(field("modified"), Qt.formatDateTime(new Date(summary.modifiedOn), "yyyy-MM-dd hh:mm"))
        compare(textIn(page, "state"), "in progress")
        compare(textIn(page, "progress"), "Required tests: " + summary.numberOfCompletedRequiredTests + " of "
                + summary.totalNumberOfRequiredTests)
    }

    function test_longValueTakesTheLinesThatItNeeds() {
        tapJob(jobsPage.requiredList, "WO-2026-004690")
        showDetails()
        const value = findChild(findChild(page, "customer"), "value")
        compare(value.text, "Stadtwerke Übersee, Abteilung Öffentliche Beleuchtung und Verkehrstechnik")
        verify(value.lineCount > 1)
        verify(!value.truncated)
    }

    function test_missingValueShowsAsADash() {
        tapJob(jobsPage.requiredList, "WO-2026-004802")
        showDetails()
        compare(field("type"), "–")
        compare(field("team"), "–")
    }

    function test_tapOnTheCurrentJobOpensItsPage() {
        service.setActiveJob("WO-2026-004711")
        tryVerify(() => jobsPage.currentJobCard.enabled, aWhile)
        waitForRendering(window.pages)
        mouseClick(jobsPage.currentJobCard)
        tryVerify(() => page !== jobsPage && !window.pages.busy, aWhile)
        compare(page.jobID, "WO-2026-004711")
        compare(field("customer"), "a < b > c & sons")
    }

    function test_changeInTheServiceShowsOnTheOpenPageWithinASecond() {
        tapJob(jobsPage.requiredList, "WO-2026-004790")
        showDetails()
        const before = page.modifiedOn
        service.completeJob("WO-2026-004790")
        tryVerify(() => textIn(page, "progress") === "Required tests: 3 of 3", oneSecond())
        verify(page.modifiedOn > before)
    }

    function test_archiveButtonArchivesAndRestores() {
        makeJob("ARCHIVE-ME")
        tapJob(jobsPage.requiredList, "ARCHIVE-ME")
        showDetails()
        const button = findChild(page, "archiveButton")
        compare(button.text, "Archive job")
        mouseClick(button)
        compare(button.text, "Restore job")
        compare(field("archived"), "Yes")
        verify(service.summary("ARCHIVE-ME").archived)
        mouseClick(button)
        compare(button.text, "Archive job")
        verify(!service.summary("ARCHIVE-ME").archived)
    }

    function test_refusedArchivingShowsAsNotChanged() {
        makeJob("REFUSED")
        tapJob(jobsPage.requiredList, "REFUSED")
        showDetails()
        JobManager.pauseAutomaticUpdates = true
        service.deleteJob("REFUSED")
        mouseClick(findChild(page, "archiveButton"))
        compare(findChild(page, "archiveButton").text, "Archive job")
        compare(field("archived"), "No")
        const notice = findChild(window, "notice")
        verify(notice.visible)
        compare(notice.text, "Not changed: the job service did not accept it.")
    }

    function test_pageOfAJobThatEndsSaysSoAndGoesBack() {
        makeJob("ENDS")
        tapJob(jobsPage.requiredList, "ENDS")
        verify(!findChild(page, "goneText").visible)
        service.deleteJob("ENDS")
        tryVerify(() => page.gone, aWhile)
        verify(findChild(page, "goneText").visible)
        compare(findChild(page, "goneText").text, "This job is gone: the job service has it no longer.")
        tryVerify(() => page === jobsPage, aWhile)
    }

    function test_backReturnsToTheLists_data() {
        return [{ tag: "button", act: () => mouseClick(findChild(page.header, "backButton")) },
                { tag: "key", act: () => keyClick(Qt.Key_Escape) }]
    }

    function test_backReturnsToTheLists(data) {
        tapJob(jobsPage.requiredList, "WO-2026-004761")
        data.act()
        tryVerify(() => page === jobsPage && !window.pages.busy, aWhile)
    }

    function test_listKeepsItsPlaceWhileAPageIsOpen() {
        const list = jobsPage.requiredList
        tapJob(list, idsOf(list.model)[8])
        const id = page.jobID
        const before = rowItem(list, id).y - list.view.contentY
        service.createJob("MEANWHILE")
        tryVerify(() => JobTable.rowOf(list.model, "MEANWHILE") === 0, aWhile)
        mouseClick(findChild(page.header, "backButton"))
        tryVerify(() => page === jobsPage && !window.pages.busy, aWhile)
        waitForRendering(window.pages)
        compare(rowItem(list, id).y - list.view.contentY, before)
        compare(list.selectedId, id)
    }
}
