import QtQuick 2.15

/// The properties of a job as a form: a row for each, and how many are still open.
Rectangle {
    id: form

    required property PropertyFeed feed

    /// The person is to read this.
    signal told(string message, bool failed)

    implicitHeight: content.height + 2 * Theme.margin
    radius: Theme.radius
    color: Theme.card
    border.width: 1
    border.color: Theme.line

    Connections {
        target: form.feed

        function onRefused(name) {
            form.told(qsTr("Not taken by the job service: %1").arg(form.feed.label(name)), true)
        }
    }
    Column {
        id: content
        x: Theme.margin
        y: Theme.margin
        width: form.width - 2 * Theme.margin
        spacing: Theme.margin

        Item {
            width: content.width
            height: title.height

            PlainLabel {
                id: title
                text: qsTr("Properties")
                font.pixelSize: Theme.large
                font.bold: true
            }
            PlainLabel {
                objectName: "openProperties"
                anchors.right: parent.right
                anchors.baseline: title.baseline
                visible: form.feed.required > 0
                text: form.feed.open > 0 ? qsTr("%1 of %2 still open").arg(form.feed.open).arg(form.feed.required)
                                         : qsTr("All filled in")
                color: form.feed.open > 0 ? Theme.failed : Theme.done
                font.bold: true
            }
        }
        Flow {
            id: fields
            readonly property int columns: width >= 600 ? 2 : 1

            width: content.width
            spacing: Theme.margin

            Repeater {
                id: repeater
                model: form.feed.rows
                delegate: PropertyRow {
                    width: (fields.width + fields.spacing) / fields.columns - fields.spacing
                    feed: form.feed
                }
            }
        }
        PlainLabel {
            visible: form.feed.required > 0
            text: qsTr("* to be filled in")
            color: Theme.textQuiet
            font.pixelSize: Theme.small
        }
    }
}
