import QtQml 2.15
import JobManagerUi 1.0

// Wrong on purpose, as Wrong.qml is: a type that is not there hides every other fault from the check.
QtObject {
    property var rightSection: PartialModel {}
    property var wrongSection: PartialModell {} // refused
}
