import Quelmo
import QtQuick
import QtQuick.Templates as T

// The advisor's banner: who judges the rows (or that the notes are off), with a chevron that
// opens the panel explaining how candidates are picked.
T.AbstractButton {
    id: banner

    required property CleanupFeed feed
    property bool showCriteria: false

    objectName: "aiBanner"
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             implicitContentHeight + topPadding + bottomPadding)
    width: parent ? parent.width : 0
    leftPadding: 9
    rightPadding: 9
    topPadding: 5
    bottomPadding: 5
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    text: feed.advisorAvailable ? Texts.judgedByAI : Texts.aiNotesOff
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: Texts.seeHowItDecides
    Accessible.checkable: true
    Accessible.checked: showCriteria
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    HoverTip {
        shown: banner.hovered || banner.visualFocus
        text: Texts.seeHowItDecides
    }

    contentItem: Item {
        implicitHeight: Math.max(title.implicitHeight, 12)
        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            AISparkle {
                size: 11
                anchors.verticalCenter: parent.verticalCenter
            }
            UiText {
                id: title
                text: banner.text
                font.pixelSize: 10
                font.weight: Font.DemiBold
                color: Colours.ink
                anchors.verticalCenter: parent.verticalCenter
                Accessible.ignored: true
            }
            Symbol {
                name: "chevron.down"
                size: 8
                color: Colours.secondary
                rotation: banner.showCriteria ? 180 : 0
                anchors.verticalCenter: parent.verticalCenter
                Behavior on rotation { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
            }
        }
        Row {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 3
            Symbol {
                name: "lock.fill"
                size: 8
                color: Colours.secondary
                anchors.verticalCenter: parent.verticalCenter
            }
            UiText {
                text: Texts.onDevice
                secondary: true
                font.pixelSize: 8
                font.weight: Font.Medium
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: Colours.faded(Colours.pink, 0.28) }
            GradientStop { position: 1; color: Colours.faded(Colours.lav, 0.28) }
        }
        border.width: banner.visualFocus ? 1.5 : 1
        border.color: banner.visualFocus ? Colours.blue : Colours.faded(Colours.lav, 0.35)
    }
}
