import Quelmo
import QtQuick

// One entry of the power legend: a dot, the component's name and its watts.
Row {
    property color color
    property string label
    property real watts

    spacing: 4

    Rectangle {
        width: 6
        height: 6
        radius: 3
        color: parent.color
        anchors.verticalCenter: parent.verticalCenter
    }
    UiText {
        text: parent.label
        font.pixelSize: 9
        secondary: true
        anchors.verticalCenter: parent.verticalCenter
    }
    UiText {
        text: Rules.fixed(parent.watts, 1)
        font.pixelSize: 9
        font.weight: Font.Medium
        anchors.verticalCenter: parent.verticalCenter
    }
}
