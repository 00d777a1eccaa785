import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import JobManagerUi 1.0

import "JobTable.js" as JobTable

/// Makes a new job, bare or from a template. The page stays until the job is in the list, and the job's own page can
/// take its place.
PageFrame {
    id: page

    /// The names of the templates, and whether they have been asked for.
    property var templates: []
    property bool loaded: false
    /// The chosen template, empty for none, and what it prescribes.
    property string template: ""
    property string label: ""
    property int numberOfTests: 0

    readonly property string number: numberField.text.trim()
    /// Whether there is a job of this number; looked up anew when the rows change.
    property bool numberTaken: false
    /// The job was created, and is not in the list yet.
    property bool waiting: false
    /// The number that was refused the last time; empty if none was.
    property string refused: ""

    readonly property alias templateList: templateList

    /// The new job is in the list.
    signal created(QtObject job)

    /// Asks for what there is to make a job from. Each question waits for its answer, so none is put before the page
    /// is on the screen.
    function load() {
        if (page.loaded)
            return
        page.templates = JobManager.fetchJobTemplates()
        techField.text = JobManager.getTechID()
        page.loaded = true
        numberField.input.forceActiveFocus()
    }

    function choose(template) {
        page.template = template
        page.label = template.length > 0 ? JobManager.getWorkOrderLabelFromTemplate(template) : ""
        page.numberOfTests = template.length > 0 ? JobManager.getTemplateNumberOfTests(template) : 0
    }

    function lookUp() {
        page.numberTaken = page.number.length > 0 && JobManager.doesJobExist(page.number)
        if (page.waiting && page.numberTaken)
            page.created(JobTable.jobAt(JobManager, JobTable.rowOf(JobManager, page.number)))
    }

    function create() {
        const locations = page.template.length > 0 ? locationsField.text.trim() : ""
        page.waiting = JobManager.createNewJob(page.number, techField.text.trim(), page.template, locations,
                                               syncSwitch.checked)
        page.refused = page.waiting ? "" : page.number
    }

    function words() {
        if (page.waiting)
            return qsTr("Creating the job\u2026")
        if (page.refused.length === 0 || page.refused !== page.number)
            return qsTr("The new job becomes the current one.")
        if (page.numberTaken)
            return qsTr("Not confirmed: there is a job with this number now. Look whether it is yours.")
        return page.template.length > 0 && locationsField.text.trim().length > 0
                ? qsTr("Not created: the job service did not accept it. Is there such a list of locations?")
                : qsTr("Not created: the job service did not accept it.")
    }

    title: qsTr("New job")
    onNumberChanged: lookUp()
    StackView.onActivated: load()

    Connections {
        target: JobManager

        function onModelReset() { page.lookUp() }
    }
    // A change by somebody else at the same moment can make the module read the jobs just before the new one is there,
    // which it then neither announces nor looks for.
    Timer {
        running: page.waiting
        interval: 1000
        repeat: true
        onTriggered: JobManager.updateDataFromAPI(true)
    }

    RowLayout {
        anchors.top: parent.top
        anchors.bottom: bar.top
        width: parent.width
        spacing: 0

        ListView {
            id: templateList
            objectName: "templateList"
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            model: page.templates
            ScrollBar.vertical: ScrollBar { width: 10 }
            Layout.preferredWidth: 300
            Layout.maximumWidth: page.width * 0.4
            Layout.fillWidth: true
            Layout.fillHeight: true

            header: TemplateRow {
                objectName: "noTemplate"
                width: templateList.width
                text: qsTr("Without a template")
                chosen: page.template.length === 0
                onClicked: page.choose("")
            }
            delegate: TemplateRow {
                required property string modelData

                width: templateList.width
                text: modelData
                chosen: page.template === modelData
                onClicked: page.choose(modelData)
            }
            EmptyState {
                objectName: "noTemplates"
                anchors.centerIn: parent
                width: parent.width - 4 * Theme.margin
                visible: templateList.count === 0
                text: page.loaded ? qsTr("There are no templates") : qsTr("Looking for templates\u2026")
            }
            Rectangle {
                anchors.right: parent.right
                width: 1
                height: parent.height
                color: Theme.line
            }
        }
        Flickable {
            id: flickable
            clip: true
            contentHeight: form.height + 2 * Theme.margin
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { width: 10 }
            Layout.preferredWidth: 500
            Layout.fillWidth: true
            Layout.fillHeight: true

            Column {
                id: form
                x: Theme.margin
                y: Theme.margin
                width: flickable.width - 2 * Theme.margin
                spacing: Theme.margin

                Row {
                    width: form.width
                    spacing: Theme.margin

                    DetailField {
                        objectName: "label"
                        width: (form.width - Theme.margin) / 2
                        name: qsTr("Work order label")
                        value: page.label
                    }
                    DetailField {
                        objectName: "tests"
                        width: (form.width - Theme.margin) / 2
                        name: qsTr("Tests")
                        value: page.numberOfTests
                    }
                }
                FormField {
                    id: numberField
                    objectName: "numberField"
                    width: form.width
                    name: page.label.length > 0 ? page.label : qsTr("Job number")
                    fault: page.numberTaken && !page.waiting ? qsTr("There is a job with this number") : ""
                }
                FormField {
                    id: techField
                    objectName: "techField"
                    width: form.width
                    name: qsTr("Technician")
                }
                FormField {
                    id: locationsField
                    objectName: "locationsField"
                    width: form.width
                    enabled: page.template.length > 0
                    opacity: enabled ? 1 : 0.45
                    name: qsTr("List of locations")
                    hint: qsTr("Name of a file beside the templates, or nothing")
                }
                Switch {
                    id: syncSwitch
                    objectName: "syncSwitch"
                    height: Theme.touch
                    text: qsTr("Sync this job with Nimbrel")
                    font.pixelSize: Theme.medium
                    checked: true
                }
            }
        }
    }
    StatusBar {
        id: bar
        objectName: "createBar"
        anchors.bottom: parent.bottom
        width: parent.width
        message: page.words()
        busy: page.waiting
        failed: !page.waiting && page.refused.length > 0 && page.refused === page.number
        action: qsTr("Create job")
        actionEnabled: page.number.length > 0 && !page.numberTaken && !page.waiting
        onChosen: page.create()
    }
}
