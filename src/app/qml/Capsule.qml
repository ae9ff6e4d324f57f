import Quelmo
import QtQuick

// A small text on a filled capsule: the Keep tag and badges, the count badge.
Rectangle {
    id: capsule

    property alias text: label.text
    property alias font: label.font
    property color textColor: Colours.ink
    property real hPadding: 5
    property real vPadding: 1

    implicitWidth: label.implicitWidth + 2 * hPadding
    implicitHeight: label.implicitHeight + 2 * vPadding
    radius: height / 2
    Accessible.role: Accessible.StaticText
    Accessible.name: label.text

    UiText {
        id: label
        anchors.centerIn: parent
        color: capsule.textColor
        font.pixelSize: 8
        font.bold: true
        Accessible.ignored: true
    }
}
