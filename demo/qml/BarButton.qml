import QtQuick 2.15
import QtQuick.Controls 2.15

/// A button in the bar at the top of a page.
AbstractButton {
    id: button

    implicitHeight: Theme.barHeight
    implicitWidth: Math.max(Theme.touch, label.implicitWidth + 2 * Theme.margin)

    contentItem: PlainLabel {
        id: label
        text: button.text
        color: button.enabled ? Theme.barText : Theme.barTextQuiet
        horizontalAlignment: Text.AlignHCenter
    }
    background: Rectangle {
        color: button.down || button.visualFocus ? Theme.barPressed : Theme.bar
    }
}
