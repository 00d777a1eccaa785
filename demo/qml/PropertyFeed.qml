import QtQml.Models 2.15
import QtQuick 2.15
import JobManagerUi 1.0

import "PropertyTexts.js" as PropertyTexts

/// The properties of one job for the form that shows and edits them.
///
/// With each full update the module takes them away until the job has been fetched anew. Here they stay as they were
/// meanwhile, and the rows stay the same ones, so that what is being typed in one survives whatever happens to the
/// others.
QtObject {
    id: feed

    /// The job, or null.
    property Job job: null

    /// One row a property, in order, with its name.
    readonly property ListModel rows: ListModel {}
    /// The display infos and the values, by name.
    property var infos: ({})
    property var values: ({})
    /// Whether a value can be written now.
    readonly property bool writable: feed.map !== null && !JobManager.fetchingJobList

    /// How many values the technician is to fill in, and how many of these are still missing. The module counts at
    /// each update; what was written here since then is on top of that.
    property int required: 0
    readonly property int open: feed.openAtUpdate + feed.openedSince

    /// What was to be written while nothing could be, by name.
    property var kept: ({})

    /// The properties were read anew.
    signal fresh()
    /// The service did not take a value. Its own one is read anew, and shows with the next `fresh`.
    signal refused(string name)

    // The first read starts the fetch.
    readonly property QtObject map: feed.job ? feed.job.optionalProperties : null
    // The map of the last count; null again when it is gone.
    property QtObject countedMap: null
    property int openAtUpdate: 0
    property int openedSince: 0
    property bool accepted: false

    function label(name) {
        return PropertyTexts.label(name, feed.infos[name])
    }

    /// Remembers a value that is to be written once that can be.
    function keep(name, value) {
        feed.kept[name] = value
    }

    /// The value that was kept is no longer to be written.
    function takeBack(name) {
        delete feed.kept[name]
    }

    /// Writes a value. Returns whether the service took it. Only while `writable`.
    function write(name, value) {
        feed.takeBack(name)
        // A value that is held already is no edit, and nobody is asked.
        feed.accepted = true
        feed.map[name] = value
        if (feed.accepted) {
            feed.count(name, value)
            feed.values = Object.assign({}, feed.values, { [name]: value })
        } else {
            feed.refused(name)
            // Not now: the map must not go while it tells of the edit.
            Qt.callLater(feed.readAnew)
        }
        return feed.accepted
    }

    function count(name, value) {
        const wasOpen = feed.values[name] === ""
        const isOpen = value === ""
        if (wasOpen !== isOpen)
            feed.openedSince += isOpen ? 1 : -1
    }

    function readAnew() {
        if (feed.job !== null)
            feed.job.updateDataFromAPI()
    }

    function refresh() {
        if (!feed.writable)
            return
        const names = feed.job.allDisplayableJobProperties
        const values = {}
        names.forEach(name => values[name] = feed.valueOf(name))
        feed.infos = feed.job.jobPropertyDisplayInfos
        feed.values = values
        feed.takeCount()
        feed.setRows(names)
        feed.fresh()
    }

    /// The job's own fields are no optional properties, and no part of the map.
    function valueOf(name) {
        const value = feed.map[name]
        const known = value !== undefined && value !== null ? value : feed.job[name]
        return known === undefined || known === null ? "" : String(known)
    }

    /// The count is one of the map: the same map was counted already.
    function takeCount() {
        if (feed.countedMap === feed.map)
            return
        feed.countedMap = feed.map
        feed.required = feed.job.totalNumberOfRequiredAttributes
        feed.openAtUpdate = feed.job.numberOfIncompleteRequiredAttributes
        feed.openedSince = 0
    }

    /// Makes the rows those of these names, and keeps every row whose name stays.
    function setRows(names) {
        names.forEach((name, place) => {
            let row = place
            while (row < feed.rows.count && feed.rows.get(row).name !== name)
                ++row
            if (row === feed.rows.count)
                feed.rows.insert(place, { name: name })
            else if (row !== place)
                feed.rows.move(row, place, 1)
        })
        if (feed.rows.count > names.length)
            feed.rows.remove(names.length, feed.rows.count - names.length)
    }

    onWritableChanged: Qt.callLater(refresh)

    property Connections jobConnections: Connections {
        target: feed.job

        // Behind the update, whose other signals have yet to come.
        function onOptionalPropertiesChanged() { Qt.callLater(feed.refresh) }
        function onOptionalPropertyValueChanged(valueAccepted) { feed.accepted = valueAccepted }
    }
}
