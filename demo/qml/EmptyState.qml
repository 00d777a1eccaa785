import QtQuick 2.15

/// What stands in a list that has no rows.
PlainLabel {
    color: Theme.textQuiet
    font.pixelSize: Theme.large
    horizontalAlignment: Text.AlignHCenter
    wrapMode: Text.Wrap
    maximumLineCount: 3
}
