import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

/// What of a job's tests is shown, and in which order: by status, by location as one types, grouped.
Rectangle {
    id: tools

    property int filter: TestList.TESTFILTER_ALL
    property alias searchText: searchField.text

    readonly property var groupings: [
        { key: TestGroupType.DEFAULT_VIEW, name: qsTr("Job order") },
        { key: TestGroupType.GROUPBY_LOCATION, name: qsTr("Location") },
        { key: TestGroupType.GROUPBY_TEST_NAME, name: qsTr("Test type") }
    ]

    /// The person wants to see the tests with this status.
    signal filterChosen(int filter)
    /// The person wants the tests grouped like this.
    signal groupingChosen(int groupType)

    implicitHeight: Theme.touch + 2 * Theme.gap
    color: Theme.card

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.margin
        spacing: Theme.gap

        RowLayout {
            spacing: 0
            Layout.fillWidth: false

            Repeater {
                model: [
                    { key: TestList.TESTFILTER_ALL, name: qsTr("All") },
                    { key: TestList.TESTFILTER_COMPLETED, name: qsTr("Completed") },
                    { key: TestList.TESTFILTER_INCOMPLETE, name: qsTr("Open") }
                ]
                delegate: ChoiceButton {
                    required property var modelData

                    objectName: "filter" + modelData.key
                    text: modelData.name
                    chosen: tools.filter === modelData.key
                    onClicked: tools.filterChosen(modelData.key)
                }
            }
        }
        TextField {
            id: searchField
            objectName: "searchField"
            implicitHeight: Theme.touch
            font.pixelSize: Theme.medium
            selectByMouse: true
            inputMethodHints: Qt.ImhNoPredictiveText
            rightPadding: clearButton.width
            Layout.fillWidth: true

            PlainLabel {
                objectName: "searchHint"
                anchors.fill: parent
                anchors.leftMargin: searchField.leftPadding
                visible: searchField.text.length === 0 && searchField.preeditText.length === 0
                text: qsTr("Search location")
                color: Theme.textQuiet
            }
            AbstractButton {
                id: clearButton
                objectName: "clearSearch"
                anchors.right: parent.right
                width: Theme.touch
                height: Theme.touch
                visible: searchField.text.length > 0
                contentItem: PlainLabel {
                    text: "\u00d7"
                    font.pixelSize: Theme.title
                    horizontalAlignment: Text.AlignHCenter
                }
                onClicked: searchField.clear()
            }
        }
        ActionButton {
            id: groupButton
            objectName: "groupButton"
            quiet: true
            text: {
                const current = tools.groupings.find(each => each.key === JobManager.groupType)
                return qsTr("Group: %1").arg(current ? current.name : qsTr("none"))
            }
            onClicked: groupings.open()

            Popup {
                id: groupings
                objectName: "groupings"
                y: groupButton.height
                x: groupButton.width - width
                padding: Theme.gap

                contentItem: ColumnLayout {
                    spacing: Theme.gap

                    Repeater {
                        model: tools.groupings
                        delegate: ChoiceButton {
                            required property var modelData

                            objectName: "grouping" + modelData.key
                            text: modelData.name
                            chosen: JobManager.groupType === modelData.key
                            Layout.fillWidth: true
                            Layout.minimumWidth: groupButton.width - 2 * Theme.gap
                            onClicked: {
                                groupings.close()
                                tools.groupingChosen(modelData.key)
                            }
                        }
                    }
                }
                background: Rectangle {
                    radius: Theme.radius
                    color: Theme.card
                    border.width: 1
                    border.color: Theme.line
                }
            }
        }
    }
}
