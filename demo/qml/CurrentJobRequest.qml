import QtQuick 2.15
import JobManagerUi 1.0

/// Asks the job service for another current job, and sees what came of it. The module only sends the request: that it
/// was refused shows in nothing but the current job, which is still the one of before when all is done.
QtObject {
    id: request

    property bool waiting: false
    /// The job that is to be current; null for none.
    property Job wanted: null
    property bool wantsNone: false

    /// The current job is not the wanted one.
    signal refused(bool wantsNone)

    /// Makes the job current; null makes none of them current. A request that is under way goes first, and alone.
    function ask(job) {
        if (JobManager.settingCurrentJob)
            return
        request.wanted = job
        request.wantsNone = job === null
        request.waiting = request.wantsNone ? JobManager.unsetCurrentJob() : JobManager.setCurrentJob(job)
    }

    /// The rows that tell come with the end of the request, or with the end of a fetch that it has started.
    function settle() {
        if (!request.waiting || JobManager.settingCurrentJob || JobManager.fetchingJobList)
            return
        request.waiting = false
        if (JobManager.currentJob === request.wanted)
            return
        request.refused(request.wantsNone)
        // A change by somebody else, which may be why it was refused, can have been taken for this one: then the rows
        // came from what the module already knew.
        JobManager.updateDataFromAPI(true)
    }

    property Connections managerConnections: Connections {
        target: JobManager

        function onSettingCurrentJobChanged() { request.settle() }
        function onFetchingJobListChanged() { request.settle() }
    }
}
