pragma Singleton
import QtQuick

// The nine colours every view of the popover draws with, and the few shades made from them.
QtObject {
    readonly property color bg: Qt.rgba(0.91, 0.92, 0.89, 1)
    readonly property color ink: Qt.rgba(0.30, 0.31, 0.37, 1)
    readonly property color blue: Qt.rgba(0.53, 0.64, 0.83, 1)
    readonly property color lav: Qt.rgba(0.68, 0.63, 0.84, 1)
    readonly property color pink: Qt.rgba(0.91, 0.71, 0.70, 1)
    readonly property color sage: Qt.rgba(0.60, 0.75, 0.68, 1)
    readonly property color peach: Qt.rgba(0.93, 0.78, 0.60, 1)
    readonly property color rose: Qt.rgba(0.86, 0.55, 0.56, 1)
    readonly property color gray: Qt.rgba(0.62, 0.64, 0.68, 1)

    // Secondary text: the ink, faded.
    readonly property color secondary: Qt.rgba(0.30, 0.31, 0.37, 0.64)
    // Tracks and quiet fills.
    readonly property color track: Qt.rgba(0.30, 0.31, 0.37, 0.08)
    // The light, nearly opaque base under the popover's background tint.
    readonly property color base: Qt.rgba(0.975, 0.975, 0.97, 0.98)

    function faded(c, opacity) {
        return Qt.rgba(c.r, c.g, c.b, opacity)
    }
}
