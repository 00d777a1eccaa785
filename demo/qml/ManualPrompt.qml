import QtQuick 2.15

/// What a manual test asks of the technician, the answer that there is, and how to answer where that is possible.
Rectangle {
    id: prompt

    property alias prompt: promptText.text
    property string answerType: ""
    property var options: []
    /// The answer that there is.
    property string answer: ""
    /// The answer that is being recorded; empty if none is.
    property string pendingAnswer: ""
    property bool answerable: false

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

    /// The person answers this.
    signal answered(string answer)

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
        ManualAnswer {
            objectName: "manualAnswer"
            width: column.width
            visible: prompt.answerable
            answerType: prompt.answerType
            options: prompt.options
            answer: prompt.pendingAnswer.length > 0 ? prompt.pendingAnswer : prompt.answer
            onAnswered: prompt.answered(answer)
        }
        DetailField {
            objectName: "answerKind"
            width: column.width
            visible: !prompt.answerable
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
