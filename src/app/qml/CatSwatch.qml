import Quelmo
import QtQuick
import QtQuick.Templates as T

// One cat style as a small fur-coloured circle with the style's markings; a ring shows the
// chosen one. The style's name is its tooltip.
T.AbstractButton {
    id: swatch

    property string styleRaw: "white"
    property bool selected: false
    // The style's name.
    property string label

    implicitWidth: 17
    implicitHeight: 17
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.description: label
    Accessible.checkable: true
    Accessible.checked: selected
    Keys.onReturnPressed: swatch.clicked()
    Accessible.onPressAction: swatch.clicked()

    HoverTip {
        shown: swatch.hovered
        text: swatch.label
    }

    contentItem: Item {}
    background: Item {
        Rectangle {
            anchors.fill: parent
            radius: width / 2
            color: Rules.catFur(swatch.styleRaw)
        }
        Row {
            visible: Rules.catDotted(swatch.styleRaw)
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -2
            spacing: 3
            Repeater {
                model: Rules.catDotted(swatch.styleRaw) ? 2 : 0
                Rectangle { width: 3; height: 3; radius: 1.5; color: Rules.grayMarks() }
            }
        }
        Row {
            visible: Rules.catStriped(swatch.styleRaw)
            anchors.centerIn: parent
            spacing: 2.4
            Repeater {
                // Made only for the styles that show them, like the dots above.
                model: Rules.catStriped(swatch.styleRaw) ? [7, 9, 7] : []
                Rectangle {
                    required property real modelData
                    width: 1.6
                    height: modelData
                    radius: 0.8
                    color: Rules.catStripes()
                    anchors.verticalCenter: parent.verticalCenter
                }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: width / 2
            color: "transparent"
            border.width: swatch.selected ? 2.2 : 1
            border.color: swatch.selected ? Colours.blue : Colours.faded(Colours.ink, 0.18)
        }
        Rectangle {
            visible: swatch.visualFocus
            anchors.fill: parent
            anchors.margins: -3
            radius: width / 2
            color: "transparent"
            border.width: 1
            border.color: Colours.blue
        }
    }
}
