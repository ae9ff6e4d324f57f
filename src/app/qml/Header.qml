import Quelmo
import QtQuick

// The logo breathing between 0.98 and 1.04, the name and the chip, and the total power.
Item {
    id: header

    property string chipName
    property real totalWatts
    property string styleRaw: "white"
    // The clock of the logo's breathing (it stands still without one, and while it is stopped).
    property LoopClock loops: null

    objectName: "header"
    width: parent ? parent.width : 0
    height: 38

    QuelmoLogo {
        id: logo
        objectName: "logo"
        width: 38
        height: 38
        styleRaw: header.styleRaw
        pink: Qt.rgba(0.96, 0.62, 0.66, 1)
        blue: Qt.rgba(0.52, 0.62, 0.86, 1)
        // Breathes between 0.98 and 1.04, 0.7 s each way: its edges move 1.2 px.
        scale: 0.98 + 0.06 * breathing.phase
        readonly property Loop breathing: Loop {
            clock: header.loops
            halfPeriodMs: 700
            travel: 1.2
        }
    }

    Column {
        anchors.left: logo.right
        anchors.leftMargin: 10
        anchors.right: power.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1

        UiText {
            text: Texts.appName
            font.pixelSize: 16
            font.weight: Font.ExtraBold
        }
        UiText {
            objectName: "chipName"
            width: parent.width
            text: header.chipName
            font.pixelSize: 11
            secondary: true
            elide: Text.ElideRight
        }
    }

    Column {
        id: power
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter

        UiText {
            objectName: "totalWatts"
            anchors.right: parent.right
            text: Rules.watts(header.totalWatts, 1)
            font.pixelSize: 15
            font.weight: Font.DemiBold
            color: Colours.blue
        }
        UiText {
            anchors.right: parent.right
            text: Texts.totalPower
            font.pixelSize: 10
            secondary: true
        }
    }
}
