import QtQuick 2.15

import "JobTable.js" as JobTable

/// Keeps what a person looks at where it is while the model of a list of jobs is reset: a list view by itself keeps
/// the numbers of its rows, which then stand for other jobs.
///
/// The scroll position is kept by the jobs that are on the screen, the selection by the selected job's id. A list
/// that stands at its beginning stays there, so that what comes in on top is seen. Of a selected job that has left,
/// the one that took its row is selected instead.
QtObject {
    id: keeper

    /// The list. Its model is not to be exchanged.
    required property ListView view

    /// The id of the selected job; empty if none is.
    property string selectedId: ""

    property var place: null

    /// Selects the job with this id; the empty id selects none.
    function select(id) {
        keeper.selectedId = id
        keeper.view.currentIndex = id.length > 0 ? JobTable.rowOf(keeper.view.model, id) : -1
    }

    function remember() {
        const view = keeper.view
        const seen = []
        const first = Math.max(0, view.indexAt(0, Math.max(view.contentY, view.originY)))
        for (let row = first; row < view.count; ++row) {
            const item = view.itemAtIndex(row)
            if (item === null || item.y >= view.contentY + view.height)
                break
            seen.push({ id: JobTable.idAt(view.model, row), offset: item.y - view.contentY })
        }
        keeper.place = { atBeginning: view.atYBeginning, seen: seen, contentY: view.contentY,
                         selectedRow: view.currentIndex }
    }

    /// The job to hold on to, with its row in the new model. One that still has its neighbour comes first: a job that
    /// has changed goes to the top of the list, and the screen must not go there with it.
    function anchor(seen) {
        const rows = seen.map(entry => JobTable.rowOf(keeper.view.model, entry.id))
        let found = rows.findIndex((row, i) => row >= 0 && i + 1 < rows.length && rows[i + 1] === row + 1)
        if (found < 0)
            found = rows.findIndex(row => row >= 0)
        return found < 0 ? null : { row: rows[found], offset: seen[found].offset }
    }

    function scrollTo(contentY) {
        const view = keeper.view
        const last = view.originY + Math.max(0, view.contentHeight - view.height)
        view.contentY = Math.max(view.originY, Math.min(contentY, last))
    }

    function restoreScroll() {
        const view = keeper.view
        if (keeper.place.atBeginning) {
            view.positionViewAtBeginning()
            return
        }
        const anchor = keeper.anchor(keeper.place.seen)
        if (anchor === null) {
            keeper.scrollTo(keeper.place.contentY)
            return
        }
        view.positionViewAtIndex(anchor.row, ListView.Contain)
        keeper.scrollTo(view.itemAtIndex(anchor.row).y - anchor.offset)
    }

    function restoreSelection() {
        if (keeper.selectedId.length === 0)
            return
        const view = keeper.view
        let row = JobTable.rowOf(view.model, keeper.selectedId)
        if (row < 0)
            row = Math.min(keeper.place.selectedRow, view.count - 1)
        keeper.selectedId = row < 0 ? "" : JobTable.idAt(view.model, row)
        view.currentIndex = row
    }

    function restore() {
        if (keeper.view.count > 0) {
            keeper.view.forceLayout()
            keeper.restoreSelection()
            keeper.restoreScroll()
        }
        keeper.place = null
    }

    property Connections modelConnections: Connections {
        target: keeper.view.model

        function onModelAboutToBeReset() { keeper.remember() }
    }

    property Connections viewConnections: Connections {
        target: keeper.view

        // The view tells its count after each reset when it has taken the new rows over, also an unchanged one.
        function onCountChanged() {
            if (keeper.place !== null)
                keeper.restore()
        }

        function onCurrentIndexChanged() {
            if (keeper.place === null && keeper.view.currentIndex >= 0)
                keeper.selectedId = JobTable.idAt(keeper.view.model, keeper.view.currentIndex)
        }
    }
}
