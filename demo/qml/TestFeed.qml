import QtQuick 2.15
import JobManagerUi 1.0

/// The tests of one job for the pages that show them, and when their values may be read.
///
/// With each full update the module lets go of what it has fetched and takes the job's tests away until they have
/// been fetched anew. The list and its tests are the same objects afterwards, so the pages go on showing them, but
/// what a test looks up anew on each read would block the screen meanwhile: such values are to be read only while
/// `readable`.
QtObject {
    id: feed

    /// The job, or null.
    property Job job: null

    /// The list of tests, also over an update; null until it has been fetched for the first time.
    property TestList list: null
    readonly property bool readable: feed.fetched !== null && !JobManager.fetchingJobList
    readonly property bool busy: JobManager.fetchingJobList || (feed.job !== null && feed.job.fetchInProgress)

    /// Which tests the person wants to see.
    property int filter: TestList.TESTFILTER_ALL
    /// The text that the locations must hold; taken as it is, not as a pattern.
    property string searchText: ""

    /// Whether only some of the tests are wanted.
    readonly property bool searching: feed.searchPattern.length > 0 || feed.filter !== TestList.TESTFILTER_ALL

    /// Groups the tests of all jobs, at once or as soon as that does not block.
    function group(groupType) {
        feed.wantedGroupType = groupType
        feed.apply()
    }

    // The first read starts the fetch, so nothing else may stand in this binding.
    readonly property TestList fetched: feed.job ? feed.job.tests : null
    property int wantedGroupType: -1
    readonly property string searchPattern: feed.searchText.trim().replace(/[$()*+.?[\]\\^{|}]/g, "\\$&")

    function apply() {
        if (!feed.readable)
            return
        // A reload drops the search.
        feed.fetched.searchRegExpStr = feed.searchPattern
        feed.fetched.testFilter = feed.filter
        if (feed.wantedGroupType >= 0)
            JobManager.groupType = feed.wantedGroupType
        feed.wantedGroupType = -1
    }

    onFetchedChanged: if (fetched !== null) list = fetched
    onReadableChanged: apply()
    onFilterChanged: apply()
    onSearchPatternChanged: apply()

    property Connections listConnections: Connections {
        target: feed.list

        // Behind the reset, whose other receivers have yet to hear of it.
        function onModelReset() { Qt.callLater(feed.apply) }
    }
}
