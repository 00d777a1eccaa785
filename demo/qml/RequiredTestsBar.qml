import QtQuick 2.15

/// How many of the required tests are complete, as a bar. Nothing shows for a job that requires none.
Rectangle {
    id: bar

    property int required: 0
    property int completed: 0
    readonly property bool complete: required > 0 && completed >= required

    implicitHeight: 8
    radius: height / 2
    color: Theme.track
    visible: required > 0

    Rectangle {
        objectName: "fill"
        width: bar.required > 0 ? bar.width * Math.min(1, bar.completed / bar.required) : 0
        height: bar.height
        radius: bar.radius
        color: bar.complete ? Theme.done : Theme.accent
    }
}
