import QtQuick 2.15
import QtQuick.Controls 2.15

/// The strip at the lower end of a page with what is going on in words, and one thing to do about it.
ActionBar {
    id: bar

    property alias message: label.text
    property bool busy: false
    property bool failed: false
    /// What the button says; there is none without it.
    property alias action: button.text
    property alias actionEnabled: button.enabled

    /// The button was tapped.
    signal chosen()

    implicitHeight: Math.max(Theme.touch, label.implicitHeight) + 2 * Theme.gap

    PlainLabel {
        id: label
        objectName: "barMessage"
        anchors.left: parent.left
        anchors.right: indicator.left
        anchors.rightMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        color: bar.failed ? Theme.failed : Theme.text
        font.bold: bar.failed
        wrapMode: Text.Wrap
        maximumLineCount: 6
        horizontalAlignment: Text.AlignLeft
    }
    BusyIndicator {
        id: indicator
        width: Theme.touch
        height: Theme.touch
        anchors.right: button.visible ? button.left : parent.right
        anchors.rightMargin: button.visible ? Theme.gap : 0
        anchors.verticalCenter: parent.verticalCenter
        running: bar.busy
    }
    ActionButton {
        id: button
        objectName: "barButton"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: text.length > 0
        onClicked: bar.chosen()
    }
}
