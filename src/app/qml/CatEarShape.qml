import Quelmo
import QtQuick
import QtQuick.Shapes

// A cat's ear in its rectangle: a rounded triangle with a soft tip and a slightly bulging base.
Shape {
    id: ear

    property color fillColor: "white"
    property color strokeColor: "transparent"
    property real strokeWidth: 1
    readonly property real w: width
    readonly property real h: height

    ShapePath {
        fillColor: ear.fillColor
        strokeColor: ear.strokeColor
        strokeWidth: ear.strokeWidth
        joinStyle: ShapePath.RoundJoin
        startX: 0.16 * ear.w
        startY: ear.h
        PathQuad { x: 0.415 * ear.w; y: 0.05 * ear.h; controlX: -0.05 * ear.w; controlY: 0.5 * ear.h }
        PathQuad { x: 0.585 * ear.w; y: 0.05 * ear.h; controlX: 0.5 * ear.w; controlY: -0.06 * ear.h }
        PathQuad { x: 0.84 * ear.w; y: ear.h; controlX: 1.05 * ear.w; controlY: 0.5 * ear.h }
        PathQuad { x: 0.16 * ear.w; y: ear.h; controlX: 0.5 * ear.w; controlY: 1.07 * ear.h }
    }
}
