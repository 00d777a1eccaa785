import QtQuick 2.15
import JobManagerUi 1.0

import "../screens"

Screen {
    name: "Launch"

    // Of the template that the jobs of these tests are made from.
    readonly property string manualTest: "0"
    readonly property string firstTest: "1"
    readonly property string otherTest: "2_0"

    property int jobs: 0

    function bar() {
        return findChild(page, "launchBar")
    }

    function button() {
        return findChild(bar(), "barButton")
    }

    function message() {
        return textIn(bar(), "barMessage")
    }

    /// Makes a job with tests, which is the current one, and opens its page.
    function openNewJob() {
        const id = "LAUNCH-" + ++jobs
        mouseClick(findChild(jobsPage.header, "newJobButton"))
        tryVerify(() => page.loaded && !window.pages.busy, aWhile)
        findChild(page, "numberField").text = id
        page.template = "Fibre acceptance"
        mouseClick(findChild(page, "barButton"))
        tryVerify(() => page.jobID === id && page.current && page.feed.readable && !window.pages.busy, aWhile)
        showFrame()
        return id
    }

    function goBack() {
        const left = page
        mouseClick(findChild(page.header, "backButton"))
        tryVerify(() => page !== left && !window.pages.busy, aWhile)
    }

    function launch() {
        verify(button().enabled)
        mouseClick(button())
    }

    function waitForVerdict() {
        tryVerify(() => message().startsWith("Finished: "), aWhile)
    }

    function test_launchedTestIsBusyAndComesToAVerdict() {
        openNewJob()
        tapTest(firstTest)
        compare(button().text, "Launch test")
        compare(textIn(page, "status"), "open")
        launch()
        compare(message(), "Starting the test…")
        verify(bar().busy)
        verify(!button().enabled)
        tryVerify(() => message() === "Running. The result shows here when there is one.", aWhile)
        verify(!JobManager.isTestLaunching)
        verify(bar().busy)
        compare(textIn(page, "status"), "running")
        waitForVerdict()
        verify(!bar().busy)
        verify(["pass", "fail"].includes(textIn(page, "status")))
        compare(message(), "Finished: " + textIn(page, "status"))
        verify(textIn(page, "time") !== "Not run yet")
    }

    function test_runningTestShowsInTheList() {
        openNewJob()
        tapTest(firstTest)
        launch()
        tryVerify(() => bar().running, aWhile)
        goBack()
        compare(textIn(testRow(firstTest), "status"), "running")
        compare(textIn(testRow(otherTest), "status"), "open")
        tryVerify(() => ["pass", "fail"].includes(testRow(firstTest).status), aWhile)
        tapTest(firstTest)
        waitForVerdict()
    }

    function test_refusedLaunchShowsTheSentenceForTheTechnician() {
        openNewJob()
        tapTest(firstTest)
        launch()
        tryVerify(() => bar().running, aWhile)
        goBack()
        tapTest(otherTest)
        launch()
        tryVerify(() => bar().failed, aWhile)
        compare(message(), "Another test is still running. Wait until it has finished.")
        verify(!bar().busy)
        verify(button().enabled)
        goBack()
        compare(textIn(testRow(otherTest), "time"), "Not started")
    }

    function test_testThatTheInstrumentCannotRunIsRefused_data() {
        return [{ tag: "module", id: "WO-2026-004602", uiIndex: "2",
                  sentence: "Test requires Leakage 900 module. Ensure the module is properly attached" },
                { tag: "system software", id: "WO-2026-004730", uiIndex: "6",
                  sentence: "Test requires system software version 25.1" }]
    }

    function test_testThatTheInstrumentCannotRunIsRefused(data) {
        service.setActiveJob(data.id)
        tryVerify(() => JobManager.currentJob !== null, aWhile)
        openJob(data.id)
        tapTest(data.uiIndex)
        const status = page.details.status
        launch()
        tryVerify(() => bar().failed, aWhile)
        compare(message(), data.sentence)
        compare(page.details.status, status)
    }

    function test_launchThatIsAcceptedTakesTheOldSentenceAway() {
        openNewJob()
        tapTest(otherTest)
        page.test.errorMessage = "Insufficient Power. Turn off a running application"
        verify(bar().failed)
        launch()
        compare(message(), "Starting the test…")
        tryVerify(() => bar().running, aWhile)
        verify(!bar().failed)
        waitForVerdict()
    }

    function test_launchThatTheServiceDoesNotAnswerFailedToRun() {
        openNewJob()
        tapTest(firstTest)
        outage.begin()
        launch()
        tryVerify(() => bar().failed, aWhile)
        compare(message(), "Test failed to run")
    }

    function test_launchIsOfferedOnTheCurrentJobAlone() {
        const id = openNewJob()
        service.setActiveJob("")
        tryVerify(() => !page.current, aWhile)
        tapTest(firstTest)
        compare(message(), "Tests are launched on the current job alone.")
        compare(button().text, "Make current")
        launch()
        tryVerify(() => page.current, aWhile)
        compare(button().text, "Launch test")
        compare(message(), "")
    }

    function test_manualStepIsNotLaunched() {
        openNewJob()
        tapTest(manualTest)
        verify(!button().visible)
    }

    function test_launchDuringAFetchFollowsIt() {
        openNewJob()
        tapTest(firstTest)
        JobManager.updateDataFromAPI(true)
        verify(!page.feed.readable)
        launch()
        compare(message(), "Starting the test…")
        verify(!JobManager.isTestLaunching)
        waitForVerdict()
    }

    function test_jobThatGoesTakesItsRunningTestAlong() {
        const id = openNewJob()
        tapTest(firstTest)
        launch()
        tryVerify(() => bar().running, aWhile)
        service.deleteJob(id)
        tryVerify(() => page.gone, aWhile)
        tryVerify(() => page === jobsPage, aWhile)
    }

    function test_testThatWasCutOffWithTheServiceCanBeLaunchedAgain() {
        openNewJob()
        tapTest(firstTest)
        launch()
        tryVerify(() => bar().running, aWhile)
        outage.begin()
        verify(outage.end())
        compare(textIn(page, "status"), "running")
        launch()
        waitForVerdict()
    }
}
