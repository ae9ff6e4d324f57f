import Quelmo
import QtQuick
import QtQuick.Templates as T

// A row's Cut: white scissors and "Cut" on a rose capsule, grey when the advisor would keep the
// process (it still cuts; only the colour and the tooltip warn).
T.AbstractButton {
    id: button

    property bool keep: false
    property string tip
    // The row's name, told to assistive technologies with the tooltip.
    property string rowName

    objectName: "cutButton"
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             implicitContentHeight + topPadding + bottomPadding)
    text: Texts.cut
    leftPadding: 9
    rightPadding: 9
    topPadding: 3
    bottomPadding: 3
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: Texts.withTip(rowName, tip)
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    HoverTip {
        shown: button.hovered || button.visualFocus
        text: button.tip
    }

    contentItem: Row {
        spacing: 3
        Symbol {
            name: "scissors"
            size: 9
            color: "white"
            anchors.verticalCenter: parent.verticalCenter
        }
        UiText {
            text: button.text
            color: "white"
            font.pixelSize: 10
            font.weight: Font.DemiBold
            anchors.verticalCenter: parent.verticalCenter
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: height / 2
        color: button.keep ? Colours.gray : Colours.rose
        opacity: button.down ? 0.8 : 1
        border.width: button.visualFocus ? 1.5 : 0
        border.color: Colours.blue
    }
}
