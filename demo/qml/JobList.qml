import QtQuick 2.15
import QtQuick.Controls 2.15

import "JobTable.js" as JobTable

/// The jobs of one of the module's views, in its order. Keeps scroll position and selection while jobs come and go.
Item {
    id: list

    property alias model: view.model
    property alias view: view
    property alias selectedId: keeper.selectedId
    readonly property alias count: view.count

    /// What stands here while there are no jobs.
    property string emptyText

    /// The person wants to see this job.
    signal chosen(string id, QtObject job)

    /// Selects the job with this id; the empty id selects none.
    function select(id) {
        keeper.select(id)
    }

    function choose(row) {
        keeper.select(JobTable.idAt(list.model, row))
        list.chosen(keeper.selectedId, JobTable.jobAt(list.model, row))
    }

    ListView {
        id: view
        anchors.fill: parent
        clip: true
        currentIndex: -1
        highlightFollowsCurrentItem: false
        topMargin: 3
        bottomMargin: 3
        boundsBehavior: Flickable.StopAtBounds
        // Rows ahead would be made in the background, and a reset that empties the list meanwhile makes the view warn.
        cacheBuffer: 0
        ScrollBar.vertical: ScrollBar { width: 10 }

        delegate: JobRow {
            width: view.width
            // Not a required property that the view fills: a job ends before the rows of the old model do, and the
            // view takes that for a write to its own property.
            job: JobTable.jobAt(view.model, index)
            selected: jobID === keeper.selectedId
            onClicked: list.choose(index)
        }

        Keys.onReturnPressed: if (currentIndex >= 0) list.choose(currentIndex)
        Keys.onEnterPressed: if (currentIndex >= 0) list.choose(currentIndex)
    }

    PlaceKeeper {
        id: keeper
        view: view
    }

    EmptyState {
        objectName: "emptyState"
        anchors.centerIn: parent
        width: parent.width - 4 * Theme.margin
        visible: view.count === 0
        text: list.emptyText
    }
}
