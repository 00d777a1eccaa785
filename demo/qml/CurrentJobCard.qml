import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

/// The job that the technician works on, above all others; a line that says so if there is none.
AbstractButton {
    id: card

    /// The current job, or null.
    property Job job: null

    implicitHeight: job ? 84 : Theme.touch
    enabled: job !== null
    leftPadding: 1.5 * Theme.margin
    rightPadding: 1.5 * Theme.margin

    JobTexts {
        id: texts
        job: card.job
    }

    background: Rectangle {
        radius: Theme.radius
        color: card.down ? Theme.cardPressed : Theme.card
        border.width: card.job || card.visualFocus ? 2 : 1
        border.color: card.job ? Theme.accent : Theme.line
    }
    contentItem: Item {
        PlainLabel {
            objectName: "noCurrentJob"
            anchors.fill: parent
            visible: card.job === null
            text: qsTr("No current job")
            color: Theme.textQuiet
        }
        RowLayout {
            anchors.fill: parent
            spacing: 2 * Theme.gap
            visible: card.job !== null

            ColumnLayout {
                spacing: 1
                Layout.fillWidth: true
                Layout.preferredWidth: 300

                PlainLabel {
                    text: qsTr("Current job")
                    color: Theme.accent
                    font.pixelSize: Theme.small
                    font.bold: true
                }
                JobHeading {
                    label: texts.label
                    number: texts.number
                    Layout.fillWidth: true
                }
                PlainLabel {
                    objectName: "customer"
                    text: texts.type.length > 0 ? texts.customer + " \u2013 " + texts.type : texts.customer
                    horizontalAlignment: Text.AlignLeft
                    Layout.fillWidth: true
                }
            }
            ColumnLayout {
                spacing: 6
                Layout.preferredWidth: 200
                Layout.maximumWidth: 200

                PlainLabel {
                    objectName: "progress"
                    text: texts.progress
                    Layout.fillWidth: true
                }
                RequiredTestsBar {
                    required: texts.required
                    completed: texts.completed
                    implicitHeight: 10
                    Layout.fillWidth: true
                }
            }
            StateChip {
                text: texts.state
                Layout.maximumWidth: 150
            }
            PlainLabel {
                text: "\u203a"
                color: Theme.textQuiet
                font.pixelSize: Theme.title
            }
        }
    }
}
