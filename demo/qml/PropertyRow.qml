import QtQuick 2.15

/// One property of a job: for show, or as a line to write in, or as a choice.
Loader {
    id: row

    required property string name
    property PropertyFeed feed: null

    readonly property Property property: Property {
        name: row.name
        feed: row.feed
    }

    objectName: "property:" + name
    // A job may have hundreds of properties, for which the screen would stand still.
    asynchronous: true
    height: item ? item.implicitHeight : Theme.touch + 2 * Theme.gap
    sourceComponent: {
        if (!row.property.editable)
            return readOnlyField
        return row.property.validValues.length > 0 ? choice : text
    }

    Component {
        id: readOnlyField

        DetailField {
            name: row.property.label
            value: row.property.textOf(row.property.value)
        }
    }
    Component {
        id: choice

        PropertyChoice { property: row.property }
    }
    Component {
        id: text

        PropertyText { property: row.property }
    }
}
