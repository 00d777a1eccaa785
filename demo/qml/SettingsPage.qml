import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

/// What the front end lets a person set: live updates, the grouping of tests, the port of the job service.
PageFrame {
    id: page

    // The module tells no change of its port, so the page keeps what it read last.
    property int port: JobManager.restApiPort

    function usePort(port) {
        JobManager.restApiPort = port
        page.port = JobManager.restApiPort
    }

    title: qsTr("Settings")

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.margin

        SettingCard {
            name: qsTr("Updates")
            description: qsTr("The lists follow the job service by themselves")

            ChoiceButton {
                objectName: "liveButton"
                text: qsTr("Live")
                chosen: !JobManager.pauseAutomaticUpdates
                onClicked: JobManager.pauseAutomaticUpdates = false
            }
            ChoiceButton {
                objectName: "pausedButton"
                text: qsTr("Paused")
                chosen: JobManager.pauseAutomaticUpdates
                onClicked: JobManager.pauseAutomaticUpdates = true
            }
            ActionButton {
                objectName: "refreshButton"
                quiet: true
                text: qsTr("Refresh now")
                enabled: !JobManager.fetchingJobList
                onClicked: JobManager.updateDataFromAPI(true)
            }
        }
        SettingCard {
            name: qsTr("Group tests")
            description: qsTr("Stored in the job service, for all screens")

            Repeater {
                model: [
                    { key: TestGroupType.NONE, name: qsTr("Not") },
                    { key: TestGroupType.DEFAULT_VIEW, name: qsTr("As in the job") },
                    { key: TestGroupType.GROUPBY_LOCATION, name: qsTr("By location") },
                    { key: TestGroupType.GROUPBY_TEST_NAME, name: qsTr("By test") }
                ]
                delegate: ChoiceButton {
                    required property var modelData

                    objectName: "groupType" + modelData.key
                    text: modelData.name
                    chosen: JobManager.groupType === modelData.key
                    onClicked: JobManager.groupType = modelData.key
                }
            }
        }
        SettingCard {
            name: qsTr("Job service")
            description: qsTr("Port on this instrument, now %1").arg(page.port)

            TextField {
                id: portField
                objectName: "portField"
                implicitHeight: Theme.touch
                implicitWidth: 120
                font.pixelSize: Theme.medium
                inputMethodHints: Qt.ImhDigitsOnly
                text: page.port
                validator: IntValidator { bottom: 1; top: 65535 }
                onAccepted: page.usePort(Number(text))
            }
            ActionButton {
                objectName: "usePortButton"
                text: qsTr("Use")
                enabled: portField.acceptableInput
                onClicked: page.usePort(Number(portField.text))
            }
        }
        Item { Layout.fillHeight: true }
    }
}
