import QtQuick 2.15
import JobManagerUi 1.0

import "SectionLayout.js" as SectionLayout

/// One section of a list of tests: a header that stays on the screen as long as its rows are, and the rows that are
/// on the screen, of the slice of the list that is this section.
Item {
    id: place

    /// The section as SectionLayout.js places it; null for nothing.
    property var section: null
    /// The list of all tests, or null.
    property TestList list: null
    property bool readable: false
    property string name
    property Test marked: null
    /// The test that is running, or null.
    property Test running: null
    /// The part of the whole height that is on the screen.
    property real screenTop: 0
    property real screenHeight: 0

    readonly property alias slice: slice
    readonly property alias rows: rows

    readonly property real sectionTop: section === null ? 0 : section.top
    readonly property var within: section === null
                                  ? { first: 0, count: 0 }
                                  : SectionLayout.rowsWithin(section, screenTop, screenTop + screenHeight)
    readonly property int firstRow: within.first
    readonly property int rowCount: within.count

    /// The header was tapped.
    signal toggled()
    /// The person wants to see this test.
    signal chosen(QtObject test)

    y: sectionTop
    height: section === null ? 0 : section.height
    visible: section !== null

    // A reset of the list comes here twice, as a new section and as a reset of the slice, in either order. Rows that
    // were made after the first of them would not last.
    property bool awaitsSection: false
    property bool awaitsReset: false

    /// The list is about to be reset: no rows until that is over.
    function beginReset() {
        slice.testsCount = 0
        place.awaitsSection = true
        place.awaitsReset = true
    }

    /// Takes the section's slice over.
    function follow() {
        if (place.awaitsSection || place.awaitsReset)
            return
        const start = place.section === null ? 0 : place.section.start
        // Each of the two changes makes the rows anew, so that there are none at the first.
        if (slice.startIndex !== start)
            slice.testsCount = 0
        slice.startIndex = start
        slice.testsCount = place.section === null || place.section.folded ? 0 : place.section.count
    }

    onSectionChanged: {
        awaitsSection = false
        follow()
    }

    PartialModel {
        id: slice
        model: place.list
    }
    ListView {
        id: rows

        readonly property int firstRow: place.firstRow

        /// Shows the rows of the slice that are on the screen.
        function align() {
            if (count > 0) {
                forceLayout()
                positionViewAtIndex(Math.min(firstRow, count - 1), ListView.Beginning)
            }
        }

        y: (header.visible ? SectionLayout.headerHeight : 0) + firstRow * SectionLayout.rowHeight
        width: place.width
        height: place.rowCount * SectionLayout.rowHeight
        visible: place.rowCount > 0
        interactive: false
        cacheBuffer: 0
        model: slice
        onFirstRowChanged: align()
        onHeightChanged: align()
        // The view tells its count after each reset when it has taken the new rows over, also an unchanged one.
        onCountChanged: {
            if (place.awaitsReset) {
                place.awaitsReset = false
                place.follow()
            }
            align()
        }

        delegate: TestRow {
            width: rows.width
            height: SectionLayout.rowHeight
            slice: place.slice
            readable: place.readable
            marked: test !== null && test === place.marked
            running: test !== null && test === place.running
            onClicked: place.chosen(test)
        }
    }
    SectionHeader {
        id: header
        objectName: "sectionHeader"
        y: place.section === null ? 0 : Math.max(0, Math.min(place.screenTop - place.sectionTop,
                                                            place.height - SectionLayout.headerHeight))
        width: place.width
        height: SectionLayout.headerHeight
        visible: place.section !== null && place.section.hasHeader
        name: place.name
        count: place.section === null ? 0 : place.section.count
        folded: place.section !== null && place.section.folded
        onClicked: place.toggled()
    }
}
