.pragma library

// How a property reads on the screens: what it is called, what its value says, and whether a text will do as one.
// `info` is the display info of the module.

/// The name of the attribute behind the name of a property.
function attributeName(name) {
    return name.slice(name.indexOf("/") + 1)
}

/// What a property is called. Fields of the job itself come without a label.
function label(name, info) {
    if (info && info.label.length > 0)
        return info.label
    switch (name) {
    case "customerName": return qsTr("Customer")
    case "typeName": return qsTr("Type")
    case "techId": return qsTr("Technician")
    case "contractorId": return qsTr("Contractor")
    case "location": return qsTr("Location")
    default: return attributeName(name)
    }
}

/// Whether the valid values begin as those of a yes or no do; others may follow.
function isYesOrNo(info) {
    return info !== undefined && info.validValues[0] === "true" && info.validValues[1] === "false"
}

/// A value of the property as it is to be read.
function valueText(info, value) {
    if (isYesOrNo(info) && value === "true")
        return qsTr("Yes")
    if (isYesOrNo(info) && value === "false")
        return qsTr("No")
    return value
}

/// A number is written with a point, as the service has it.
function isNumber(text) {
    return /^-?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][-+]?[0-9]+)?$/.test(text)
}

/// The pattern of a display info, if it has one; one that is no regular expression is passed over, as in the service.
function usablePattern(regex) {
    if (regex === undefined)
        return null
    try {
        return new RegExp(regex.source)
    } catch (error) {
        return null
    }
}
