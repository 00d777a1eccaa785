import QtQuick 2.15
import QtQuick.Controls 2.15

/// Asks before something is done that is not easily taken back. Nothing else on the screen answers until it is answered;
/// a tap beside it, or the way back, means no.
Popup {
    id: question

    property string title
    property string text
    /// What the two answers are called.
    property string yes
    property string no: qsTr("Cancel")
    /// Whether something is destroyed by a yes.
    property bool danger: true

    /// The person wants it done.
    signal confirmed()

    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 2)
    width: Math.min(520, parent.width - 4 * Theme.margin)
    padding: 2 * Theme.margin
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside

    background: Rectangle {
        radius: Theme.radius
        color: Theme.card
    }
    Overlay.modal: Rectangle { color: Theme.dim }

    contentItem: Column {
        spacing: Theme.margin

        PlainLabel {
            objectName: "questionTitle"
            width: question.availableWidth
            text: question.title
            font.pixelSize: Theme.title
            font.bold: true
            wrapMode: Text.Wrap
            maximumLineCount: 3
            horizontalAlignment: Text.AlignLeft
        }
        PlainLabel {
            objectName: "questionText"
            width: question.availableWidth
            text: question.text
            wrapMode: Text.Wrap
            maximumLineCount: 6
            horizontalAlignment: Text.AlignLeft
        }
        Row {
            anchors.right: parent.right
            topPadding: Theme.gap
            spacing: Theme.margin

            ActionButton {
                objectName: "noButton"
                quiet: true
                text: question.no
                onClicked: question.close()
            }
            ActionButton {
                objectName: "yesButton"
                danger: question.danger
                text: question.yes
                onClicked: {
                    question.close()
                    question.confirmed()
                }
            }
        }
    }
}
