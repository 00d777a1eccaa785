import QtQuick 2.15
import QtQuick.Controls 2.15
import JobManagerUi 1.0

import "../../../demo/qml"
import "../../../demo/qml/JobTable.js" as JobTable

Screen {
    id: properties

    name: "Properties"

    /// An attribute of each kind.
    readonly property var attributes: ({
        text: { label: "Remark", value: "old", editable: true, orderIndex: 1 },
        empty: { label: "Key safe", value: "", editable: "true", orderIndex: 2 },
        length: { label: "Length (m)", value: "12.5", valueType: "double", editable: true, orderIndex: 3 },
        code: { label: "Code", value: "1234#", regExp: "[0-9]{4}#", editable: true, orderIndex: 4 },
        level: { label: "Level", value: "low", validValues: ["low", "high"], editable: true, orderIndex: 5 },
        night: { label: "Night work", value: "false", valueType: "boolean", validValues: ["unknown"], editable: true,
                 orderIndex: 6 },
        fixed: { label: "Fibres", value: "144", valueType: "number", editable: false, orderIndex: 7 },
        fixedNight: { label: "Lit", value: "true", valueType: "boolean", orderIndex: 8 },
        hidden: { label: "Billing key", value: "K-99", visible: false, orderIndex: 9 },
        unlabelled: { label: "", value: "x", orderIndex: 10 },
        refusedText: { label: "Refused text", value: "old", editable: true, orderIndex: 11 },
        refusedChoice: { label: "Refused choice", value: "low", validValues: ["low", "high"], editable: true,
                         orderIndex: 12 },
        cabinet: { label: "Cabinet", value: "", editable: true, orderIndex: 13 },
        slow: { label: "Slow", value: "old", editable: true, orderIndex: 14 },
        badPattern: { label: "Bad pattern", value: "x", regExp: "[0-9", editable: true, orderIndex: 15 }
    })
    property string jobID: ""
    property int jobs: 0

    readonly property var feed: page ? page.properties : null

    /// Opens the form of a job of the test's own with these attributes.
    function openForm(jobAttributes = attributes) {
        jobID = "PROPERTIES-" + ++jobs
        // All of it is one update, behind which none is left to come between the test and its form.
        JobManager.pauseAutomaticUpdates = true
        service.createJob(jobID)
        if (Object.keys(jobAttributes).length > 0)
            service.setAttributes(jobID, jobAttributes)
        JobManager.pauseAutomaticUpdates = false
        tryVerify(() => JobTable.rowOf(JobManager, jobID) >= 0 && !JobManager.fetchingJobList, aWhile)
        openJob(jobID)
        showForm()
    }

    /// Shows the form of the job whose page is open, and waits until every row of it is there.
    function showForm() {
        page.detailsShown = true
        tryVerify(() => feed.rows.count > 0, aWhile)
        tryVerify(() => rowNames().every(name => findChild(page, "property:" + name).item !== null), aWhile)
        waitForRendering(window.pages)
    }

    function rowNames() {
        return Array.from({ length: feed.rows.count }, (_, row) => feed.rows.get(row).name)
    }

    function row(name) {
        return findChild(page, "property:attributes/" + name)
    }

    /// The name of a property as the form shows it.
    function labelOf(name) {
        return row(name).property.label
    }

    function input(name) {
        return findChild(row(name), "input")
    }

    function choice(name, value) {
        return findChild(row(name), "choice:" + value)
    }

    function faultOf(name) {
        return findChild(row(name), "fault").text
    }

    function tap(item) {
        const flickable = findChild(page, "details").flickable
        const top = item.mapToItem(flickable.contentItem, 0, 0).y
        flickable.contentY = Math.max(0, Math.min(top - 100, flickable.contentHeight - flickable.height))
        waitForRendering(window.pages)
        mouseClick(item)
    }

    /// Writes over what is in a field, and stays there.
    function type(name, text) {
        tap(input(name))
        tryVerify(() => input(name).activeFocus)
        input(name).selectAll()
        if (text.length === 0)
            keyClick(Qt.Key_Delete)
        Array.from(text).forEach(letter => keyClick(letter))
    }

    function stored(name) {
        return service.document(jobID).details.jobManagerAttributes[name].value
    }

    function openText() {
        return findChild(page, "openProperties").text
    }

    function test_rowsAreThoseOfTheJobInTheirOrder() {
        openForm()
        compare(rowNames(), ["jobNumber", "techId", "attributes/text", "attributes/empty", "attributes/length",
                             "attributes/code", "attributes/level", "attributes/night", "attributes/fixed",
                             "attributes/fixedNight", "attributes/unlabelled", "attributes/refusedText",
                             "attributes/refusedChoice", "attributes/cabinet", "attributes/slow",
                             "attributes/badPattern"])
        compare(row("hidden"), null)
    }

    function test_labelsAreThoseOfTheDisplayInfos() {
        openForm()
        compare(labelOf("fixed"), "Fibres")
        compare(labelOf("unlabelled"), "unlabelled")
        compare(findChild(page, "property:jobNumber").property.label, "Work Order ID")
        compare(findChild(page, "property:techId").property.label, "Technician")
    }

    function test_fieldsOfTheJobShowTheirValues() {
        openJob("WO-2026-004711")
        showForm()
        const value = name => textIn(findChild(page, "property:" + name), "value")
        compare(value("jobNumber"), "WO-2026-004711")
        compare(value("customerName"), "a < b > c & sons")
        compare(value("typeName"), "Fibre backbone acceptance")
        compare(value("techId"), "T-1031")
        compare(findChild(findChild(page, "property:contractorId"), "input").text, "C-77")
    }

    function test_readOnlyPropertyIsForShow() {
        openForm()
        compare(textIn(row("fixed"), "value"), "144")
        compare(findChild(row("fixed"), "input"), null)
        compare(labelOf("fixed"), "Fibres")
    }

    function test_readOnlyBooleanReadsYesOrNo() {
        openForm()
        compare(textIn(row("fixedNight"), "value"), "Yes")
    }

    function test_editablePropertiesAreMarkedAndTheOpenOnesCounted() {
        openForm()
        compare(labelOf("text"), "Remark *")
        compare(openText(), "2 of 11 still open")
    }

    function test_anEditCountsAtOnce() {
        openForm()
        type("empty", "3")
        keyClick(Qt.Key_Return)
        compare(openText(), "1 of 11 still open")
        compare(page.job.numberOfIncompleteRequiredAttributes, 2)
        type("empty", "")
        keyClick(Qt.Key_Return)
        compare(openText(), "2 of 11 still open")
        type("empty", "4")
        keyClick(Qt.Key_Return)
        service.writeAttribute(jobID, "cabinet", "A")
        tryVerify(() => openText() === "All filled in", aWhile)
    }

    function test_editReachesTheServiceAsOneStep_data() {
        return [{ tag: "return key", leave: () => keyClick(Qt.Key_Return) },
                { tag: "another field", leave: () => tap(input("code")) },
                { tag: "the tests of the job", leave: () => page.detailsShown = false },
                { tag: "the lists", leave: () => page.finished() }]
    }

    function test_editReachesTheServiceAsOneStep(data) {
        openForm()
        const before = service.changeCount()
        type("text", "new")
        compare(stored("text"), "old")
        data.leave()
        tryVerify(() => stored("text") === "new", aWhile)
        compare(service.changeCount(), before + 1)
    }

    function test_fieldLeftUnchangedIsNoEdit() {
        openForm()
        const before = service.changeCount()
        tap(input("text"))
        keyClick("x")
        keyClick(Qt.Key_Backspace)
        tap(input("code"))
        keyClick(Qt.Key_Return)
        compare(service.changeCount(), before)
    }

    function test_numberIsCheckedAsOneTypes_data() {
        return [{ tag: "whole", text: "12", fault: "" }, { tag: "point", text: "-0.5", fault: "" },
                { tag: "exponent", text: "1e3", fault: "" }, { tag: "text", text: "a", fault: "No number" },
                { tag: "unit", text: "12 m", fault: "No number" }, { tag: "comma", text: "1,5", fault: "No number" },
                { tag: "minus", text: "-", fault: "No number" }, { tag: "empty", text: "", fault: "" }]
    }

    function test_numberIsCheckedAsOneTypes(data) {
        openForm()
        type("length", data.text)
        compare(faultOf("length"), data.fault)
        keyClick(Qt.Key_Return)
        compare(stored("length"), data.fault.length > 0 ? "12.5" : data.text)
    }

    function test_patternIsCheckedAsOneTypes() {
        openForm()
        type("code", "987")
        compare(faultOf("code"), "Not in the right form")
        keyClick(Qt.Key_Return)
        compare(stored("code"), "1234#")
        compare(input("code").text, "987")
        keyClick("6")
        keyClick("#")
        compare(faultOf("code"), "")
        keyClick(Qt.Key_Return)
        compare(stored("code"), "9876#")
    }

    function test_patternIsOneForTheWholeText() {
        openForm()
        type("code", "12345#")
        compare(faultOf("code"), "Not in the right form")
    }

    function test_patternThatIsNoneKeepsNobodyFromWriting() {
        openForm()
        type("badPattern", "y")
        compare(faultOf("badPattern"), "")
        keyClick(Qt.Key_Return)
        compare(stored("badPattern"), "y")
    }

    function test_choicesAreTheValidValues() {
        openForm()
        verify(choice("level", "low").chosen)
        verify(!choice("level", "high").chosen)
        const before = service.changeCount()
        tap(choice("level", "high"))
        compare(stored("level"), "high")
        compare(service.changeCount(), before + 1)
        verify(choice("level", "high").chosen)
        verify(!choice("level", "low").chosen)
    }

    function test_booleanIsYesOrNoOrWhatElseIsValid() {
        openForm()
        compare(choice("night", "true").text, "Yes")
        compare(choice("night", "false").text, "No")
        compare(choice("night", "unknown").text, "unknown")
        verify(choice("night", "false").chosen)
        tap(choice("night", "true"))
        compare(stored("night"), "true")
        verify(choice("night", "true").chosen)
    }

    function test_refusedTextIsToldAndGivesWayToTheServicesValue() {
        openForm()
        const before = service.changeCount()
        type("refusedText", "new")
        keyClick(Qt.Key_Return)
        compare(faultOf("refusedText"), "Not taken")
        const notice = findChild(window, "notice")
        verify(notice.visible)
        compare(notice.text, "Not taken by the job service: Refused text")
        tryCompare(input("refusedText"), "text", "old", aWhile)
        compare(page.job.optionalProperties["attributes/refusedText"], "old")
        compare(service.changeCount(), before)
    }

    function test_refusalIsForgottenWithTheNextEdit() {
        openForm()
        type("refusedText", "new")
        keyClick(Qt.Key_Return)
        tryCompare(input("refusedText"), "text", "old", aWhile)
        compare(faultOf("refusedText"), "Not taken")
        type("refusedText", "n")
        compare(faultOf("refusedText"), "")
    }

    function test_refusedChoiceStaysTheServices() {
        openForm()
        tap(choice("refusedChoice", "high"))
        compare(faultOf("refusedChoice"), "Not taken")
        verify(choice("refusedChoice", "low").chosen)
        verify(!choice("refusedChoice", "high").chosen)
        compare(stored("refusedChoice"), "low")
    }

    function test_refusalLeavesAloneWhatIsTypedElsewhere() {
        openForm()
        type("refusedText", "new")
        type("text", "being typed")
        tryCompare(input("refusedText"), "text", "old", aWhile)
        compare(input("text").text, "being typed")
        verify(input("text").activeFocus)
        keyClick(Qt.Key_Return)
        compare(stored("text"), "being typed")
    }

    function test_valueThatTheServiceAlteredShowsAsTheServiceHasIt() {
        openForm()
        const before = service.changeCount()
        type("cabinet", " kvz 12 ")
        keyClick(Qt.Key_Return)
        compare(service.changeCount(), before + 2)
        tryCompare(input("cabinet"), "text", "KVZ 12", aWhile)
        compare(faultOf("cabinet"), "")
    }

    function test_slowWriteIsTaken() {
        openForm()
        type("slow", "new")
        keyClick(Qt.Key_Return)
        compare(stored("slow"), "new")
        compare(faultOf("slow"), "")
    }

    function test_twoFieldsEditedOneAfterTheOtherAreBothWritten() {
        openForm()
        type("text", "one")
        type("empty", "two")
        keyClick(Qt.Key_Return)
        compare(stored("text"), "one")
        compare(stored("empty"), "two")
    }

    function test_changeInTheServiceShowsWithoutWipingWhatIsTyped() {
        openForm()
        type("text", "being typed")
        service.writeAttribute(jobID, "level", "high")
        service.writeAttribute(jobID, "length", "99")
        tryVerify(() => input("length").text === "99", aWhile)
        verify(choice("level", "high").chosen)
        compare(input("text").text, "being typed")
        verify(input("text").activeFocus)
        keyClick("!")
        keyClick(Qt.Key_Return)
        tryVerify(() => stored("text") === "being typed!", aWhile)
    }

    function test_changeOfTheFieldBeingTypedInIsTold() {
        openForm()
        type("text", "mine")
        compare(faultOf("text"), "")
        service.writeAttribute(jobID, "text", "theirs")
        tryVerify(() => faultOf("text") === "Meanwhile: theirs", aWhile)
        compare(input("text").text, "mine")
        keyClick(Qt.Key_Return)
        tryVerify(() => stored("text") === "mine", aWhile)
        compare(faultOf("text"), "")
    }

    function test_changeToWhatIsTypedLeavesNothingToWrite() {
        openForm()
        type("text", "same")
        service.writeAttribute(jobID, "text", "same")
        tryVerify(() => !row("text").item.edited, aWhile)
        compare(faultOf("text"), "")
        const before = service.changeCount()
        keyClick(Qt.Key_Return)
        compare(service.changeCount(), before)
    }

    function test_editWhileTheServiceIsGoneIsNotTaken() {
        openForm()
        type("text", "new")
        outage.begin()
        keyClick(Qt.Key_Return)
        compare(faultOf("text"), "Not taken")
        tryCompare(input("text"), "text", "old", aWhile)
        verify(outage.end())
        compare(stored("text"), "old")
        type("text", "newer")
        keyClick(Qt.Key_Return)
        tryVerify(() => stored("text") === "newer", aWhile)
    }

    function test_newAttributesKeepTheRowBeingTypedIn() {
        openForm()
        const typedIn = row("code")
        type("code", "87")
        const more = Object.assign({}, attributes, { first: { label: "First", value: "1", orderIndex: -1 } })
        delete more.text
        service.setAttributes(jobID, more)
        tryVerify(() => row("first") !== null && row("text") === null, aWhile)
        compare(rowNames().slice(0, 4),
                ["jobNumber", "attributes/first", "techId", "attributes/empty"])
        compare(row("code"), typedIn)
        compare(input("code").text, "87")
        verify(input("code").activeFocus)
    }

    function test_editWhileTheJobIsBeingFetchedIsWrittenAfterwards() {
        openForm()
        type("text", "new")
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        // No key, whose delivery could let the fetch end first.
        row("text").item.accepted()
        compare(stored("text"), "old")
        tryVerify(() => stored("text") === "new", aWhile)
        tryVerify(() => feed.writable, aWhile)
        compare(input("text").text, "new")
    }

    function test_editWhileTheJobIsBeingFetchedOutlivesItsPage_data() {
        return [{ tag: "left field", edit: () => input("text").focus = false },
                { tag: "left page", edit: () => {} }]
    }

    function test_editWhileTheJobIsBeingFetchedOutlivesItsPage(data) {
        openForm()
        const before = service.changeCount()
        type("text", "new")
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        data.edit()
        // No transition, in which the fetch could end first.
        window.pages.pop(StackView.Immediate)
        compare(page, jobsPage)
        compare(stored("text"), "old")
        tryVerify(() => stored("text") === "new", aWhile)
        compare(service.changeCount(), before + 1)
    }

    function test_choiceWhileTheJobIsBeingFetchedOutlivesItsPage() {
        openForm()
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        choice("level", "high").clicked()
        window.pages.pop(StackView.Immediate)
        compare(stored("level"), "low")
        tryVerify(() => stored("level") === "high", aWhile)
    }

    function test_editThatOutlivesItsPageShowsOnTheNextPageOfTheJob() {
        openForm()
        type("text", "new")
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        window.pages.pop(StackView.Immediate)
        openJob(jobID)
        showForm()
        tryVerify(() => input("text").text === "new", aWhile)
        compare(stored("text"), "new")
    }

    function test_refusalOfAnEditThatOutlivesItsPageIsTold() {
        openForm()
        type("refusedText", "new")
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        window.pages.pop(StackView.Immediate)
        const notice = findChild(window, "notice")
        tryVerify(() => notice.visible, aWhile)
        compare(notice.text, "Not taken by the job service: Refused text")
        compare(stored("refusedText"), "old")
    }

    function test_editThatOutlivesItsPageAndItsJobIsTold() {
        openForm()
        type("text", "new")
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        service.deleteJob(jobID)
        window.pages.pop(StackView.Immediate)
        const notice = findChild(window, "notice")
        tryVerify(() => notice.visible, aWhile)
        compare(notice.text, "Not taken by the job service: Remark")
    }

    function test_editTakenBackBeforeItCouldBeWrittenIsNotWritten() {
        openForm()
        const before = service.changeCount()
        type("text", "old!")
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        row("text").item.accepted()
        verify("attributes/text" in feed.kept)
        input("text").remove(3, 4)
        input("text").textEdited()
        verify(!("attributes/text" in feed.kept))
        window.pages.pop(StackView.Immediate)
        tryVerify(() => !JobManager.fetchingJobList, aWhile)
        compare(stored("text"), "old")
        compare(service.changeCount(), before)
    }

    function test_choiceWhileTheJobIsBeingFetchedIsWrittenAfterwards() {
        openForm()
        tap(choice("level", "low"))
        JobManager.updateDataFromAPI(true)
        verify(!feed.writable)
        choice("level", "high").clicked()
        verify(choice("level", "high").chosen)
        tryVerify(() => stored("level") === "high", aWhile)
    }

    function test_hundredsOfPropertiesComeOneAfterTheOther() {
        const many = {}
        for (let i = 0; i < 300; ++i)
            many["a" + i] = { label: "Text " + i, value: "v" + i, editable: true, orderIndex: i }
        openForm(many)
        compare(openText(), "All filled in")
        compare(input("a299").text, "v299")
        type("a299", "new")
        keyClick(Qt.Key_Return)
        compare(stored("a299"), "new")
    }

    function test_jobThatEndsTakesItsFormAlong() {
        openForm()
        type("text", "being typed")
        service.deleteJob(jobID)
        tryVerify(() => page.gone, aWhile)
        tryVerify(() => page === jobsPage, aWhile)
    }

    function test_jobWithoutAttributesHasTheFixedRowsAndNothingOpen() {
        openForm({})
        compare(rowNames(), ["jobNumber", "techId"])
        verify(!findChild(page, "openProperties").visible)
    }

    function test_propertiesOfATestAreForShow() {
        openJob("WO-2026-004711")
        tapTest("0_1")
        const shown = findChild(page, "properties")
        tryVerify(() => shown.rows.length > 0, aWhile)
        compare(shown.rows.map(row => [row.label, row.value]),
                [["Cable", "BB-144-07"], ["Colour", "green"], ["Fibre", "2"], ["Location", "Fibre 2"],
                 ["Standard", "ITU-T G.652.D"]])
        compare(textIn(findChild(shown, "property:attributes/colour"), "value"), "green")
        compare(findChild(shown, "input"), null)
    }

    function test_propertyOfATestThatSaysItIsEditableIsForShow() {
        openJob("WO-2026-004730")
        const job = page.job
        tapTest("2_0")
        const shown = findChild(page, "properties")
        tryVerify(() => shown.rows.length > 0, aWhile)
        const info = job.testPropertyDisplayInfos["attributes/profile"]
        verify(info.editable)
        const profile = findChild(shown, "property:attributes/profile")
        compare(textIn(profile, "value"), "SM UPC")
        compare(findChild(shown, "input"), null)
        for (const value of ["SM UPC", "SM APC", "MM"])
            compare(findChild(shown, "choice:" + value), null)
    }

    function test_testWithoutPropertiesShowsNone() {
        openJob("WO-2026-004711")
        tapTest("3")
        compare(findChild(page, "properties").rows, [])
        verify(!findChild(page, "properties").visible)
    }
}
