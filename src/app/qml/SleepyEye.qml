import Quelmo
import QtQuick

// A closed eye: a downward arc, stroked. Painted once and kept as an image.
Item {
    id: eye

    property color color: Colours.ink
    property real lineWidth: 1.4

    ClosedEyeDrawing {
        anchors.fill: parent
        anchors.margins: -2 // the drawing's pad, for the round caps beyond the eye's rectangle
        color: eye.color
        lineWidth: eye.lineWidth
    }
}
