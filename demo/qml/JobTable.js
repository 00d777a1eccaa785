.pragma library

// What the module's list models have in common: one row a job, and these roles.

const idRole = Qt.UserRole + 1
const jobRole = Qt.UserRole + 2
const modifiedRole = Qt.UserRole + 3

function valueAt(model, row, role) {
    return model.data(model.index(row, 0), role)
}

function idAt(model, row) {
    return valueAt(model, row, idRole)
}

/// The job object of a row; null for a row that the model does not have.
function jobAt(model, row) {
    return valueAt(model, row, jobRole) || null
}

/// The row of the job with this id; -1 if the model has none.
function rowOf(model, id) {
    const found = model.match(model.index(0, 0), idRole, id, 1, Qt.MatchExactly)
    return found.length > 0 ? found[0].row : -1
}

/// The id of a job that is known by its object; empty if the model does not have it.
function idOf(model, job) {
    for (let row = 0; row < model.rowCount(); ++row) {
        if (jobAt(model, row) === job)
            return idAt(model, row)
    }
    return ""
}

/// The service's time text as a time of this place; a text that is no time stays as it is.
function timeText(modifiedOn) {
    const time = new Date(modifiedOn)
    return isNaN(time) ? modifiedOn : Qt.formatDateTime(time, "yyyy-MM-dd hh:mm")
}
