import QtQuick 2.15
import JobManagerUi 1.0

import "PropertyTexts.js" as PropertyTexts

/// A property to be written as a text or a number. What is typed is checked as it is typed, and goes to the service
/// with the return key or when the field is left; until then nothing takes it away.
FormField {
    id: field

    required property Property property

    readonly property string value: property.value
    readonly property var info: property.info
    readonly property bool isNumber: info !== undefined && info.type === PropertyType.DOUBLE
    /// The pattern for the whole text; null if there is none that can be used.
    readonly property var pattern: info === undefined ? null : PropertyTexts.usablePattern(info.regex)
    /// The text is not the service's, and has not been given to it.
    property bool edited: false
    /// The field was left, or ended with the return key, and the text could not be given to the service yet.
    property bool waiting: false
    /// What the service held when the edit began.
    property string valueBefore: ""

    readonly property string textFault: {
        if (!edited || text.length === 0)
            return ""
        if (isNumber && !PropertyTexts.isNumber(text))
            return qsTr("No number")
        return pattern !== null && !checked.acceptableInput ? qsTr("Not in the right form") : ""
    }

    function commit() {
        if (!field.edited || field.textFault.length > 0)
            return
        // The outcome of the write shows the service's value, unless the field is being edited.
        field.edited = !field.property.feed.writable
        field.waiting = field.edited
        field.property.write(field.text)
    }

    function showValue() {
        if (!field.edited)
            field.text = field.value
        field.edited = field.text !== field.value
    }

    name: property.label
    fault: {
        if (textFault.length > 0)
            return textFault
        return edited && value !== valueBefore ? qsTr("Meanwhile: %1").arg(value) : property.fault
    }
    input.inputMethodHints: isNumber ? Qt.ImhFormattedNumbersOnly : Qt.ImhNoPredictiveText
    onValueChanged: showValue()
    onAccepted: commit()
    onVisibleChanged: if (!visible) commit()
    Component.onCompleted: showValue()

    Connections {
        target: field.input

        function onTextEdited() {
            if (!field.edited)
                field.valueBefore = field.value
            field.edited = field.text !== field.value
            field.waiting = false
            field.property.feed.takeBack(field.property.name)
            field.property.fault = ""
        }
        function onActiveFocusChanged() {
            if (!field.input.activeFocus)
                field.commit()
        }
    }
    Connections {
        target: field.property.feed

        function onFresh() {
            if (field.waiting)
                field.commit()
            field.showValue()
            // The service holds what was to be written.
            if (!field.edited)
                field.property.feed.takeBack(field.property.name)
        }
    }
    // Asks the pattern about the text without keeping anybody from typing.
    TextInput {
        id: checked
        visible: false
        text: field.text
        validator: field.pattern !== null ? validator : null
    }
    RegExpValidator {
        id: validator
        regExp: field.pattern !== null ? field.pattern : /.*/
    }
}
