pragma Singleton
import QtQuick 2.15

/// Colours and sizes of all screens. Sizes are pixels of an 800x480 screen that is used with fingers.
QtObject {
    readonly property color bar: "#16324f"
    readonly property color barText: "#ffffff"
    readonly property color barTextQuiet: "#c3d2e0"
    readonly property color barPressed: "#2a4a6b"
    readonly property color page: "#e9eef3"
    readonly property color card: "#ffffff"
    readonly property color cardPressed: "#dfe9f2"
    readonly property color line: "#cdd7e0"
    readonly property color text: "#17212b"
    readonly property color textQuiet: "#4d5b69"
    readonly property color accent: "#0b6e8a"
    readonly property color accentPressed: "#084f63"
    readonly property color done: "#2c7a3f"
    readonly property color failed: "#b3261e"
    readonly property color failedPressed: "#7d1a15"
    readonly property color section: "#dde7f0"
    readonly property color track: "#d3dce4"
    readonly property color chip: "#dde7f0"
    readonly property color notice: "#2b3642"
    readonly property color dim: "#a017212b"

    /// The least height and width of what a finger has to hit.
    readonly property int touch: 48
    readonly property int barHeight: 56
    readonly property int margin: 12
    readonly property int gap: 8
    readonly property int radius: 6

    readonly property int small: 14
    readonly property int medium: 16
    readonly property int large: 18
    readonly property int title: 21

    /// How long a page takes to slide in, in milliseconds.
    readonly property int slide: 150
}
