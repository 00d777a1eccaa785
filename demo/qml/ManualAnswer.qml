import QtQuick 2.15
import QtQuick.Controls 2.15

/// How a manual test is answered: by one of some buttons, or by a text.
Column {
    id: control

    property string answerType: ""
    property var options: []
    /// The answer that there is, or is about to be.
    property string answer: ""

    readonly property var choices: {
        switch (control.answerType) {
        case "yesNo": return [{ value: "yes", name: qsTr("Yes") }, { value: "no", name: qsTr("No") }]
        case "info": return [{ value: "done", name: qsTr("Done") }]
        case "choice": return control.options.map(option => ({ value: option, name: option }))
        default: return []
        }
    }
    readonly property bool typed: choices.length === 0

    /// The person answers this.
    signal answered(string answer)

    onAnswerChanged: field.text = answer

    Flow {
        width: control.width
        spacing: Theme.gap
        visible: !control.typed

        Repeater {
            model: control.choices
            delegate: ChoiceButton {
                required property var modelData

                objectName: "answer_" + modelData.value
                width: Math.min(Math.max(implicitWidth, 120), control.width)
                text: modelData.name
                chosen: modelData.value === control.answer
                onClicked: control.answered(modelData.value)
            }
        }
    }
    Row {
        width: control.width
        spacing: Theme.gap
        visible: control.typed

        TextField {
            id: field
            objectName: "answerField"
            width: (control.answerType === "number" ? 160 : control.width - saveButton.width - Theme.gap)
            height: Theme.touch
            font.pixelSize: Theme.medium
            selectByMouse: true
            text: control.answer
            inputMethodHints: control.answerType === "number" ? Qt.ImhFormattedNumbersOnly : Qt.ImhNone
            validator: control.answerType === "number" ? number : null
            onAccepted: if (saveButton.enabled) saveButton.clicked()

            RegularExpressionValidator {
                id: number
                regularExpression: /[-+]?[0-9]+([.,][0-9]+)?/
            }
        }
        ActionButton {
            id: saveButton
            objectName: "saveAnswer"
            text: qsTr("Save")
            enabled: field.acceptableInput && field.text.length > 0 && field.text !== control.answer
            onClicked: control.answered(field.text)
        }
    }
}
