import QtQuick 2.15
import JobManagerUi 1.0

import "../../../demo/qml"

Screen {
    name: "TestPage"

    function field(key) {
        return textIn(findChild(page, key), "value")
    }

    function test_pageShowsTheTest() {
        openJob("WO-2026-004711")
        tapTest("0_1")
        compare(textIn(page.header, "title"), "OTDR")
        compare(textIn(page.header, "subtitle"), "Fibre 2")
        compare(textIn(page, "status"), "fail")
        compare(textIn(page, "requirement"), "Required")
        compare(textIn(page, "time"), Qt.formatDateTime(new Date("2026-02-27T10:09:45+01:00"), "yyyy-MM-dd hh:mm"))
        compare(field("description"), "Bidirectional trace of fibres 1 to 4 between the two terminations. "
                + "Launch and receive cords of 500 m each.")
        compare(field("site"), "Main building, rack 12")
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

    function test_manualTestShowsItsPromptAndItsAnswer() {
        openJob("WO-2026-004602")
        tapTest("3")
        verify(findChild(page, "manualPrompt").visible)
        compare(textIn(page, "prompt"), "Which splitter was installed?")
        compare(field("answerKind"), "One of: none, 2-way, 3-way balanced, 3-way unbalanced")
        compare(field("answer"), "2-way")
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
        tryVerify(() => textIn(page, "status") === "rework", oneSecond())
        const notice = findChild(window, "notice")
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
        tryVerify(() => textIn(page, "status") === "rework", aWhile)
        mouseClick(findChild(page.header, "backButton"))
        tryVerify(() => page === jobPage && !window.pages.busy, aWhile)
        compare(page.tests.flickable.contentY, place)
    }

    function test_testWhoseJobVanishesSaysSoAndGoesBack() {
        openJob("WO-2026-004548")
        tapTest("0_0")
        service.deleteJob("WO-2026-004548")
        tryVerify(() => page.gone, aWhile)
        verify(findChild(page, "goneText").visible)
        compare(findChild(page, "goneText").text, "This test is gone: its job has it no longer.")
        tryVerify(() => page === jobsPage, aWhile)
    }
}
