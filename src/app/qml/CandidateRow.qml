import Quelmo
import QtQuick

// One cleanup candidate: status dot, name, Keep tag, memory and Cut; under the pointer (or with
// the keyboard on its Cut) it opens a detail block with the reason, the idle line and the
// advisor's note.
Item {
    id: row

    // From the candidate model.
    required property int index
    required property int pid
    required property string title
    required property string reasonLabel
    required property string reasonSymbol
    required property string reasonColor
    required property real rss
    required property string idleDetail
    required property bool hasVerdict
    required property bool isKeep
    required property string statusColor
    required property string riskLabel
    required property string badgeColor
    required property string explanation

    // From the card.
    property bool hovered: false
    property bool advisorAvailable: false
    // 0 while listed, running to 1 as the row leaves (shrinks from the top, fades, drops).
    property real leaving: 0

    signal hoverChanged(bool inside)
    signal cutPressed

    objectName: "candidateRow"
    width: ListView.view ? ListView.view.width : 0
    implicitHeight: content.implicitHeight + 6
    height: implicitHeight
    opacity: 1 - Math.min(leaving, 1)
    transform: [
        Scale {
            origin.x: row.width / 2
            origin.y: 0
            xScale: 1 - 0.45 * row.leaving
            yScale: 1 - 0.45 * row.leaving
        },
        Translate { y: 46 * row.leaving }
    ]

    HoverHandler {
        onHoveredChanged: row.hoverChanged(hovered)
    }

    Column {
        id: content
        y: 3
        width: parent.width

        Item {
            width: parent.width
            height: Math.max(cut.implicitHeight, name.implicitHeight)

            Row {
                spacing: 7
                anchors.verticalCenter: parent.verticalCenter
                Rectangle {
                    width: 7
                    height: 7
                    radius: 3.5
                    color: Colours[row.statusColor]
                    anchors.verticalCenter: parent.verticalCenter
                    Accessible.ignored: true
                }
                UiText {
                    id: name
                    objectName: "candidateName"
                    width: Math.min(implicitWidth, row.width - 14 - memory.implicitWidth
                                    - cut.implicitWidth - (keepTag.visible ? keepTag.width + 7 : 0)
                                    - 24)
                    text: row.title
                    font.pixelSize: 12
                    font.weight: Font.Medium
                    elide: Text.ElideMiddle
                    maximumLineCount: 1
                    anchors.verticalCenter: parent.verticalCenter
                }
                Capsule {
                    id: keepTag
                    visible: row.isKeep
                    text: Texts.keep
                    hPadding: 4
                    color: Colours.faded(Colours.sage, 0.7)
                    anchors.verticalCenter: parent.verticalCenter
                }
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 7
                UiText {
                    id: memory
                    text: Rules.mem(row.rss)
                    secondary: true
                    font.pixelSize: 10
                    anchors.verticalCenter: parent.verticalCenter
                }
                CutButton {
                    id: cut
                    keep: row.isKeep
                    rowName: row.title
                    tip: row.isKeep ? Texts.cutKeptTip : Texts.cutNowTip
                    anchors.verticalCenter: parent.verticalCenter
                    onClicked: row.cutPressed()
                    onActiveFocusChanged: row.hoverChanged(activeFocus)
                }
            }
        }

        // The detail block: fades in while dropping from the top edge.
        Item {
            id: detail

            readonly property bool shown: row.hovered

            width: parent.width
            // The 5 points between the top line and the block come with it. The height changes
            // in one step while the block fades and drops in: animating it would move (and
            // redraw) everything below the row on every frame, and hovering from row to row
            // would cost several times what the whole card costs otherwise.
            height: shown ? block.implicitHeight + 5 : 0
            clip: true
            visible: height > 0

            Column {
                id: block
                x: 14
                y: detail.shown ? 5 : -1
                width: parent.width - 14
                spacing: 3
                opacity: detail.shown ? 1 : 0
                Behavior on opacity { NumberAnimation { duration: 150; easing.type: Easing.InOutQuad } }
                Behavior on y { NumberAnimation { duration: 150; easing.type: Easing.InOutQuad } }

                Row {
                    spacing: 5
                    ReasonChip {
                        symbol: row.reasonSymbol
                        label: row.reasonLabel
                        tint: Colours[row.reasonColor]
                        anchors.verticalCenter: parent.verticalCenter
                    }
                    UiText {
                        visible: text.length > 0
                        text: row.idleDetail
                        secondary: true
                        font.pixelSize: 9
                        anchors.verticalCenter: parent.verticalCenter
                    }
                }
                Row {
                    visible: row.hasVerdict
                    width: parent.width
                    spacing: 5
                    Capsule {
                        id: badge
                        text: row.isKeep ? Texts.keep : row.riskLabel
                        color: Colours[row.badgeColor]
                    }
                    UiText {
                        width: parent.width - badge.width - 5
                        text: row.explanation
                        secondary: true
                        font.pixelSize: 10
                        elide: Text.ElideRight
                        maximumLineCount: 1
                    }
                }
                Row {
                    visible: !row.hasVerdict && row.advisorAvailable
                    spacing: 4
                    AISparkle {
                        size: 8
                        anchors.verticalCenter: parent.verticalCenter
                    }
                    UiText {
                        text: Texts.aiIsThinking
                        secondary: true
                        font.pixelSize: 9
                        anchors.verticalCenter: parent.verticalCenter
                    }
                }
            }
        }
    }
}
