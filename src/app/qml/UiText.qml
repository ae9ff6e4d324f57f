import Quelmo
import QtQuick

// A text of the popover, drawn as plain text, exposed to assistive technologies with its text as
// its name. A text cut to its width tells the whole of itself to the pointer (tooltip) and to
// assistive technologies (description).
PlainText {
    id: label

    property bool secondary: false

    color: secondary ? Colours.secondary : Colours.ink
    font.pixelSize: 12
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.description: truncated ? text : ""

    // Only a cut text carries the pointer's tooltip.
    Loader {
        anchors.fill: parent
        active: label.truncated
        sourceComponent: Item {
            HoverHandler { id: pointer }
            TextTip {
                visible: pointer.hovered
                text: label.text
            }
        }
    }
}
