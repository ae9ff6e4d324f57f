import Quelmo
import QtQuick
import QtQuick.Templates as T

// The sensitivity slider, from lax to keen; it writes the hub's sensitivity as it moves.
Row {
    id: row

    required property CleanupFeed feed

    objectName: "sensitivityRow"
    width: parent ? parent.width : 0
    spacing: 5

    Symbol {
        name: "dial.medium.fill"
        size: 9
        color: Colours.secondary
        anchors.verticalCenter: parent.verticalCenter
    }
    UiText {
        text: Texts.sensitivity
        secondary: true
        font.pixelSize: 9
        font.weight: Font.Medium
        anchors.verticalCenter: parent.verticalCenter
    }
    UiText {
        text: Texts.lax
        secondary: true
        font.pixelSize: 8
        anchors.verticalCenter: parent.verticalCenter
    }
    T.Slider {
        id: slider
        objectName: "sensitivitySlider"
        from: 0
        to: 1
        stepSize: 0
        value: row.feed.sensitivity
        width: row.width - x - keen.implicitWidth - row.spacing
        height: 14
        padding: 0
        focusPolicy: Qt.StrongFocus
        anchors.verticalCenter: parent.verticalCenter
        Accessible.name: Texts.sensitivity
        onMoved: row.feed.sensitivity = value

        background: Rectangle {
            x: slider.leftPadding
            y: slider.topPadding + slider.availableHeight / 2 - height / 2
            width: slider.availableWidth
            height: 3
            radius: 1.5
            color: Colours.track
            Rectangle {
                width: slider.visualPosition * parent.width
                height: parent.height
                radius: 1.5
                color: Colours.blue
            }
        }
        handle: Rectangle {
            x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
            y: slider.topPadding + slider.availableHeight / 2 - height / 2
            width: 12
            height: 12
            radius: 6
            color: "white"
            border.width: slider.visualFocus ? 1.5 : 0.5
            border.color: slider.visualFocus ? Colours.blue : Colours.faded(Colours.ink, 0.3)
        }
    }
    UiText {
        id: keen
        text: Texts.keen
        secondary: true
        font.pixelSize: 8
        anchors.verticalCenter: parent.verticalCenter
    }
}
