import QtQuick 2.15

import "PropertyTexts.js" as PropertyTexts

/// One property of a job: how it is shown, what it holds, and its edits.
QtObject {
    id: property

    required property string name
    required property PropertyFeed feed

    readonly property var info: feed.infos[name]
    readonly property string value: feed.values[name] || ""
    readonly property bool editable: info !== undefined && info.editable
    readonly property var validValues: info !== undefined ? info.validValues : []
    readonly property string label: feed.label(name) + (editable ? " *" : "")
    /// What went wrong with the last edit; empty if nothing did.
    property string fault: ""

    /// A value of the property as it is to be read.
    function textOf(value) {
        return PropertyTexts.valueText(property.info, value)
    }

    /// Gives the value to the service. One that cannot be given now is kept, lest it be lost with its page. Returns
    /// whether it was given.
    function write(value) {
        if (!property.feed.writable) {
            property.feed.keep(property.name, value)
            return false
        }
        property.fault = property.feed.write(property.name, value) ? "" : qsTr("Not taken")
        return true
    }
}
