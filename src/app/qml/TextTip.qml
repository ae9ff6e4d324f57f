import Quelmo
import QtQuick
import QtQuick.Templates as T

// The popover's tooltip: its text is plain text like every other.
T.ToolTip {
    id: tip

    // Centred above the item it explains.
    x: parent ? (parent.width - implicitWidth) / 2 : 0
    y: -implicitHeight - 3
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            contentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             contentHeight + topPadding + bottomPadding)
    margins: 6
    padding: 6
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
                 | T.Popup.CloseOnReleaseOutsideParent
    delay: 500
    contentItem: PlainText {
        text: tip.text
        color: Colours.ink
        font.pixelSize: 11
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
    background: Rectangle {
        color: "white"
        border.color: "#353637"
    }
}
