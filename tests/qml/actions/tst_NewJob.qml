import QtQuick 2.15
import JobManagerUi 1.0

import "../screens"
import "../../../demo/qml/JobTable.js" as JobTable

Screen {
    name: "NewJob"

    function openForm() {
        mouseClick(findChild(jobsPage.header, "newJobButton"))
        tryVerify(() => page !== jobsPage && page.loaded && !window.pages.busy, aWhile)
    }

    function input(name) {
        return findChild(findChild(page, name), "input")
    }

    function type(name, text) {
        input(name).clear()
        mouseClick(input(name))
        for (const letter of text)
            keyClick(letter)
    }

    /// Chooses a template as a finger does.
    function choose(template) {
        const list = page.templateList
        const row = page.templates.indexOf(template)
        verify(row >= 0)
        list.positionViewAtIndex(row, ListView.Center)
        showFrame()
        mouseClick(list.itemAtIndex(row))
        compare(page.template, template)
    }

    function createButton() {
        return findChild(page, "barButton")
    }

    function message() {
        return textIn(findChild(page, "createBar"), "barMessage")
    }

    /// Waits for the page of the new job.
    function showsJob(id) {
        tryVerify(() => page.jobID === id && !window.pages.busy, aWhile)
        compare(window.pages.depth, 2)
        verify(page.current)
        compare(JobManager.currentJob, page.job)
    }

    function test_bareJobIsCreatedAndCurrentAndItsPageOpens() {
        openForm()
        type("numberField", "BARE-1")
        compare(message(), "The new job becomes the current one.")
        mouseClick(createButton())
        showsJob("BARE-1")
        compare(textIn(page.header, "title"), "BARE-1")
        tryVerify(() => page.feed.readable, aWhile)
        compare(findChild(page, "noTests").text, "This job has no tests")
        const document = service.document("BARE-1")
        compare(document.details.techInfo.techId, "T-1031")
    }

    function test_pageOfAJobThatIsCreatedDuringAFetchOpensToo() {
        openForm()
        type("numberField", "MEANWHILE-1")
        // Somebody else's change, of which the module hears as it creates the job: it reads the jobs at the same time.
        service.createJob("MEANWHILE-2")
        mouseClick(createButton())
        verify(page.waiting)
        compare(message(), "Creating the job…")
        verify(!createButton().enabled)
        showsJob("MEANWHILE-1")
    }

    function test_technicianIsTheOneWhoIsLoggedIn() {
        openForm()
        compare(input("techField").text, "T-1031")
    }

    function test_anotherTechnicianCanBeWritten() {
        openForm()
        type("numberField", "BARE-2")
        type("techField", "T-9")
        mouseClick(createButton())
        showsJob("BARE-2")
        compare(service.document("BARE-2").details.techInfo.techId, "T-9")
    }

    function test_blanksRoundTheNumberDoNotCount() {
        openForm()
        type("numberField", "  BARE-3 ")
        mouseClick(createButton())
        showsJob("BARE-3")
    }

    function test_numberMustBeThere_data() {
        return [{ tag: "nothing", text: "" }, { tag: "blanks", text: "  " }]
    }

    function test_numberMustBeThere(data) {
        openForm()
        type("numberField", data.text)
        verify(!createButton().enabled)
    }

    function test_numberThatIsTakenIsToldAsOneTypes() {
        openForm()
        type("numberField", "WO-2026-00476")
        compare(textIn(findChild(page, "numberField"), "fault"), "")
        verify(createButton().enabled)
        keyClick("1")
        compare(textIn(findChild(page, "numberField"), "fault"), "There is a job with this number")
        verify(!createButton().enabled)
    }

    function test_numberThatIsTakenMeanwhileIsRefused() {
        openForm()
        type("numberField", "DUPLICATE")
        JobManager.pauseAutomaticUpdates = true
        // A job that comes while the list is fetched would show with the next change only.
        tryVerify(() => !JobManager.fetchingJobList, aWhile)
        service.createJob("DUPLICATE")
        mouseClick(createButton())
        verify(!page.waiting)
        verify(findChild(page, "createBar").failed)
        // The rows come anew, since the module has noticed the other job on the way.
        tryVerify(() => message() === "Not confirmed: there is a job with this number now. Look whether it is yours.", aWhile)
        compare(textIn(findChild(page, "numberField"), "fault"), "There is a job with this number")
        compare(JobManager.currentJob, null)
    }

    function test_refusalIsForgottenWithTheNumber() {
        openForm()
        type("numberField", "REFUSED-1")
        outage.begin()
        mouseClick(createButton())
        compare(message(), "Not created: the job service did not accept it.")
        verify(findChild(page, "createBar").failed)
        type("numberField", "REFUSED-2")
        compare(message(), "The new job becomes the current one.")
        verify(!findChild(page, "createBar").failed)
    }

    function test_jobIsToBeSyncedUnlessThePersonSaysNo_data() {
        return [{ tag: "yes", sync: true }, { tag: "no", sync: false }]
    }

    function test_jobIsToBeSyncedUnlessThePersonSaysNo(data) {
        const id = "SYNC-" + data.tag
        openForm()
        type("numberField", id)
        if (!data.sync)
            mouseClick(findChild(page, "syncSwitch"))
        mouseClick(createButton())
        showsJob(id)
        compare(service.document(id).details.syncToNimbrel, data.sync)
    }

    function test_templateTellsItsLabelAndItsTests() {
        openForm()
        choose("Ethernet activation")
        compare(textIn(findChild(page, "label"), "value"), "Activation")
        compare(textIn(findChild(page, "tests"), "value"), "4")
        compare(findChild(page, "numberField").name, "Activation")
        mouseClick(findChild(page, "noTemplate"))
        compare(textIn(findChild(page, "label"), "value"), "–")
        compare(textIn(findChild(page, "tests"), "value"), "0")
        compare(findChild(page, "numberField").name, "Job number")
    }

    function test_jobFromATemplateHasItsTests() {
        openForm()
        choose("Ethernet activation")
        type("numberField", "MADE-1")
        mouseClick(createButton())
        showsJob("MADE-1")
        tryVerify(() => page.tests.count === 6, aWhile)
        compare(service.summary("MADE-1").workOrderLabel, "Activation")
    }

    function test_listOfLocationsNeedsATemplate() {
        openForm()
        verify(!findChild(page, "locationsField").enabled)
        choose("Ethernet activation")
        verify(findChild(page, "locationsField").enabled)
    }

    function test_listOfLocationsGivesEachTestItsLocations() {
        openForm()
        choose("Ethernet activation")
        type("numberField", "LOCATED-1")
        type("locationsField", "fibres-1-12.txt")
        mouseClick(createButton())
        showsJob("LOCATED-1")
        tryVerify(() => page.tests.count === 4 * 12, aWhile)
        compare(textIn(page.tests.rowsOnScreen()[0], "location"), "Fibre 1")
    }

    function test_unknownListOfLocationsIsRefused() {
        openForm()
        choose("Ethernet activation")
        type("numberField", "NO-LOCATIONS")
        type("locationsField", "nowhere.txt")
        mouseClick(createButton())
        compare(message(), "Not created: the job service did not accept it. Is there such a list of locations?")
        verify(findChild(page, "createBar").failed)
        verify(!service.jobIds().includes("NO-LOCATIONS"))
        compare(JobManager.currentJob, null)
    }
}
