import Quelmo
import QtQuick
import QtQuick.Templates as T

// The footer's Quit: a quiet rounded button.
T.AbstractButton {
    id: button

    objectName: "quitButton"
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             implicitContentHeight + topPadding + bottomPadding)
    leftPadding: 8
    rightPadding: 8
    topPadding: 3
    bottomPadding: 3
    font.pixelSize: 11
    font.weight: Font.Medium
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.onReturnPressed: button.clicked()
    Accessible.onPressAction: button.clicked()

    contentItem: UiText {
        text: button.text
        font: button.font
        color: Colours.secondary
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: 7
        color: button.down ? Colours.faded(Colours.ink, 0.14) : Colours.faded(Colours.ink, 0.07)
        border.width: button.visualFocus ? 1 : 0
        border.color: Colours.blue
    }
}
