pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// Language, cat style, launch at login, and the refresh note with Quit.
Column {
    id: footer

    required property PopoverContext context
    readonly property string lang: context.lang

    objectName: "footer"
    width: parent ? parent.width : 0
    spacing: 8

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8
        SymbolLabel {
            symbol: "globe"
            text: Rules.text("language", footer.lang)
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
            text: Rules.text("cat", footer.lang)
            anchors.verticalCenter: parent.verticalCenter
        }
        Repeater {
            model: Rules.catStyles()
            CatSwatch {
                required property string modelData
                objectName: "swatch-" + modelData
                styleRaw: modelData
                selected: footer.context.catStyleRaw === modelData
                lang: footer.lang
                anchors.verticalCenter: parent.verticalCenter
                onClicked: footer.context.catStyleRaw = modelData
            }
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        LoginSwitch {
            context: footer.context
            lang: footer.lang
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8
        UiText {
            text: Rules.text("updatedEverySecond", footer.lang)
            font.pixelSize: 10
            secondary: true
            anchors.verticalCenter: parent.verticalCenter
        }
        QuitButton {
            text: Rules.text("quit", footer.lang)
            anchors.verticalCenter: parent.verticalCenter
            onClicked: footer.context.quit()
        }
    }
}
