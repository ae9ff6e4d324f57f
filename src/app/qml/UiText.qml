import Quelmo 1.0
import QtQuick

// A text of the popover, exposed to assistive technologies with its text as its name.
Text {
    property bool secondary: false

    color: secondary ? Palette.secondary : Palette.ink
    font.pixelSize: 12
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
