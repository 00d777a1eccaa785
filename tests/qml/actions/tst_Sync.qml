import QtQuick 2.15
import JobManagerUi 1.0

import "../screens"

Screen {
    name: "Sync"

    function test_syncIsAskedForAndShowsAsBusy() {
        const button = findChild(jobsPage.header, "syncButton")
        const width = button.width
        compare(button.text, "Sync")
        mouseClick(button)
        verify(JobManager.isSyncInProgress)
        compare(button.text, "Syncing…")
        verify(!button.enabled)
        verify(findChild(jobsPage.header, "busy").running)
        compare(button.width, width)
        tryVerify(() => !JobManager.isSyncInProgress, aWhile)
        compare(button.text, "Sync")
        verify(button.enabled)
    }
}
