import QtQuick 2.15
import QtQuick.Controls 2.15

/// A page of the application: its own background, a bar at the top, content below it.
Page {
    id: page

    property alias subtitle: bar.subtitle
    property alias canGoBack: bar.canGoBack
    property alias barButtons: bar.buttons

    /// The page has done its part; whoever shows it takes it away.
    signal finished()
    /// The person is to read this, whatever page is shown then.
    signal told(string message, bool failed)

    padding: 0
    background: Rectangle { color: Theme.page }
    header: TitleBar {
        id: bar
        title: page.title
        canGoBack: true
        onBack: page.finished()
    }
}
