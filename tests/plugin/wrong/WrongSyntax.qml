import QtQml 2.15

// Wrong on purpose, as Wrong.qml is: what is no QML at all.
QtObject {
    property int rightNumber: 1
    property int wrongNumber: = 2 // refused
}
