import QtQuick 2.15

/// What a test's own page shows beyond its row in the list, as it was last readable.
TestTexts {
    property string description: ""
    property string site: ""
    property var configuration: []
    /// The path of the guide; empty if there is no such file.
    property string guide: ""
    property bool manual: false
    /// Of a manual test: what it asks, in which kind of answer, of which the answers can be chosen, and the answer.
    property string prompt: ""
    property string answerType: ""
    property var options: []
    property string answer: ""

    onFresh: {
        description = test.description
        site = test.site
        configuration = test.configuration
        guide = test.hasGuide ? test.guideFilepath : ""
        manual = test.testType === "manual"
        const asked = test.testConfigurationMap
        prompt = typeof asked.prompt === "string" ? asked.prompt : ""
        answerType = typeof asked.type === "string" ? asked.type : ""
        options = Array.isArray(asked.options) ? asked.options.map(String) : []
        answer = manual ? test.manualStepUserResponse : ""
    }
}
