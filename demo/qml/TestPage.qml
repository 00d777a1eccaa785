import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

/// One test, or one location of a test: what there is to do, how, and what came of it. It is done here, too.
PageFrame {
    id: page

    // Given when the page is pushed. Not required properties: a StackView never completes a page that has one.
    /// The test; null from the moment it is gone from its job.
    property Test test: null
    /// The tests of its job.
    property TestFeed feed: null
    /// What became of the last launch.
    property LaunchWatch watch: null

    readonly property bool gone: test === null
    readonly property bool current: feed !== null && feed.job !== null && JobManager.currentJob === feed.job
    readonly property alias details: details

    /// The person wants this job to be the current one.
    signal currentJobWanted(QtObject job)

    title: gone ? qsTr("Test") : details.name
    subtitle: details.location

    TestDetails {
        id: details
        test: page.test
        readable: page.feed !== null && page.feed.readable
        onFresh: properties.read()
    }
    Connections {
        target: page.feed ? page.feed.job : null

        function onNewTestResultsReceived() { page.told(qsTr("New test results"), false) }
    }
    AnswerRequest {
        id: answerRequest
        test: page.test
        readable: details.readable
        answer: details.answer
    }
    Timer {
        running: page.gone
        interval: 3000
        onTriggered: page.finished()
    }

    Flickable {
        id: flickable
        anchors.top: parent.top
        anchors.bottom: launchBar.top
        width: parent.width
        clip: true
        contentHeight: card.height + 2 * Theme.margin
        boundsBehavior: Flickable.StopAtBounds
        visible: !page.gone
        ScrollBar.vertical: ScrollBar { width: 10 }

        Rectangle {
            id: card
            x: Theme.margin
            y: Theme.margin
            width: flickable.width - 2 * Theme.margin
            height: content.height + 2 * Theme.margin
            radius: Theme.radius
            color: Theme.card
            border.width: 1
            border.color: Theme.line

            // Positioners and not layouts, whose heights go in circles where a text takes several lines.
            Column {
                id: content
                x: Theme.margin
                y: Theme.margin
                width: card.width - 2 * Theme.margin
                spacing: Theme.margin

                RowLayout {
                    width: content.width
                    spacing: 2 * Theme.gap

                    TestStatusChip {
                        status: details.status
                        running: launchBar.running
                        visible: details.statusKnown
                        Layout.maximumWidth: 240
                    }
                    PlainLabel {
                        objectName: "time"
                        text: details.time.length > 0 || launchBar.running ? details.time : qsTr("Not run yet")
                        Layout.fillWidth: true
                    }
                    PlainLabel {
                        objectName: "requirement"
                        text: details.requirement
                        color: Theme.textQuiet
                    }
                }
                ManualPrompt {
                    objectName: "manualPrompt"
                    width: content.width
                    visible: details.manual
                    prompt: details.prompt
                    answerType: details.answerType
                    options: details.options
                    answer: details.answer
                    pendingAnswer: answerRequest.wanted
                    answerable: page.current
                    onAnswered: answerRequest.record(answer)
                }
                DetailField {
                    objectName: "description"
                    width: content.width
                    name: qsTr("Description")
                    value: details.description
                }
                DetailField {
                    objectName: "site"
                    width: content.width
                    name: qsTr("Site")
                    value: details.site
                }
                DetailField {
                    objectName: "configuration"
                    width: content.width
                    name: qsTr("Configuration")
                    value: details.configuration.join("\n")
                }
                TestProperties {
                    id: properties
                    objectName: "properties"
                    width: content.width
                    test: page.test
                    job: page.feed ? page.feed.job : null
                }
                DetailField {
                    objectName: "guide"
                    width: content.width
                    visible: details.guide.length > 0
                    name: qsTr("Guide")
                    value: details.guide
                }
            }
        }
    }
    EmptyState {
        objectName: "goneText"
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.margin
        visible: page.gone
        text: qsTr("This test is gone: its job has it no longer.")
    }
    LaunchBar {
        id: launchBar
        objectName: "launchBar"
        anchors.bottom: parent.bottom
        width: parent.width
        visible: !page.gone
        test: page.test
        manual: details.manual
        status: details.status
        error: details.error
        readable: details.readable
        current: page.current
        watch: page.watch
        answerRequest: answerRequest
        onCurrentJobWanted: page.currentJobWanted(page.feed.job)
    }
}
