import Quelmo
import QtQuick

// One of the popover's symbols (Phosphor icons), in one colour or a gradient to `gradientTo`.
Image {
    property string name
    property color color: Colours.ink
    property color gradientTo: "transparent"
    // Colours to shade left to right through instead (two or more).
    property list<color> gradientAcross: []
    property real size: 12
    // Pixels drawn per point: more for a symbol shown scaled up or on a dense screen.
    property real renderScale: 2

    width: size
    height: size
    sourceSize.width: Math.ceil(size * renderScale)
    sourceSize.height: Math.ceil(size * renderScale)
    source: gradientAcross.length > 0 ? Rules.symbolAcross(name, gradientAcross)
                                      : Rules.symbol(name, color, gradientTo)
    fillMode: Image.PreserveAspectFit
    smooth: true
    Accessible.ignored: true
}
