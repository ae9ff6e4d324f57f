import Quelmo
import QtQuick
import QtQuick.Templates as T

// One reading as a bar: symbol, title and figure above, the bar, a detail line below. With
// `expandable` a chevron opens the per-process list under it.
Column {
    id: bar

    property string title
    property string icon
    property color color: Colours.blue
    property real value
    property string valueText
    property string detail
    property bool isExpanded: false
    property bool expandable: false

    signal toggle

    width: parent ? parent.width : 0
    spacing: 5

    Item {
        width: parent.width
        height: 16

        Symbol {
            name: bar.icon
            color: bar.color
            size: 12
            x: 2
            anchors.verticalCenter: parent.verticalCenter
        }
        UiText {
            x: 22
            text: bar.title
            font.pixelSize: 12
            font.weight: Font.DemiBold
            anchors.verticalCenter: parent.verticalCenter
        }
        UiText {
            objectName: "figure"
            anchors.right: chevron.visible ? chevron.left : parent.right
            anchors.rightMargin: chevron.visible ? 4 : 0
            anchors.verticalCenter: parent.verticalCenter
            text: bar.valueText
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
        T.AbstractButton {
            id: chevron

            readonly property string tip: Texts.showPerProcessUsage

            visible: bar.expandable
            width: 16
            height: 16
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            hoverEnabled: true
            Accessible.role: Accessible.Button
            Accessible.name: Texts.withTip(bar.title, tip)
            Accessible.description: tip
            Accessible.checkable: true
            Accessible.checked: bar.isExpanded
            Keys.onReturnPressed: bar.toggle()
            Accessible.onPressAction: bar.toggle()
            onClicked: bar.toggle()

            HoverTip {
                shown: chevron.hovered
                delay: 600
                text: chevron.tip
            }

            contentItem: Item {
                Symbol {
                    anchors.centerIn: parent
                    name: "chevron.right"
                    color: Colours.secondary
                    size: 10
                    rotation: bar.isExpanded ? 90 : 0
                    Behavior on rotation {
                        NumberAnimation { duration: 180; easing.type: Easing.InOutQuad }
                    }
                }
            }
            background: Rectangle {
                radius: 4
                color: chevron.hovered ? Colours.track : "transparent"
                border.width: chevron.visualFocus ? 1 : 0
                border.color: Colours.blue
            }
        }
    }

    Item {
        width: parent.width
        height: 7

        Rectangle {
            anchors.fill: parent
            radius: height / 2
            color: Colours.track
        }
        Rectangle {
            objectName: "fill"
            height: parent.height
            radius: height / 2
            width: Rules.barFillWidth(parent.width, bar.value)
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: Colours.faded(bar.color, 0.75) }
                GradientStop { position: 1; color: bar.color }
            }
        }
    }

    UiText {
        text: bar.detail
        font.pixelSize: 10
        secondary: true
        width: parent.width
        elide: Text.ElideRight
    }
}
