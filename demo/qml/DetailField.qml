import QtQuick 2.15

/// A name and a value below it, which takes as many lines as it needs. Its width is whatever it is given.
Column {
    id: field

    property alias name: nameLabel.text
    property string value

    spacing: 1

    PlainLabel {
        id: nameLabel
        width: field.width
        color: Theme.textQuiet
        font.pixelSize: Theme.small
    }
    PlainLabel {
        objectName: "value"
        width: field.width
        text: field.value.length > 0 ? field.value : "\u2013"
        wrapMode: Text.Wrap
        elide: Text.ElideNone
        maximumLineCount: 100
        horizontalAlignment: Text.AlignLeft
    }
}
