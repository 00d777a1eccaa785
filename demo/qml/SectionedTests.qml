import QtQuick 2.15
import QtQuick.Controls 2.15
import JobManagerUi 1.0

import "SectionLayout.js" as SectionLayout

/// The list of a job's tests in sections that fold. Only what is on the screen is made: sections go round in a few
/// places, each of which shows the rows of its slice of the list that are on the screen. Keeps scroll position,
/// folded sections and the marked test while the tests change.
Item {
    id: view

    /// The list of tests, or null.
    property TestList list: null
    /// Whether values that a test looks up anew on each read can be had at once.
    property bool readable: false
    /// The job whose tests they are, or null.
    property Job job: null

    /// The test that was chosen last.
    property Test marked: null
    /// What became of the last launch, or null.
    property LaunchWatch watch: null

    readonly property int count: view.rowCount
    readonly property alias flickable: flickable
    /// The sections with their places, see SectionLayout.js.
    property var sections: []
    /// Which sections are folded: by group type, an object with a member for each title.
    property var foldedSections: ({})
    /// What the titles of the sections stand for.
    property int groupType: TestGroupType.NONE

    property int rowCount: 0
    property var place: null

    /// The person wants to see this test.
    signal chosen(QtObject test)

    /// What to show for the title of a section.
    function nameOf(title) {
        switch (view.groupType) {
        case TestGroupType.DEFAULT_VIEW:
            return (Number(title) + 1) + ". " + (view.job ? view.job.getTestNamebyTestIndex(Number(title)) : "")
        case TestGroupType.GROUPBY_LOCATION:
            return title === "~" ? qsTr("Without a location") : title
        default:
            return title
        }
    }

    /// Folds a section or opens it. Its header stays where it is on the screen.
    function toggle(title) {
        const folded = view.foldedSections[view.groupType] || {}
        folded[title] = folded[title] !== true
        view.foldedSections[view.groupType] = folded
        view.layOut()
        const section = view.sections.find(each => each.title === title)
        view.scrollTo(Math.min(flickable.contentY, section.top))
    }

    function choose(test) {
        view.marked = test
        view.chosen(test)
    }

    function scrollTo(y) {
        const wanted = Math.max(0, Math.min(y, flickable.contentHeight - flickable.height))
        if (flickable.contentY !== wanted)
            flickable.contentY = wanted
    }

    function idAt(row) {
        return view.list.data(view.list.index(row, 0), TestList.TestID)
    }

    /// The row of the test with this id; -1 if the list has none. `hint` is where it was.
    function rowOf(id, hint) {
        if (view.idAt(hint) === id)
            return hint
        const found = view.list.match(view.list.index(0, 0), TestList.TestID, id, 1, Qt.MatchExactly)
        return found.length > 0 ? found[0].row : -1
    }

    function layOut() {
        view.groupType = JobManager.groupType
        view.rowCount = view.list ? view.list.rowCount() : 0
        // In the order of the job a section without company is a test without locations: its row says it all.
        view.sections = view.list ? SectionLayout.place(view.list.sections, view.rowCount,
                                                        view.foldedSections[view.groupType] || {},
                                                        view.groupType === TestGroupType.DEFAULT_VIEW)
                                  : []
    }

    /// The lines that are on the screen, from the top, and where on it they are.
    function seenLines() {
        const from = flickable.contentY
        const to = from + flickable.height
        const lines = []
        for (let i = SectionLayout.sectionAt(view.sections, from); i < view.sections.length; ++i) {
            const section = view.sections[i]
            if (section.top >= to)
                break
            if (section.hasHeader && section.top >= from)
                lines.push({ title: section.title, offset: section.top - from })
            const rows = SectionLayout.rowsWithin(section, from, to)
            for (let row = section.start + rows.first; row < section.start + rows.first + rows.count; ++row)
                lines.push({ id: view.idAt(row), row: row, offset: SectionLayout.topOfRow(view.sections, row) - from })
        }
        return lines
    }

    function remember() {
        if (view.place === null)
            view.place = { contentY: flickable.contentY, lines: flickable.contentY > 0 ? view.seenLines() : [] }
    }

    /// Where a line is now; -1 if it is gone.
    function topOf(line) {
        if (line.title !== undefined) {
            const section = view.sections.find(each => each.title === line.title)
            return section ? section.top : -1
        }
        const row = view.rowOf(line.id, line.row)
        return row < 0 ? -1 : SectionLayout.topOfRow(view.sections, row)
    }

    function restore() {
        for (const line of view.place.lines) {
            const top = view.topOf(line)
            if (top >= 0) {
                view.scrollTo(top - line.offset)
                return
            }
        }
        view.scrollTo(view.place.contentY)
    }

    function update() {
        view.layOut()
        if (view.place !== null)
            view.restore()
        view.place = null
    }

    /// The rows that are on the screen, from the top.
    function rowsOnScreen() {
        const found = []
        for (let i = flickable.firstSection; i < Math.min(view.sections.length, flickable.firstSection + places.count); ++i) {
            const section = view.placeOf(i)
            for (let row = section.firstRow; row < section.firstRow + section.rowCount; ++row)
                found.push(section.rows.itemAtIndex(row))
        }
        return found
    }

    /// What shows the section with this number; null if it is not on the screen.
    function placeOf(sectionIndex) {
        const found = places.itemAt(sectionIndex % places.count)
        return found !== null && found.sectionIndex === sectionIndex ? found : null
    }

    /// Goes to the beginning, and stays there when the rows change.
    function startOver() {
        view.scrollTo(0)
    }

    onListChanged: update()
    // Resets of a list that was there at once came before they could be heard of.
    Component.onCompleted: update()

    Connections {
        target: view.list

        function onModelAboutToBeReset() {
            view.remember()
            for (let i = 0; i < places.count; ++i)
                places.itemAt(i).beginReset()
        }
        function onModelReset() { view.update() }
    }

    Flickable {
        id: flickable

        readonly property int firstSection: SectionLayout.sectionAt(view.sections, contentY)

        anchors.fill: parent
        clip: true
        contentHeight: SectionLayout.totalHeight(view.sections)
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar { width: 10 }

        Repeater {
            id: places
            objectName: "places"
            model: Math.ceil(flickable.height / SectionLayout.headerHeight) + 2

            delegate: TestSection {
                required property int index

                // The sections from the first on the screen on, each always in the same place.
                readonly property int sectionIndex: {
                    const first = flickable.firstSection
                    return first + ((index - first) % places.count + places.count) % places.count
                }

                section: sectionIndex < view.sections.length ? view.sections[sectionIndex] : null
                list: view.list
                readable: view.readable
                name: section === null ? "" : view.nameOf(section.title)
                marked: view.marked
                running: view.watch !== null && view.watch.running ? view.watch.test : null
                width: flickable.width
                screenTop: flickable.contentY
                screenHeight: flickable.height
                onToggled: view.toggle(section.title)
                onChosen: view.choose(test)
            }
        }
    }
}
