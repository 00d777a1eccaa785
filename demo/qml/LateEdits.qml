import QtQuick 2.15

/// Edits whose page has gone before they could be written: writes them as soon as that can be.
QtObject {
    id: lateEdits

    /// The service has not taken the value of the property with this label, or its job is gone.
    signal refused(string label)

    /// Takes over the edits that a feed keeps.
    function take(feed) {
        const names = Object.keys(feed.kept)
        if (feed.job === null || names.length === 0)
            return
        const labels = {}
        names.forEach(name => labels[name] = feed.label(name))
        writer.createObject(lateEdits, { kept: feed.kept, labels: labels, job: feed.job })
    }

    readonly property Component writer: Component {
        PropertyFeed {
            id: feed

            // As they were on the page: a job that is gone has none.
            property var labels: ({})

            function finish() {
                // Another form of the job is to show what was written here.
                feed.readAnew()
                feed.destroy()
            }

            onRefused: lateEdits.refused(feed.labels[name])
            onFresh: {
                Object.keys(feed.kept).forEach(name => feed.write(name, feed.kept[name]))
                Qt.callLater(feed.finish)
            }
            onJobChanged: {
                if (feed.job !== null)
                    return
                Object.keys(feed.kept).forEach(name => lateEdits.refused(feed.labels[name]))
                feed.destroy()
            }
        }
    }
}
