import Quelmo
import QtQuick

// The cards' style: a rounded rectangle (radius 18) filled with its tint at 0.55, or white at 0.88
// without one, over a soft shadow (black at 0.13, blur 12, 5 down). Children stack in a column
// inside `padding`.
Item {
    id: card

    property color tint: "transparent"
    property real padding: 12
    property alias spacing: body.spacing
    default property alias content: body.data

    width: parent ? parent.width : 0
    implicitHeight: body.implicitHeight + 2 * padding

    // The shadow's nine-patch: 16 of blur around the card, corners of 18 (see CardShadowProvider).
    BorderImage {
        source: "image://cardshadow/card"
        x: -16
        y: -16 + 5
        width: parent.width + 32
        height: parent.height + 32
        border { left: 34; right: 34; top: 34; bottom: 34 }
        Accessible.ignored: true
    }
    Rectangle {
        anchors.fill: parent
        radius: 18
        color: card.tint.a > 0 ? Colours.faded(card.tint, 0.55) : Qt.rgba(1, 1, 1, 0.88)
    }
    Column {
        id: body
        x: card.padding
        y: card.padding
        width: card.width - 2 * card.padding
    }
}
