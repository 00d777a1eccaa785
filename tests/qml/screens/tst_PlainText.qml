import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"

Screen {
    name: "PlainText"

    /// All texts inside an item that something but plain text could show in.
    function formattedTexts(item) {
        let found = []
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i]
            if (child.textFormat !== undefined && child.textFormat !== Text.PlainText && child.text.length > 0)
                found.push(child.text)
            found = found.concat(formattedTexts(child))
        }
        return found
    }

    function test_noTextOfThisPageIsMarkup_data() {
        return [{ tag: "jobs", open: () => {} },
                { tag: "job", open: () => openJob("WO-2026-004711") },
                { tag: "details", open: () => { openJob("WO-2026-004711"); page.detailsShown = true } },
                { tag: "test", open: () => { openJob("WO-2026-004711"); tapTest("0_0") } },
                { tag: "manual test", open: () => { openJob("WO-2026-004711"); tapTest("4") } },
                { tag: "settings", open: () => jobsPage.settingsWanted() }]
    }

    function test_noTextOfThisPageIsMarkup(data) {
        data.open()
        tryVerify(() => !window.pages.busy, aWhile)
        compare(formattedTexts(page), [])
    }
}
