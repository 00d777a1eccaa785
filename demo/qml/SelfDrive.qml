import QtQuick 2.15
import QtQuick.Controls 2.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// Goes through the screens of a window by itself, waits at each for what is to appear there, and leaves a numbered
/// picture of it. It changes a job over the service's own HTTP interface, as somebody else would, and sees that the
/// change shows where the person is looking. Ends the application: with 0, or with 1 if something did not appear.
Item {
    id: drive

    required property var window
    required property string folder

    /// How long to wait for what is to appear, in milliseconds.
    readonly property int patience: 10000
    /// What a screen needs to come to rest before its picture.
    readonly property int rest: 300

    property int stepIndex: -1
    property int pictures: 0
    property real deadline: 0
    property real restUntil: 0

    // What steps hand on to later ones.
    property string changedId: ""
    property string seenId: ""
    property real seenAt: 0
    property string changedBefore: ""
    property Test seenTest: null

    /// The one of the sample jobs that has the most tests.
    readonly property string largeJob: "WO-2026-004400"
    /// The job that is made on the way, and what it is made from.
    readonly property string newJob: "WO-2026-005001"
    readonly property string template: "Fibre acceptance"
    /// A job with a test that the instrument of the samples cannot run.
    readonly property string refusedJob: "WO-2026-004602"
    readonly property string refusedType: "leakage"

    readonly property var jobsPage: window.jobsPage
    readonly property var page: window.pages.currentItem
    readonly property var requiredList: jobsPage.requiredList
    readonly property var archivedList: jobsPage.archivedList

    // A step that is there `atOnce` does not last: its picture is taken without waiting for rest.
    readonly property var steps: [
        { name: "the required jobs", picture: "required",
          until: () => shows(requiredList, "jobNumber") },

        { name: "the middle of the list, with a job selected", picture: "scrolled",
          act: () => scrollToMiddle(),
          until: () => requiredList.view.contentY > 0 && selectedAt() >= 0 },

        { name: "a job that was changed in the service, in an unmoved list", picture: "changed",
          act: () => changeJob(),
          until: () => modifiedOn(changedId) > changedBefore && standsStill() },

        { name: "the changed job on top of the list", picture: "changed-on-top",
          act: () => requiredList.view.positionViewAtBeginning(),
          until: () => JobTable.idAt(requiredList.model, 0) === changedId },

        { name: "a job's own page with its tests", picture: "job",
          act: () => requiredList.choose(0),
          until: () => atRest() && page.jobID === changedId && shows(page.tests, "name") },

        { name: "what else there is to know of the job", picture: "job-details",
          act: () => page.detailsShown = true,
          until: () => shows(page, "progress") },

        { name: "the job in the archive", picture: "job-archived",
          act: () => page.toggleArchived(),
          until: () => JobTable.rowOf(archivedList.model, changedId) >= 0 },

        { name: "the job out of the archive again",
          act: () => page.toggleArchived(),
          until: () => JobTable.rowOf(requiredList.model, changedId) >= 0 },

        { name: "the archived jobs", picture: "archived",
          act: () => { page.finished(); jobsPage.tabIndex = 1 },
          until: () => atRest() && shows(archivedList, "jobNumber") },

        { name: "an archived job's page", picture: "archived-job",
          act: () => archivedList.choose(0),
          until: () => atRest() && page.jobID === JobTable.idAt(archivedList.model, 0)
                       && shows(page.tests, "name") },

        { name: "the lists again",
          act: () => { page.finished(); jobsPage.tabIndex = 0 },
          until: () => atRest() && page === jobsPage },

        { name: "the page of the job with the most tests, while they are being loaded", picture: "tests-loading",
          atOnce: true,
          act: () => window.showJob(largeJob, JobTable.jobAt(JobManager, JobTable.rowOf(JobManager, largeJob)),
                                    StackView.Immediate),
          until: () => page.jobID === largeJob && page.loading && shows(page, "loadingText") },

        { name: "its tests", picture: "tests",
          until: () => atRest() && page.tests.count > 400 && shows(page.tests, "status") },

        { name: "the middle of the tests", picture: "tests-scrolled",
          act: () => page.tests.scrollTo(page.tests.flickable.contentHeight / 2),
          until: () => shows(page.tests, "status") },

        { name: "a new result in an unmoved list", picture: "tests-new-result",
          act: () => changeTest(page.tests.rowsOnScreen()[2].test, "fail"),
          until: () => page.tests.flickable.contentY === seenAt && shows(window.contentItem, "noticeText")
                       && testRow(seenTest).status === "fail" },

        { name: "folded sections", picture: "tests-folded",
          act: () => {
              page.tests.startOver()
              page.tests.sections.filter(section => section.hasHeader).slice(0, 3).forEach(
                  section => page.tests.toggle(section.title))
          },
          until: () => page.tests.sections[0].folded && shows(page.tests, "status") },

        { name: "the completed tests", picture: "tests-completed",
          act: () => page.tools.filterChosen(TestList.TESTFILTER_COMPLETED),
          until: () => page.tests.count < 400 && statusesOnScreen().every(status => status.length > 0) },

        { name: "the open tests", picture: "tests-open",
          act: () => page.tools.filterChosen(TestList.TESTFILTER_INCOMPLETE),
          until: () => page.tests.count < 400 && statusesOnScreen().every(status => status.length === 0) },

        { name: "the tests at a location", picture: "tests-search",
          act: () => { page.tools.filterChosen(TestList.TESTFILTER_ALL); page.tools.searchText = "lane 1" },
          until: () => page.tests.count > 0 && page.tests.rowsOnScreen().every(
                       row => row.test.location.toLowerCase().includes("lane 1")) },

        { name: "no test at all", picture: "tests-none",
          act: () => page.tools.searchText = "nowhere",
          until: () => page.tests.count === 0 && shows(page.tests, "noTests") },

        { name: "the tests by location", picture: "tests-by-location",
          act: () => { page.tools.searchText = ""; page.tools.groupingChosen(TestGroupType.GROUPBY_LOCATION) },
          until: () => page.tests.groupType === TestGroupType.GROUPBY_LOCATION && shows(page.tests, "status") },

        { name: "the tests by type", picture: "tests-by-type",
          act: () => page.tools.groupingChosen(TestGroupType.GROUPBY_TEST_NAME),
          until: () => page.tests.groupType === TestGroupType.GROUPBY_TEST_NAME && shows(page.tests, "status") },

        { name: "the tests in the order of the job again",
          act: () => page.tools.groupingChosen(TestGroupType.DEFAULT_VIEW),
          until: () => page.tests.groupType === TestGroupType.DEFAULT_VIEW && shows(page.tests, "status") },

        { name: "a test's own page", picture: "test",
          act: () => openTest(test => test.testType !== "manual" && test.location !== "~"),
          until: () => atRest() && page.test === seenTest && shows(page, "status") },

        { name: "a new result on the test's page", picture: "test-new-result",
          act: () => changeTest(seenTest, "skipped"),
          until: () => page.details.status === "skipped" && shows(window.contentItem, "noticeText") },

        { name: "the list of tests again, where it was",
          act: () => page.finished(),
          until: () => atRest() && page.jobID === largeJob },

        { name: "a manual test's page", picture: "manual-test",
          act: () => openTest(test => test.testType === "manual"),
          until: () => atRest() && page.test === seenTest && shows(page, "prompt") },

        { name: "the list of tests once more",
          act: () => page.finished(),
          until: () => atRest() && page.jobID === largeJob },

        { name: "the lists in the end",
          act: () => page.finished(),
          until: () => atRest() && page === jobsPage },

        { name: "the properties of a job", picture: "properties",
          act: () => openProperties("WO-2026-004711"),
          until: () => atRest() && scrollToProperty("jobNumber") && shows(page, "openProperties")
                       && itemNamed(property("attributes/remark"), "input") !== null },

        { name: "a property that was filled in", picture: "property-written",
          act: () => typeProperty("attributes/splices", "24").accepted(),
          until: () => page.properties.values["attributes/splices"] === "24" && page.properties.open === 1 },

        { name: "a property in the wrong form", picture: "property-wrong",
          act: () => typeProperty("attributes/accessCode", "471"),
          until: () => shows(property("attributes/accessCode"), "fault") },

        { name: "a property that the service refuses", picture: "property-refused",
          act: () => {
              scrollToProperty("attributes/priority")
              itemNamed(property("attributes/priority"), "choice:low").clicked()
          },
          until: () => shows(property("attributes/priority"), "fault") && shows(window.contentItem, "noticeText")
                       && itemNamed(property("attributes/priority"), "choice:high").chosen },

        { name: "a property that the service altered, beside what is being typed", picture: "property-altered",
          act: () => typeProperty("attributes/cabinet", " kvz 13").accepted(),
          until: () => itemNamed(property("attributes/cabinet"), "input").text === "KVZ 13"
                       && itemNamed(property("attributes/accessCode"), "input").text === "471" },

        { name: "the lists after the properties",
          act: () => page.finished(),
          until: () => atRest() && page === jobsPage },

        { name: "the form for a new job", picture: "new-job",
          act: () => jobsPage.newJobWanted(),
          until: () => atRest() && page.loaded && page.templates.includes(template) },

        { name: "what a template prescribes", picture: "new-job-template",
          act: () => { page.choose(template); write("numberField", newJob) },
          until: () => page.numberOfTests > 0 && page.label.length > 0 },

        { name: "a number that is taken", picture: "new-job-taken",
          act: () => write("numberField", largeJob),
          until: () => page.numberTaken },

        { name: "the new job's own page", picture: "new-job-created",
          act: () => { write("numberField", newJob); page.create() },
          until: () => atRest() && page.jobID === newJob && page.current && shows(page.tests, "status") },

        { name: "a prompt that can be answered", picture: "prompt",
          act: () => openTest(test => test.testType === "manual"),
          until: () => atRest() && page.test === seenTest && shows(page, "prompt") },

        { name: "the answer", picture: "prompt-answered",
          act: () => itemNamed(page, "answer_yes").clicked(),
          until: () => page.details.answer === "yes" && page.details.status === "pass" },

        { name: "the new job's tests",
          act: () => page.finished(),
          until: () => atRest() && page.jobID === newJob },

        { name: "a test that can be launched", picture: "launch",
          act: () => openTest(test => test.testType !== "manual"),
          until: () => atRest() && page.test === seenTest && shows(page, "status") },

        { name: "the test being started", picture: "launch-starting", atOnce: true,
          act: () => itemNamed(page, "launchBar").launch(),
          until: () => JobManager.isTestLaunching },

        { name: "the running test", picture: "launch-running",
          until: () => itemNamed(page, "launchBar").running },

        { name: "the verdict", picture: "launch-finished",
          until: () => page.watch.finished && page.details.status.length > 0 },

        { name: "the new job again",
          act: () => page.finished(),
          until: () => atRest() && page.jobID === newJob },

        { name: "the new job set aside",
          act: () => page.currentJobWanted(null),
          until: () => !page.current && !JobManager.settingCurrentJob },

        { name: "the question before a job is deleted", picture: "delete-question",
          act: () => { page.detailsShown = true; itemNamed(page, "deleteButton").clicked() },
          until: () => itemNamed(everything(), "yesButton") !== null },

        { name: "the lists without the deleted job", picture: "deleted",
          act: () => itemNamed(everything(), "yesButton").clicked(),
          until: () => atRest() && page === jobsPage && JobTable.rowOf(JobManager, newJob) < 0 },

        { name: "a job with a test that the instrument cannot run",
          act: () => window.showJob(refusedJob, JobTable.jobAt(JobManager, JobTable.rowOf(JobManager, refusedJob))),
          until: () => atRest() && page.jobID === refusedJob && shows(page.tests, "status") },

        { name: "the job as the current one", picture: "job-current",
          act: () => page.currentJobWanted(page.job),
          until: () => page.current },

        { name: "the page of the test that the instrument cannot run",
          act: () => openTest(test => test.testType === refusedType),
          until: () => atRest() && page.test === seenTest },

        { name: "why it was not launched", picture: "launch-refused",
          act: () => itemNamed(page, "launchBar").launch(),
          until: () => itemNamed(page, "launchBar").failed },

        { name: "the lists behind it",
          act: () => window.pages.pop(null),
          until: () => atRest() && page === jobsPage },

        { name: "a sync under way", picture: "sync",
          act: () => JobManager.syncWithNimbrel(),
          until: () => JobManager.isSyncInProgress },

        { name: "the settings", picture: "settings",
          act: () => jobsPage.settingsWanted(),
          until: () => atRest() && shows(page, "title") && page.port === JobManager.restApiPort },

        { name: "the first page again", picture: "end",
          act: () => { page.finished(); jobsPage.tabIndex = 0 },
          until: () => atRest() && page === jobsPage }
    ]

    function atRest() {
        return !window.pages.busy
    }

    /// Whether there is a text of this name inside the item, with something in it and with room on the screen.
    function shows(item, name) {
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i]
            if (!child.visible)
                continue
            if (child.objectName === name && child.text.length > 0 && child.width > 0)
                return true
            if (shows(child, name))
                return true
        }
        return false
    }

    /// The item of this name inside another; null if there is none.
    function itemNamed(item, name) {
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i]
            const found = child.objectName === name ? child : itemNamed(child, name)
            if (found !== null)
                return found
        }
        return null
    }

    function openProperties(id) {
        window.showJob(id, JobTable.jobAt(JobManager, JobTable.rowOf(JobManager, id)), StackView.Immediate)
        page.detailsShown = true
    }

    /// The row of a property of the job whose page is open; null as long as there is none.
    function property(name) {
        return itemNamed(page, "property:" + name)
    }

    /// Has a property on the screen, if its row is there.
    function scrollToProperty(name) {
        const row = property(name)
        if (row === null)
            return false
        const flickable = itemNamed(page, "details").flickable
        const top = row.mapToItem(flickable.contentItem, 0, 0).y - 60
        flickable.contentY = Math.min(top, flickable.contentHeight - flickable.height)
        return true
    }

    /// Writes into a property as a person does, and returns the field, which is yet to be left.
    function typeProperty(name, text) {
        scrollToProperty(name)
        const input = itemNamed(property(name), "input")
        input.forceActiveFocus()
        input.text = text
        input.textEdited()
        return input
    }

    function modifiedOn(id) {
        const row = JobTable.rowOf(JobManager, id)
        return row < 0 ? "" : JobTable.valueAt(JobManager, row, JobTable.modifiedRole)
    }

    function scrollToMiddle() {
        const view = requiredList.view
        const row = Math.floor(requiredList.count / 2)
        requiredList.select(JobTable.idAt(requiredList.model, row))
        view.positionViewAtIndex(row, ListView.Center)
    }

    /// Where the selected row is on the screen.
    function selectedAt() {
        const view = requiredList.view
        const item = view.itemAtIndex(JobTable.rowOf(requiredList.model, requiredList.selectedId))
        return item === null ? -1 : item.y - view.contentY
    }

    function standsStill() {
        return requiredList.selectedId === seenId && selectedAt() === seenAt
    }

    /// Gives the last job of the list a new result, by which it goes to the top.
    function changeJob() {
        seenId = requiredList.selectedId
        seenAt = selectedAt()
        changedId = JobTable.idAt(requiredList.model, requiredList.count - 1)
        changedBefore = modifiedOn(changedId)
        putResult(changedId, "0", "pass")
    }

    /// The row of a test on the screen.
    function testRow(test) {
        return page.tests.rowsOnScreen().find(row => row.test === test)
    }

    function statusesOnScreen() {
        return page.tests.rowsOnScreen().map(row => row.status)
    }

    /// Gives a test of the large job a new result.
    function changeTest(test, status) {
        seenTest = test
        seenAt = page.tests ? page.tests.flickable.contentY : 0
        const location = test.locationIndex >= 0 ? "_" + test.locationIndex : ""
        putResult(largeJob, test.testIndex + location, status)
    }

    /// Opens the page of the first test of the list that fits.
    function openTest(fits) {
        const list = page.feed.list
        for (let row = 0; row < list.rowCount(); ++row) {
            const test = list.data(list.index(row, 0), TestList.Test)
            if (fits(test)) {
                seenTest = test
                page.tests.choose(test)
                return
            }
        }
    }

    /// The pages, and what stands over them.
    function everything() {
        let item = window.pages
        while (item.parent !== null)
            item = item.parent
        return item
    }

    /// Writes into a field of the page's form.
    function write(field, text) {
        itemNamed(page, field).text = text
    }

    function putResult(jobID, uiIndex, status) {
        const request = new XMLHttpRequest()
        request.onreadystatechange = () => {
            if (request.readyState === XMLHttpRequest.DONE && request.status !== 204)
                fail("an accepted change (the service answered " + request.status + ")")
        }
        request.open("PUT", "http://127.0.0.1:" + JobManager.restApiPort + "/api/v1/jobs/"
                     + encodeURIComponent(jobID) + "/tests/" + uiIndex + "/results")
        request.setRequestHeader("Content-Type", "application/json")
        request.send(JSON.stringify({ status: status, time: new Date().toISOString() }))
    }

    function nextStep() {
        ++stepIndex
        if (stepIndex === steps.length) {
            console.info("demo: " + pictures + " pictures in " + folder)
            end(0)
            return
        }
        deadline = Date.now() + patience
        restUntil = 0
        if (steps[stepIndex].act)
            steps[stepIndex].act()
        timer.start()
        if (steps[stepIndex].atOnce)
            look()
    }

    function look() {
        const step = steps[stepIndex]
        if (!step.until()) {
            restUntil = 0
            if (Date.now() > deadline)
                fail(step.name)
            return
        }
        if (restUntil === 0)
            restUntil = Date.now() + rest
        if (!step.atOnce && Date.now() < restUntil)
            return
        timer.stop()
        if (step.picture)
            takePicture(step.picture)
        else
            nextStep()
    }

    function takePicture(name) {
        ++pictures
        const file = folder + "/" + String(pictures).padStart(2, "0") + "-" + name + ".png"
        const taken = everything().grabToImage(result => {
            if (!result.saveToFile(file)) {
                fail("the file " + file)
                return
            }
            console.info("demo: " + file)
            nextStep()
        })
        if (!taken)
            fail("a picture of " + name)
    }

    function fail(what) {
        console.error("demo: did not appear in time: " + what)
        end(1)
    }

    function end(code) {
        timer.stop()
        Qt.exit(code)
    }

    Component.onCompleted: nextStep()

    Timer {
        id: timer
        interval: 50
        repeat: true
        onTriggered: drive.look()
    }
}
