import Quelmo
import QtQuick
import QtQuick.Shapes

// A closed eye: a downward arc, stroked.
Shape {
    id: eye

    property color color: Colours.ink
    property real lineWidth: 1.4

    ShapePath {
        fillColor: "transparent"
        strokeColor: eye.color
        strokeWidth: eye.lineWidth
        capStyle: ShapePath.RoundCap
        startX: 0
        startY: eye.height / 2 - 1
        PathQuad {
            x: eye.width
            y: eye.height / 2 - 1
            controlX: eye.width / 2
            controlY: eye.height + 1
        }
    }
}
