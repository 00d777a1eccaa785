import QtQuick 2.15
import JobManagerUi 1.0

import "../screens"
import "../../../demo/qml/JobTable.js" as JobTable

Screen {
    name: "CurrentJob"

    readonly property string id: "WO-2026-004761"

    function button() {
        return findChild(page.header, "currentButton")
    }

    function notice() {
        return findChild(window, "notice")
    }

    /// Opens the page of a job that is the current one.
    function openCurrentJob() {
        service.setActiveJob(id)
        tryVerify(() => JobManager.currentJob !== null, aWhile)
        openJob(id)
        verify(page.current)
    }

    function test_jobBecomesTheCurrentOne() {
        tapJob(jobsPage.requiredList, id)
        compare(button().text, "Make current")
        mouseClick(button())
        tryVerify(() => page.current, aWhile)
        compare(JobManager.currentJob, page.job)
        compare(button().text, "Set aside")
        compare(textIn(page.header, "subtitle"), "Current job – Site task – Required tests: 1 of 3")
        verify(!notice().visible)
        compare(textIn(jobsPage.currentJobCard, "jobNumber"), id)
        compare(JobTable.rowOf(jobsPage.requiredList.model, id), -1)
    }

    function test_currentJobIsSetAside() {
        openCurrentJob()
        mouseClick(button())
        tryVerify(() => !page.current, aWhile)
        compare(JobManager.currentJob, null)
        compare(button().text, "Make current")
        verify(!notice().visible)
        verify(JobTable.rowOf(jobsPage.requiredList.model, id) >= 0)
    }

    function test_anotherJobTakesThePlaceOfTheCurrentOne() {
        openCurrentJob()
        openJob("WO-2026-004690")
        mouseClick(button())
        tryVerify(() => page.current, aWhile)
        compare(JobManager.currentJob, page.job)
        verify(JobTable.rowOf(jobsPage.requiredList.model, id) >= 0)
    }

    function test_changeShowsThatItIsUnderWay() {
        tapJob(jobsPage.requiredList, id)
        mouseClick(button())
        verify(JobManager.settingCurrentJob)
        verify(!button().enabled)
        tryVerify(() => button().enabled && page.current, aWhile)
    }

    function test_refusedChangeSaysSo_data() {
        return [{ tag: "made current", open: () => openJob(id), text: "Make current",
                  notice: "Not made current: the job service did not accept it." },
                { tag: "set aside", open: openCurrentJob, text: "Set aside",
                  notice: "Still the current job: the job service did not accept it." }]
    }

    function test_refusedChangeSaysSo(data) {
        data.open()
        const current = page.current
        outage.begin()
        mouseClick(button())
        tryVerify(() => notice().visible, aWhile)
        compare(notice().text, data.notice)
        verify(notice().failed)
        compare(page.current, current)
        compare(button().text, data.text)
        verify(button().enabled)
    }

    function test_refusalShowsOnWhateverPageThePersonIs() {
        openJob(id)
        outage.begin()
        mouseClick(button())
        page.finished()
        tryVerify(() => page === jobsPage && notice().visible, aWhile)
        compare(notice().text, "Not made current: the job service did not accept it.")
    }

    function test_noticeGoesWithATap() {
        openJob(id)
        outage.begin()
        mouseClick(button())
        tryVerify(() => notice().visible, aWhile)
        showFrame()
        mouseClick(notice())
        verify(!notice().visible)
    }

    function test_jobThatWasDeletedMeanwhileIsRefused() {
        makeJob("DELETED-FIRST")
        openJob("DELETED-FIRST")
        JobManager.pauseAutomaticUpdates = true
        service.deleteJob("DELETED-FIRST")
        mouseClick(button())
        tryVerify(() => notice().visible, aWhile)
        compare(notice().text, "Not made current: the job service did not accept it.")
        tryVerify(() => page.gone, aWhile)
    }

    function test_jobThatGoesWhileItIsWaitedForIsNoRefusal() {
        makeJob("GOES-FIRST")
        openJob("GOES-FIRST")
        JobManager.pauseAutomaticUpdates = true
        // Two changes, so that the module reads all jobs anew.
        service.createJob("COMES-FIRST")
        service.deleteJob("GOES-FIRST")
        mouseClick(button())
        tryVerify(() => page.gone, aWhile)
        tryVerify(() => !JobManager.settingCurrentJob && !JobManager.fetchingJobList, aWhile)
        verify(!notice().visible)
        verify(findChild(page, "goneText").visible)
    }
}
