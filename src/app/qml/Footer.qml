pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// Language, cat style, launch at login, and the refresh note with Quit.
Column {
    id: footer

    required property PopoverContext context

    objectName: "footer"
    width: parent ? parent.width : 0
    spacing: 8

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8
        SymbolLabel {
            symbol: "globe"
            text: Texts.language
            anchors.verticalCenter: parent.verticalCenter
        }
        LanguagePicker {
            context: footer.context
            anchors.verticalCenter: parent.verticalCenter
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8
        SymbolLabel {
            symbol: "cat.fill"
            text: Texts.cat
            anchors.verticalCenter: parent.verticalCenter
        }
        Repeater {
            model: Rules.catStyles()
            CatSwatch {
                required property string modelData
                required property int index
                objectName: "swatch-" + modelData
                styleRaw: modelData
                selected: footer.context.catStyleRaw === modelData
                label: Texts.catLabels[index]
                anchors.verticalCenter: parent.verticalCenter
                onClicked: footer.context.catStyleRaw = modelData
            }
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        LoginSwitch {
            context: footer.context
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8
        UiText {
            text: Texts.updatedEverySecond
            font.pixelSize: 10
            secondary: true
            anchors.verticalCenter: parent.verticalCenter
        }
        QuitButton {
            text: Texts.quit
            anchors.verticalCenter: parent.verticalCenter
            onClicked: footer.context.quit()
        }
    }
}
