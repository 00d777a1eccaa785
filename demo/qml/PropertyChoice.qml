import QtQuick 2.15

/// A property of which there are valid values: one button each.
Column {
    id: choice

    required property Property property
    /// What was tapped while it could not be written; nothing otherwise.
    property var wanted: undefined

    function choose(value) {
        choice.wanted = choice.property.write(value) ? undefined : value
    }

    spacing: 2

    Connections {
        target: choice.property.feed

        function onFresh() {
            if (choice.wanted !== undefined)
                choice.choose(choice.wanted)
        }
    }
    FieldLabel {
        width: choice.width
        name: choice.property.label
        fault: choice.property.fault
    }
    Flow {
        width: choice.width
        spacing: Theme.gap

        Repeater {
            model: choice.property.validValues
            delegate: ChoiceButton {
                required property string modelData

                objectName: "choice:" + modelData
                text: choice.property.textOf(modelData)
                chosen: modelData === (choice.wanted === undefined ? choice.property.value : choice.wanted)
                onClicked: choice.choose(modelData)
            }
        }
    }
}
