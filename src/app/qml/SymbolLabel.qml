import Quelmo
import QtQuick

// A small label with its symbol in front: the footer's row titles, the power card's title.
Row {
    id: label

    property alias symbol: glyph.name
    property alias text: caption.text
    property bool secondary: true
    property color color: secondary ? Colours.secondary : Colours.ink
    property int weight: Font.Normal
    property real size: 10

    spacing: 4
    Symbol {
        id: glyph
        size: label.size + 1
        color: label.color
        anchors.verticalCenter: parent.verticalCenter
    }
    UiText {
        id: caption
        color: label.color
        font.pixelSize: label.size
        font.weight: label.weight
        anchors.verticalCenter: parent.verticalCenter
    }
}
