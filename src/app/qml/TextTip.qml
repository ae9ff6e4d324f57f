import Quelmo
import QtQuick
import QtQuick.Controls.Basic

// The popover's tooltip: its text is plain text like every other.
ToolTip {
    id: tip

    delay: 500
    contentItem: PlainText {
        text: tip.text
        color: Colours.ink
        font.pixelSize: 11
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
