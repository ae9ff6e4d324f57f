import Quelmo
import QtQuick

// A cat's ear in its rectangle: a rounded triangle with a soft tip and a slightly bulging base.
// Painted once and kept as an image while the cat moves.
Item {
    id: ear

    property color fillColor: "white"
    property color strokeColor: "transparent"
    property real strokeWidth: 1

    EarDrawing {
        anchors.fill: parent
        anchors.margins: -2 // the drawing's pad, for the stroke beyond the ear's rectangle
        fillColor: ear.fillColor
        strokeColor: ear.strokeColor
        strokeWidth: ear.strokeWidth
    }
}
