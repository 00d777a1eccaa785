import QtQuick 2.15

/// One of several buttons of which one is chosen.
ActionButton {
    property bool chosen: false

    quiet: !chosen
}
