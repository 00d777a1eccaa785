.pragma library

// Where the sections of a list of tests stand below each other. A line is a section's header or a row; all lines of a
// kind have the same height, so that every place can be computed and nothing off the screen has to be made.

const headerHeight = 48
const rowHeight = 64

/// Puts sections below each other: an array of { title, start, count, hasHeader, folded, top, height } in row order,
/// with `start` and `count` in rows of the list. Rows between the sections belong to none: they get an entry without
/// a title, which has no header. `folded` has a member for the title of each folded section. With `singlesAlone`, an
/// open section of one row has no header either.
function place(sections, rowCount, folded, singlesAlone) {
    const placed = []
    let row = 0
    let top = 0
    function add(title, start, count) {
        const isFolded = folded[title] === true
        const hasHeader = title.length > 0 && (isFolded || count > 1 || !singlesAlone)
        const height = (hasHeader ? headerHeight : 0) + (isFolded ? 0 : count * rowHeight)
        placed.push({ title: title, start: start, count: count, hasHeader: hasHeader, folded: isFolded, top: top,
                      height: height })
        top += height
        row = start + count
    }
    for (let i = 0; i < sections.length; ++i) {
        const section = sections[i]
        if (section.startIndex > row)
            add("", row, section.startIndex - row)
        add(section.section, section.startIndex, section.testsCount)
    }
    if (rowCount > row)
        add("", row, rowCount - row)
    return placed
}

function totalHeight(placed) {
    if (placed.length === 0)
        return 0
    const last = placed[placed.length - 1]
    return last.top + last.height
}

/// The last section for which the member is not above the value; 0 if there is none.
function lastNotAbove(placed, member, value) {
    let low = 0
    let high = placed.length - 1
    while (low < high) {
        const middle = Math.ceil((low + high) / 2)
        if (placed[middle][member] <= value)
            low = middle
        else
            high = middle - 1
    }
    return low
}

/// The section that reaches over this height.
function sectionAt(placed, y) {
    return lastNotAbove(placed, "top", y)
}

/// The place of a row; that of the header in a folded section.
function topOfRow(placed, row) {
    const section = placed[lastNotAbove(placed, "start", row)]
    const header = section.hasHeader ? headerHeight : 0
    return section.top + (section.folded ? 0 : header + (row - section.start) * rowHeight)
}

/// The rows of a section that are on the screen between two heights, as { first, count } within the section. What is
/// below the section's own header, which stays on the screen, is not on it.
function rowsWithin(section, from, to) {
    if (section.folded)
        return { first: 0, count: 0 }
    const body = section.top + (section.hasHeader ? headerHeight : 0)
    const first = Math.max(0, Math.min(section.count, Math.floor((from - section.top) / rowHeight)))
    const end = Math.max(first, Math.min(section.count, Math.ceil((to - body) / rowHeight)))
    return { first: first, count: end - first }
}
