import QtQuick 2.15
import QtQuick.Layouts 1.15

/// The bar at the top of a page: a way back where there is one, a title with a line below, and the page's own buttons.
Rectangle {
    id: bar

    property alias title: titleLabel.text
    property alias subtitle: subtitleLabel.text
    property bool canGoBack: false
    default property alias buttons: buttonRow.data

    signal back()

    implicitHeight: Theme.barHeight
    color: Theme.bar

    RowLayout {
        anchors.fill: parent
        spacing: 0

        BarButton {
            objectName: "backButton"
            visible: bar.canGoBack
            text: "\u2039 " + qsTr("Back")
            onClicked: bar.back()
        }
        ColumnLayout {
            spacing: 0
            Layout.leftMargin: bar.canGoBack ? 0 : Theme.margin
            Layout.alignment: Qt.AlignVCenter

            PlainLabel {
                id: titleLabel
                objectName: "title"
                color: Theme.barText
                font.pixelSize: Theme.title
                font.bold: true
                Layout.fillWidth: true
            }
            PlainLabel {
                id: subtitleLabel
                objectName: "subtitle"
                visible: text.length > 0
                color: Theme.barTextQuiet
                font.pixelSize: Theme.small
                Layout.fillWidth: true
            }
        }
        RowLayout {
            id: buttonRow
            spacing: 0
            Layout.fillWidth: false
        }
    }
}
