pragma ComponentBehavior: Bound
import Quelmo
import QtQuick
import QtQuick.Templates as T

// The language menu: System, 한국어, English. Choosing one stores it at once.
T.ComboBox {
    id: picker

    required property PopoverContext context

    objectName: "languagePicker"
    model: context.langChoices
    currentIndex: context.langChoiceIndex
    displayText: Texts.languageChoices[currentIndex] ?? ""
    font.pixelSize: 11
    implicitHeight: 20
    implicitWidth: caption.implicitWidth + 26
    leftPadding: 8
    rightPadding: 18
    onActivated: index => context.langRaw = context.langChoices[index]
    Accessible.name: displayText

    contentItem: UiText {
        id: caption
        text: picker.displayText
        font.pixelSize: 11
        color: Colours.ink
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Symbol {
        x: picker.width - width - 7
        anchors.verticalCenter: picker.verticalCenter
        name: "chevron.right"
        rotation: 90
        size: 8
        color: Colours.blue
    }
    background: Rectangle {
        radius: 6
        color: picker.pressed ? Colours.faded(Colours.blue, 0.25) : Colours.faded(Colours.blue, 0.14)
        border.width: picker.visualFocus ? 1 : 0
        border.color: Colours.blue
    }
    delegate: T.ItemDelegate {
        id: choice
        required property int index
        required property string modelData
        width: Math.max(picker.width, 96)
        height: 24
        padding: 12
        spacing: 8
        highlighted: picker.highlightedIndex === index
        text: Texts.languageChoices[index] ?? ""
        font.pixelSize: 11
        Accessible.name: text
        contentItem: UiText {
            text: choice.text
            font.pixelSize: 11
            font.weight: picker.currentIndex === choice.index ? Font.DemiBold : Font.Normal
            verticalAlignment: Text.AlignVCenter
            Accessible.ignored: true
        }
        background: Rectangle {
            color: choice.highlighted ? Colours.faded(Colours.blue, 0.2) : "transparent"
            radius: 4
        }
    }
    popup: T.Popup {
        y: picker.height
        width: picker.width
        height: Math.min(contentItem.implicitHeight, picker.Window.height - topMargin - bottomMargin)
        topMargin: 6
        bottomMargin: 6
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: picker.delegateModel
            currentIndex: picker.highlightedIndex
            highlightMoveDuration: 0
            // The frame, above the rows.
            Rectangle {
                z: 10
                width: parent.width
                height: parent.height
                color: "transparent"
                border.color: "#bdbdbd"
            }
        }
        background: Rectangle {
            color: "white"
        }
    }
}
