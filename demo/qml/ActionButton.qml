import QtQuick 2.15
import QtQuick.Controls 2.15

/// A button that a finger hits. `quiet` is for what stands beside a main action.
AbstractButton {
    id: button

    property bool quiet: false

    implicitHeight: Theme.touch
    implicitWidth: Math.max(Theme.touch, label.implicitWidth + 4 * Theme.gap)
    opacity: enabled ? 1 : 0.45

    contentItem: PlainLabel {
        id: label
        text: button.text
        color: button.quiet ? Theme.accent : Theme.barText
        font.bold: true
        horizontalAlignment: Text.AlignHCenter
    }
    background: Rectangle {
        radius: Theme.radius
        color: button.quiet ? (button.down ? Theme.cardPressed : Theme.card)
                            : (button.down ? Theme.accentPressed : Theme.accent)
        border.width: button.quiet || button.visualFocus ? (button.visualFocus ? 3 : 1) : 0
        border.color: button.quiet ? Theme.accent : Theme.text
    }
}
