import QtQuick 2.15
import JobManagerUi 1.0

/// Records the answer of a manual test. The job service takes it or refuses it at once; an answer that it took shows
/// in the test when the job has been read again, and waits here until then.
QtObject {
    id: request

    /// The manual test, or null.
    property Test test: null
    /// Whether the values of the test can be had at once: recording looks at the present answer first.
    property bool readable: false
    /// The answer that the test had when it was last read.
    property string answer: ""

    /// The answer that is on its way, empty if there is none.
    property string wanted: ""
    property bool sent: false
    property bool refused: false
    readonly property bool waiting: wanted.length > 0

    property bool accepted: false

    function record(answer) {
        request.refused = false
        request.sent = false
        request.wanted = answer === request.answer ? "" : answer
        request.send()
    }

    function send() {
        if (!request.waiting || request.sent || !request.readable || request.test === null)
            return
        request.sent = true
        request.accepted = false
        request.test.manualStepUserResponse = request.wanted
        if (!request.accepted) {
            request.refused = true
            request.wanted = ""
        }
    }

    onReadableChanged: send()
    onAnswerChanged: if (sent && answer === wanted) wanted = ""

    property Connections testConnections: Connections {
        target: request.test

        // The one sign of an accepted answer.
        function onManualStepUserResponseChanged() { request.accepted = true }
    }
    // Somebody else may have changed the answer meanwhile.
    property Timer patience: Timer {
        running: request.waiting && request.sent
        interval: 5000
        onTriggered: request.wanted = ""
    }
}
