import Quelmo
import QtQuick
import QtQuick.Shapes

// A straight line across the middle of its rectangle, dashed: where the cat cuts.
Shape {
    id: line

    property color color: Colours.ink
    property real lineWidth: 1
    property alias dashPattern: path.dashPattern

    ShapePath {
        id: path
        fillColor: "transparent"
        strokeColor: line.color
        strokeWidth: line.lineWidth
        strokeStyle: ShapePath.DashLine
        dashPattern: [4, 3]
        startX: 0
        startY: line.height / 2
        PathLine { x: line.width; y: line.height / 2 }
    }
}
