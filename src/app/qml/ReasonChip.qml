import Quelmo
import QtQuick

// Why a process is offered: the reason's symbol and label on a capsule of the reason's colour.
Rectangle {
    id: chip

    property string symbol
    property string label
    property color tint: Colours.gray

    implicitWidth: content.implicitWidth + 10
    implicitHeight: content.implicitHeight + 2
    radius: height / 2
    color: Colours.faded(tint, 0.45)
    Accessible.role: Accessible.StaticText
    Accessible.name: label

    Row {
        id: content
        anchors.centerIn: parent
        spacing: 3
        Symbol {
            name: chip.symbol
            size: 7
            color: Colours.faded(Colours.ink, 0.85)
            anchors.verticalCenter: parent.verticalCenter
        }
        UiText {
            text: chip.label
            font.pixelSize: 8
            font.weight: Font.DemiBold
            color: Colours.faded(Colours.ink, 0.85)
            anchors.verticalCenter: parent.verticalCenter
            Accessible.ignored: true
        }
    }
}
