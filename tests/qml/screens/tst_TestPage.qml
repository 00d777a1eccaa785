import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"

Screen {
    name: "TestPage"

    function field(key) {
        return textIn(findChild(page, key), "value")
    }

    function test_configurationHasItsLines() {
        openJob("WO-2026-004602")
        tapTest("1")
        compare(field("configuration"), "downstream: 32 bonded + OFDM\nupstream: 8 bonded + OFDMA")
    }

    function test_guideShowsIfThereIsOne() {
        openJob("WO-2026-004711")
        tapTest("0_0")
        verify(findChild(page, "guide").visible)
        compare(field("guide"), "guides/otdr-bidirectional.pdf")
    }

    function test_guideThatIsMissingDoesNotShow() {
        openJob("WO-2026-004400")
        tapTest("2")
        verify(!findChild(page, "guide").visible)
    }

    function test_otherTestHasNoPrompt() {
        openJob("WO-2026-004602")
        tapTest("1")
        verify(!findChild(page, "manualPrompt").visible)
    }

    function test_newResultShowsOnTheOpenPageWithinASecond() {
        openJob("WO-2026-004730")
        const jobPage = page
        const uiIndex = shownTests()[1]
        tapTest(uiIndex)
        const test = page.test
        service.setResult("WO-2026-004730", uiIndex, "rework")
        tryVerify(() => textIn(page, "status") === "rework", oneSecond)
        const notice = findChild(page, "notice")
        verify(notice.visible)
        compare(notice.text, "New test results")
        compare(page.test, test)
        mouseClick(findChild(page.header, "backButton"))
        tryVerify(() => page === jobPage && !window.pages.busy, aWhile)
        verify(testRow(uiIndex).marked)
        compare(testRow(uiIndex).status, "rework")
    }

    function test_listKeepsItsPlaceUnderTheOpenTest() {
        openJob("WO-2026-004400")
        const jobPage = page
        tapTest("200_0")
        const place = jobPage.tests.flickable.contentY
        verify(place > 0)
        service.setResult("WO-2026-004400", "200_0", "rework")
        tryVerify(() => textIn(page, "status") === "rework", oneSecond)
        mouseClick(findChild(page.header, "backButton"))
        tryVerify(() => page === jobPage && !window.pages.busy, aWhile)
        compare(page.tests.flickable.contentY, place)
    }

    function test_testWhoseJobVanishesSaysSoAndGoesBack() {
        openJob("WO-2026-004548")
        tapTest("0_0")
        service.deleteJob("WO-2026-004548")
        tryVerify(() => page.gone, oneSecond)
        verify(findChild(page, "goneText").visible)
        compare(findChild(page, "goneText").text, "This test is gone: its job has it no longer.")
        tryVerify(() => page === jobsPage, aWhile)
    }
}
