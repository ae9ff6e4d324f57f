import Quelmo 1.0
import QtQuick
import QtQuick.Shapes

// A straight line across the middle of its rectangle, dashed: where the cat cuts.
Shape {
    id: line

    property color color: Palette.ink
    property real lineWidth: 1
    property var dashPattern: [4, 3]

    ShapePath {
        fillColor: "transparent"
        strokeColor: line.color
        strokeWidth: line.lineWidth
        strokeStyle: ShapePath.DashLine
        dashPattern: line.dashPattern
        startX: 0
        startY: line.height / 2
        PathLine { x: line.width; y: line.height / 2 }
    }
}
