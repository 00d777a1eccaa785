import QtQuick 2.15
import JobManagerUi 1.0

/// What the screens show of a job, and something fitting while there is none: a job ends when it leaves the service,
/// also while a screen shows it.
QtObject {
    /// The job, or null.
    property Job job: null

    readonly property string number: job ? job.jobNumber : ""
    readonly property string label: job ? job.workOrderLabel : ""
    readonly property string customer: job ? job.customerName : ""
    readonly property string type: job ? job.typeName : ""
    readonly property string state: job ? job.state : ""
    readonly property string managedBy: job ? job.managedBy : ""
    readonly property string team: job ? job.teamTechIds.join(", ") : ""
    readonly property bool archived: job ? job.isArchived : false
    readonly property int required: job ? job.totalNumberOfRequiredTests : 0
    readonly property int completed: job ? job.numberOfCompletedRequiredTests : 0
    /// The progress in short, where room is scarce, and in full.
    readonly property string progress: required > 0 ? qsTr("%1 of %2 tests").arg(completed).arg(required)
                                                    : qsTr("No required tests")
    readonly property string fullProgress: required > 0 ? qsTr("Required tests: %1 of %2").arg(completed).arg(required)
                                                        : progress
}
