import QtQuick 2.15
import JobManagerUi 1.0

import "PropertyTexts.js" as PropertyTexts

/// The properties of a test, for show: the service takes no edits of them, whatever their display info says.
Flow {
    id: properties

    /// The test, or null, and its job.
    property Test test: null
    property Job job: null

    /// The properties that this test has, each with its name, its label and its value.
    property var rows: []
    readonly property int columns: width >= 600 ? 2 : 1

    /// Reads the properties; only while the job's data are there.
    function read() {
        const infos = properties.job.testPropertyDisplayInfos
        const map = properties.test.optionalProperties
        const held = map.keys()
        const rows = properties.job.allDisplayableTestProperties.filter(
            name => held.includes(name) && infos[name].visible).map(
            name => ({ name: name, label: PropertyTexts.label(name, infos[name]), value: String(map[name]) }))
        // The list of names has no order of its own.
        properties.rows = rows.sort((a, b) => a.label.localeCompare(b.label))
    }

    spacing: Theme.margin
    visible: rows.length > 0

    Repeater {
        model: properties.rows
        delegate: DetailField {
            required property var modelData

            objectName: "property:" + modelData.name
            width: (properties.width + properties.spacing) / properties.columns - properties.spacing
            name: modelData.label
            value: modelData.value
        }
    }
}
