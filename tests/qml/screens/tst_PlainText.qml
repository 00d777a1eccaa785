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
                { tag: "job", open: () => jobsPage.requiredList.choose(0) },
                { tag: "settings", open: () => jobsPage.settingsWanted() }]
    }

    function test_noTextOfThisPageIsMarkup(data) {
        data.open()
        tryVerify(() => !window.pages.busy, aWhile)
        compare(formattedTexts(page), [])
    }
}
