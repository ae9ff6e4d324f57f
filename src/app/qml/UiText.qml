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

    // A cut text under the pointer shows the popover's one tooltip for such texts.
    HoverHandler {
        id: pointer
        enabled: label.truncated
        onHoveredChanged: {
            if (pointer.hovered) {
                CutTextTip.text = label.text
                CutTextTip.owner = label
            } else if (CutTextTip.owner === label) {
                CutTextTip.owner = null
            }
        }
    }
}
