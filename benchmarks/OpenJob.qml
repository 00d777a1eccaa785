import QtQml 2.15
import QtQuick 2.15
import JobManagerUi 1.0

import "../demo/qml"
import "../demo/qml/SectionLayout.js" as SectionLayout

/// The demo's page of a job without its items: everything that the page reads and computes with each update, and
/// nothing that is made or painted anew.
QtObject {
    id: page

    /// The job, or null.
    property QtObject job: null

    /// How many rows and sections are on a screen.
    readonly property int onScreen: 12

    property var sections: []

    function layOut() {
        page.sections = feed.list ? SectionLayout.place(feed.list.sections, feed.list.rowCount(), {},
                                                        JobManager.groupType === TestGroupType.DEFAULT_VIEW) : []
    }

    property TestFeed feed: TestFeed {
        id: feed
        job: page.job
        onListChanged: page.layOut()
    }
    property Connections resets: Connections {
        target: feed.list

        function onModelReset() { page.layOut() }
    }
    property JobTexts texts: JobTexts { job: page.job }
    property Instantiator rows: Instantiator {
        model: page.onScreen
        delegate: TestTexts {
            required property int index

            // The objects stay: that a row shows another test is no matter of an update.
            test: feed.list ? feed.list.data(feed.list.index(index, 0), TestList.Test) || null : null
            readable: feed.readable
        }
    }
    property Instantiator slices: Instantiator {
        model: page.onScreen
        delegate: PartialModel {
            required property int index

            model: feed.list
            startIndex: index < page.sections.length ? page.sections[index].start : 0
            testsCount: index < page.sections.length ? page.sections[index].count : 0
        }
    }
}
