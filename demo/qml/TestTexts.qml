import QtQuick 2.15
import JobManagerUi 1.0

/// What the screens show of a test, and something fitting while there is none.
QtObject {
    id: texts

    /// The test, or null.
    property Test test: null
    /// Whether values that a test looks up anew on each read can be had at once.
    property bool readable: false

    readonly property string name: test ? test.testTypeDisplayName : ""
    readonly property bool hasLocation: test !== null && test.location !== "~"
    readonly property string location: hasLocation ? test.location : ""
    readonly property string time: test && !isNaN(test.testTime) ? Qt.formatDateTime(test.testTime, "yyyy-MM-dd hh:mm")
                                                                 : ""
    readonly property string requirement: {
        if (test === null)
            return ""
        switch (test.testRequired) {
        case TestRequirement.TEST_REQUIRED: return qsTr("Required")
        case TestRequirement.TEST_ADDED: return qsTr("Added on site")
        default: return qsTr("Optional")
        }
    }
    /// Why the test was not launched the last time, as the technician is to read it; empty if it was.
    readonly property string error: test ? test.errorMessage : ""
    readonly property bool required: test !== null && test.testRequired === TestRequirement.TEST_REQUIRED

    /// The status as it was last readable, and whether it has been.
    property string status: ""
    property bool statusKnown: false

    /// The looked-up values can be had now, and may have changed.
    signal fresh()

    function look() {
        if (texts.test !== null && texts.readable)
            texts.fresh()
    }

    onTestChanged: look()
    onReadableChanged: look()
    onFresh: {
        status = test.testStatus
        statusKnown = true
    }

    property Connections testConnections: Connections {
        target: texts.test

        // The last signal of an update.
        function onTestConfigurationMapChanged() { texts.look() }
    }
}
