import QtQuick 2.15
import QtQuick.Layouts 1.15

/// A name and a value below it, which takes as many lines as it needs.
ColumnLayout {
    id: field

    property alias name: nameLabel.text
    property string value

    spacing: 1

    PlainLabel {
        id: nameLabel
        color: Theme.textQuiet
        font.pixelSize: Theme.small
        Layout.fillWidth: true
    }
    PlainLabel {
        objectName: "value"
        text: field.value.length > 0 ? field.value : "\u2013"
        wrapMode: Text.Wrap
        elide: Text.ElideNone
        maximumLineCount: 100
        horizontalAlignment: Text.AlignLeft
        Layout.fillWidth: true
    }
}
