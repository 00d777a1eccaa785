import QtQuick 2.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// Goes through the screens of a window by itself, waits at each for what is to appear there, and leaves a numbered
/// picture of it. It changes a job over the service's own HTTP interface, as somebody else would, and sees that the
/// change shows where the person is looking. Ends the application: with 0, or with 1 if something did not appear.
Item {
    id: drive

    required property QtObject window
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

    readonly property var jobsPage: window.jobsPage
    readonly property var page: window.pages.currentItem
    readonly property var requiredList: jobsPage.requiredList
    readonly property var archivedList: jobsPage.archivedList

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

        { name: "a job's own page", picture: "job",
          act: () => requiredList.choose(0),
          until: () => atRest() && page.jobID === changedId && shows(page, "progress") },

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
                       && shows(page, "progress") },

        { name: "the settings", picture: "settings",
          act: () => { page.finished(); jobsPage.settingsWanted() },
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
        const request = new XMLHttpRequest()
        request.onreadystatechange = () => {
            if (request.readyState === XMLHttpRequest.DONE && request.status !== 204)
                fail("an accepted change (the service answered " + request.status + ")")
        }
        request.open("PUT", "http://127.0.0.1:" + JobManager.restApiPort + "/api/v1/jobs/"
                     + encodeURIComponent(changedId) + "/tests/0/results")
        request.setRequestHeader("Content-Type", "application/json")
        request.send(JSON.stringify({ status: "pass", time: new Date().toISOString() }))
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
        if (Date.now() < restUntil)
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
        const taken = window.pages.grabToImage(result => {
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
