import QtQuick 2.15
import QtQuick.Controls 2.15

/// A line of text that shows as it is, whatever it holds, and ends with an ellipsis where the room does.
Label {
    color: Theme.text
    font.pixelSize: Theme.medium
    textFormat: Text.PlainText
    elide: Text.ElideRight
    maximumLineCount: 1
    verticalAlignment: Text.AlignVCenter
}
