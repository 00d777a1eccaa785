import QtQuick 2.15
import JobManagerUi 1.0

import "../screens"
import "../../../demo/qml/JobTable.js" as JobTable

// Archiving and deleting, as far as there is a question first.
Screen {
    name: "JobEnds"

    /// Opens the details of a job of the test's own.
    function openDetails(id) {
        makeJob(id)
        openJob(id)
        page.detailsShown = true
        showFrame()
    }

    /// Taps a button that asks; returns the question.
    function ask(buttonName, questionName) {
        mouseClick(findChild(page, buttonName))
        const question = findChild(page, questionName)
        tryVerify(() => question.opened, aWhile)
        return question
    }

    function answer(question, name) {
        mouseClick(findChild(question.contentItem, name))
        tryVerify(() => !question.visible, aWhile)
    }

    function makeCurrent(id) {
        service.setActiveJob(id)
        tryVerify(() => page.current, aWhile)
    }

    function test_jobIsDeletedAfterAQuestion() {
        openDetails("DELETE-ME")
        const question = ask("deleteButton", "deleteQuestion")
        compare(textIn(question.contentItem, "questionTitle"), "Delete DELETE-ME?")
        verify(service.jobIds().includes("DELETE-ME"))
        answer(question, "yesButton")
        verify(!service.jobIds().includes("DELETE-ME"))
        tryVerify(() => page === jobsPage, aWhile)
        compare(findChild(window, "notice").text, "DELETE-ME is deleted")
        tryVerify(() => JobTable.rowOf(JobManager, "DELETE-ME") < 0, aWhile)
    }

    function test_questionCanBeAnsweredWithNo_data() {
        return [{ tag: "button", act: question => mouseClick(findChild(question.contentItem, "noButton")) },
                { tag: "tap beside it", act: () => mouseClick(window.pages, 5, 300) },
                { tag: "key", act: () => keyClick(Qt.Key_Escape) }]
    }

    function test_questionCanBeAnsweredWithNo(data) {
        const id = "KEEP-ME " + data.tag
        openDetails(id)
        const question = ask("deleteButton", "deleteQuestion")
        data.act(question)
        tryVerify(() => !question.visible, aWhile)
        verify(service.jobIds().includes(id))
        compare(page.jobID, id)
        verify(!findChild(window, "notice").visible)
    }

    function test_refusedDeletionSaysSo() {
        openDetails("NOT-DELETED")
        const question = ask("deleteButton", "deleteQuestion")
        outage.begin()
        answer(question, "yesButton")
        const notice = findChild(window, "notice")
        verify(notice.visible)
        verify(notice.failed)
        compare(notice.text, "Not deleted: the job service did not accept it.")
        compare(page.jobID, "NOT-DELETED")
        verify(!page.gone)
    }

    function test_deletedCurrentJobLeavesNone() {
        openDetails("DELETE-CURRENT")
        makeCurrent("DELETE-CURRENT")
        answer(ask("deleteButton", "deleteQuestion"), "yesButton")
        tryVerify(() => JobManager.currentJob === null, aWhile)
        compare(page, jobsPage)
        verify(findChild(jobsPage.currentJobCard, "noCurrentJob").visible)
    }

    function test_questionGoesWithItsJob() {
        openDetails("GOES")
        const question = ask("deleteButton", "deleteQuestion")
        service.deleteJob("GOES")
        tryVerify(() => page.gone, aWhile)
        tryVerify(() => !question.visible, aWhile)
    }

    function test_archivingTheCurrentJobAsksFirst() {
        openDetails("ARCHIVE-CURRENT")
        makeCurrent("ARCHIVE-CURRENT")
        const question = ask("archiveButton", "archiveQuestion")
        compare(textIn(question.contentItem, "questionTitle"), "Archive the current job?")
        answer(question, "noButton")
        verify(!service.summary("ARCHIVE-CURRENT").archived)
        answer(ask("archiveButton", "archiveQuestion"), "yesButton")
        verify(service.summary("ARCHIVE-CURRENT").archived)
        tryVerify(() => JobManager.currentJob === null, aWhile)
        verify(JobTable.rowOf(jobsPage.archivedList.model, "ARCHIVE-CURRENT") >= 0)
        compare(findChild(page, "archiveButton").text, "Restore job")
    }

    function test_refusedRestoringSaysSo() {
        makeJob("STAYS-ARCHIVED")
        service.archiveJob("STAYS-ARCHIVED")
        tryVerify(() => JobTable.rowOf(jobsPage.archivedList.model, "STAYS-ARCHIVED") >= 0, aWhile)
        openJob("STAYS-ARCHIVED")
        page.detailsShown = true
        showFrame()
        outage.begin()
        mouseClick(findChild(page, "archiveButton"))
        compare(findChild(window, "notice").text, "Not changed: the job service did not accept it.")
        compare(findChild(page, "archiveButton").text, "Restore job")
    }
}
