import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"

Screen {
    name: "SettingsPage"

    function openSettings() {
        mouseClick(findChild(jobsPage, "settingsButton"))
        tryVerify(() => page !== jobsPage && !window.pages.busy, aWhile)
    }

    function test_updatesCanBePausedAndGoOn() {
        openSettings()
        mouseClick(findChild(page, "pausedButton"))
        verify(JobManager.pauseAutomaticUpdates)
        compare(jobsPage.subtitle, "Updates are paused")
        // A fetch that is still running would bring the list of before.
        tryVerify(() => !JobManager.fetchingJobList, aWhile)
        service.createJob("WHILE-PAUSED")
        mouseClick(findChild(page, "liveButton"))
        verify(!JobManager.pauseAutomaticUpdates)
        tryVerify(() => idsOf(JobManager).includes("WHILE-PAUSED"), aWhile)
    }

    function test_refreshLooksForChangesWhilePaused() {
        openSettings()
        JobManager.pauseAutomaticUpdates = true
        tryVerify(() => findChild(page, "refreshButton").enabled, aWhile)
        service.createJob("REFRESHED")
        mouseClick(findChild(page, "refreshButton"))
        tryVerify(() => idsOf(JobManager).includes("REFRESHED"), aWhile)
    }

    function test_chosenGroupingIsTheOneInUse() {
        openSettings()
        mouseClick(findChild(page, "groupType" + TestGroupType.GROUPBY_LOCATION))
        compare(JobManager.groupType, TestGroupType.GROUPBY_LOCATION)
        verify(findChild(page, "groupType" + TestGroupType.GROUPBY_LOCATION).chosen)
        verify(!findChild(page, "groupType" + TestGroupType.DEFAULT_VIEW).chosen)
    }

    function test_anotherPortIsUsed() {
        openSettings()
        compare(JobManager.restApiPort, 8082)
        findChild(page, "portField").text = "8083"
        mouseClick(findChild(page, "usePortButton"))
        compare(JobManager.restApiPort, 8083)
        compare(page.port, 8083)
        tryVerify(() => JobManager.rowCount() === 0 && !JobManager.fetchingJobList, aWhile)
        findChild(page, "portField").text = "8082"
        mouseClick(findChild(page, "usePortButton"))
        compare(JobManager.restApiPort, 8082)
        tryVerify(() => idsOf(JobManager).length === service.jobIds().length, aWhile)
    }

    function test_whatIsNoPortCannotBeUsed_data() {
        return [{ tag: "empty", text: "" }, { tag: "zero", text: "0" }, { tag: "too large", text: "65536" }]
    }

    function test_whatIsNoPortCannotBeUsed(data) {
        openSettings()
        findChild(page, "portField").text = data.text
        verify(!findChild(page, "usePortButton").enabled)
    }
}
