import Quelmo
import QtQuick

// One criterion: its symbol in its colour, a title over a detail line.
Row {
    id: item

    property string symbol
    property color tint: Colours.ink
    property string title
    property string detail

    width: parent ? parent.width : 0
    spacing: 7

    Item {
        width: 14
        height: 14
        Symbol {
            anchors.centerIn: parent
            name: item.symbol
            size: 10
            color: item.tint
        }
    }
    Column {
        width: item.width - 21
        UiText {
            width: parent.width
            text: item.title
            font.pixelSize: 10
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
        }
        UiText {
            width: parent.width
            text: item.detail
            secondary: true
            font.pixelSize: 9
            wrapMode: Text.Wrap
        }
    }
}
