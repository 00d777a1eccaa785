import QtQuick 2.15

/// What a manual test asks of the technician, in which kind of answer, and the answer that there is.
Rectangle {
    id: prompt

    property alias prompt: promptText.text
    property string answerType: ""
    property var options: []
    property string answer: ""

    readonly property string kind: {
        switch (prompt.answerType) {
        case "yesNo": return qsTr("Yes or no")
        case "number": return qsTr("A number")
        case "text": return qsTr("A text")
        case "choice": return qsTr("One of: %1").arg(prompt.options.join(", "))
        case "info": return qsTr("Nothing to answer")
        default: return prompt.answerType
        }
    }

    implicitHeight: column.height + 2 * Theme.margin
    radius: Theme.radius
    color: Theme.section

    Column {
        id: column
        x: Theme.margin
        y: Theme.margin
        width: prompt.width - 2 * Theme.margin
        spacing: Theme.gap

        PlainLabel {
            id: promptText
            objectName: "prompt"
            width: column.width
            visible: text.length > 0
            font.pixelSize: Theme.large
            font.bold: true
            wrapMode: Text.Wrap
            elide: Text.ElideNone
            maximumLineCount: 100
            horizontalAlignment: Text.AlignLeft
        }
        DetailField {
            objectName: "answerKind"
            width: column.width
            name: qsTr("Kind of answer")
            value: prompt.kind
        }
        DetailField {
            objectName: "answer"
            width: column.width
            name: qsTr("Answer")
            value: prompt.answer
        }
    }
}
