import QtQuick 2.15

/// A short message over the lower end of a page; it goes by itself, or with a tap. What has failed stands out, and
/// stays longer.
Rectangle {
    id: notice

    readonly property alias text: label.text
    property bool failed: false

    function show(message, failed = false) {
        label.text = message
        notice.failed = failed
        timer.restart()
    }

    implicitWidth: Math.min(label.implicitWidth + 4 * Theme.gap, parent.width - 2 * Theme.margin)
    implicitHeight: Theme.touch
    radius: Theme.radius
    color: notice.failed ? Theme.failed : Theme.notice
    visible: timer.running

    PlainLabel {
        id: label
        objectName: "noticeText"
        anchors.fill: parent
        anchors.leftMargin: 2 * Theme.gap
        anchors.rightMargin: 2 * Theme.gap
        color: Theme.barText
        horizontalAlignment: Text.AlignHCenter
    }
    MouseArea {
        anchors.fill: parent
        onClicked: timer.stop()
    }
    Timer {
        id: timer
        interval: notice.failed ? 6000 : 4000
    }
}
