import QtQml 2.15
import JobManagerUi 1.0

// Wrong on purpose: the check of the QML files must refuse each marked line, and no other.
QtObject {
    id: root

    property Job job: JobManager.currentJob
    property Test test
    property TestList tests
    property PartialModel section: PartialModel {
        model: root.tests
        startIndex: 2
        testsCount: 3
    }

    property string rightNumber: root.job.jobNumber
    property string wrongNumber: root.job.jobNumbr // refused
    property string rightStatus: root.test.testStatus
    property string wrongStatus: root.test.status // refused
    property int rightFilter: TestList.TESTFILTER_COMPLETED
    property int wrongFilter: TestList.TESTFILTER_COMPLETE // refused
    property int rightCount: root.tests.testsCount
    property int wrongCount: root.tests.count // refused
    property int rightStart: root.section.startIndex
    property int wrongStart: root.section.start // refused
    property int rightGrouping: TestGroupType.GROUPBY_LOCATION
    property int wrongGrouping: TestGroupType.LOCATION // refused
    property bool rightFlag: JobManager.fetchingJobList
    property bool wrongFlag: JobManager.fetching // refused

    function rightCall() {
        JobManager.updateDataFromAPI()
    }

    function wrongCall() {
        JobManager.queryChangeCountSlot() // refused
    }

    function wrongName() {
        return JobManagr.fetchingJobList // refused
    }

    function rightForwarder() {
        return root.job.getTestNamebyTestIndex(1)
    }

    function wrongForwarder() {
        return root.job.getTestNameByTestIndex(1) // refused
    }
}
