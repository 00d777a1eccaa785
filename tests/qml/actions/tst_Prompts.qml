import QtQuick 2.15
import JobManagerUi 1.0

import "../screens"

Screen {
    name: "Prompts"

    // Has a prompt of each kind.
    readonly property string id: "WO-2026-004730"

    function bar() {
        return findChild(page, "launchBar")
    }

    function message() {
        return textIn(bar(), "barMessage")
    }

    /// Opens the page of a prompt of the current job.
    function openPrompt(uiIndex) {
        service.setActiveJob(id)
        tryVerify(() => JobManager.currentJob !== null, aWhile)
        openJob(id)
        tapTest(uiIndex)
        verify(page.current)
        showFrame()
    }

    function write(text) {
        const field = findChild(page, "answerField")
        field.clear()
        mouseClick(field)
        for (const letter of text)
            keyClick(letter)
    }

    function answerInTheService(uiIndex) {
        return service.document(id).tests[Number(uiIndex)].results.response
    }

    function test_promptIsAnswered_data() {
        const tap = answer => () => mouseClick(findChild(page, "answer_" + answer))
        const save = text => () => { write(text); mouseClick(findChild(page, "saveAnswer")) }
        return [{ tag: "yes or no", uiIndex: "0", act: tap("no"), answer: "no" },
                { tag: "no question", uiIndex: "1", act: tap("done"), answer: "done" },
                { tag: "number", uiIndex: "3", act: save("12"), answer: "12" },
                { tag: "choice", uiIndex: "4", act: tap("wet to dry"), answer: "wet to dry" },
                { tag: "text", uiIndex: "5", act: save("port 6 is blocked"), answer: "port 6 is blocked" }]
    }

    function test_promptIsAnswered(data) {
        openPrompt(data.uiIndex)
        data.act()
        compare(answerInTheService(data.uiIndex), data.answer)
        tryVerify(() => textIn(findChild(page, "answer"), "value") === data.answer, aWhile)
        tryVerify(() => message() === "Answered.", aWhile)
        verify(!bar().failed)
    }

    function test_chosenAnswerIsMarkedAtOnce() {
        openPrompt("4")
        mouseClick(findChild(page, "answer_none"))
        verify(findChild(page, "answer_none").chosen)
        tryVerify(() => page.details.answer === "none" && message() === "Answered.", aWhile)
        verify(findChild(page, "answer_none").chosen)
        verify(!findChild(page, "answer_dry").chosen)
    }

    function test_textThatIsThereCanBeChanged() {
        openPrompt("5")
        write("first")
        keyClick(Qt.Key_Return)
        tryVerify(() => page.details.answer === "first" && message() === "Answered.", aWhile)
        compare(findChild(page, "answerField").text, "first")
        verify(!findChild(page, "saveAnswer").enabled)
        write("second")
        mouseClick(findChild(page, "saveAnswer"))
        tryVerify(() => page.details.answer === "second", aWhile)
    }

    function test_numberIsANumber_data() {
        return [{ tag: "nothing", text: "", enabled: false }, { tag: "letters", text: "abc", enabled: false },
                { tag: "minus alone", text: "-", enabled: false }, { tag: "whole", text: "307", enabled: true },
                { tag: "with a fraction", text: "-3.5", enabled: true }]
    }

    function test_numberIsANumber(data) {
        openPrompt("3")
        write(data.text)
        compare(findChild(page, "saveAnswer").enabled, data.enabled)
    }

    function test_refusedAnswerSaysSoAndLeavesTheOldOne() {
        openPrompt("0")
        mouseClick(findChild(page, "answer_yes"))
        tryVerify(() => page.details.answer === "yes" && message() === "Answered.", aWhile)
        outage.begin()
        mouseClick(findChild(page, "answer_no"))
        compare(message(), "Not saved: the job service did not accept the answer.")
        verify(bar().failed)
        verify(findChild(page, "answer_yes").chosen)
        verify(!findChild(page, "answer_no").chosen)
        verify(outage.end())
        mouseClick(findChild(page, "answer_no"))
        tryVerify(() => page.details.answer === "no" && message() === "Answered.", aWhile)
    }

    function test_answerDuringAFetchFollowsIt() {
        openPrompt("4")
        const answer = page.details.answer === "dry" ? "none" : "dry"
        JobManager.updateDataFromAPI(true)
        verify(!page.feed.readable)
        mouseClick(findChild(page, "answer_" + answer))
        compare(message(), "Saving the answer…")
        tryVerify(() => page.details.answer === answer && message() === "Answered.", aWhile)
    }

    function test_promptIsAnsweredOnTheCurrentJobAlone() {
        openJob(id)
        tapTest("0")
        verify(!findChild(page, "manualAnswer").visible)
        compare(message(), "Prompts are answered on the current job alone.")
        mouseClick(findChild(bar(), "barButton"))
        tryVerify(() => page.current, aWhile)
        verify(findChild(page, "manualAnswer").visible)
        verify(!findChild(bar(), "barButton").visible)
        compare(message(), page.details.answer.length > 0 ? "Answered." : "Not answered yet.")
    }
}
