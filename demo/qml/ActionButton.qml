import QtQuick 2.15
import QtQuick.Controls 2.15

/// A button that a finger hits. `quiet` is for what stands beside a main action, `danger` for what destroys.
AbstractButton {
    id: button

    property bool quiet: false
    property bool danger: false

    readonly property color colour: button.danger ? Theme.failed : Theme.accent
    readonly property color pressedColour: button.danger ? Theme.failedPressed : Theme.accentPressed

    implicitHeight: Theme.touch
    implicitWidth: Math.max(Theme.touch, label.implicitWidth + 4 * Theme.gap)
    opacity: enabled ? 1 : 0.45

    contentItem: PlainLabel {
        id: label
        text: button.text
        color: button.quiet ? button.colour : Theme.barText
        font.bold: true
        horizontalAlignment: Text.AlignHCenter
    }
    background: Rectangle {
        radius: Theme.radius
        color: button.quiet ? (button.down ? Theme.cardPressed : Theme.card)
                            : (button.down ? button.pressedColour : button.colour)
        border.width: button.quiet || button.visualFocus ? (button.visualFocus ? 3 : 1) : 0
        border.color: button.quiet ? button.colour : Theme.text
    }
}
