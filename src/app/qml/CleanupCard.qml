pragma ComponentBehavior: Bound
import Quelmo
import QtQuick
import QtQuick.Templates as T

// The cleanup card: the header with the count and "Cut all", the advisor's banner and criteria,
// the mascot above the cut line, one row per candidate, the sensitivity slider and the advisor's
// status. Its state (open or not, criteria shown, the row under the pointer) lives in the
// popover's view, which the card asks to change it; the cut itself in `feed.cut`.
LiquidCard {
    id: card

    required property CleanupFeed feed
    required property bool expanded
    required property bool showCriteria
    required property int hoveredID
    required property string lang
    required property string catStyleRaw
    required property LoopClock loops

    signal toggleRequested
    signal criteriaToggled
    signal hoverRequested(int pid)

    readonly property CandidateListModel candidates: feed.candidates
    // The mascot's distance below its lane, following the cut sequence on its springs.
    property real catTravelY: 0

    // A row's Cut: the mascot walks from the middle of its lane (key -1) to `rowY`, the middle of
    // the row, both in the card's coordinates.
    function cutRow(pid, rowY) {
        const ys = {}
        ys["-1"] = mascot.mapToItem(card, 0, mascot.height / 2).y
        ys[String(pid)] = rowY
        feed.cut.cut([pid], pid, ys)
    }

    objectName: "cleanupCard"
    tint: candidates.count > 0 ? Colours.pink : "transparent"
    spacing: 8
    Accessible.role: Accessible.Grouping
    Accessible.name: Texts.cutPick

    Connections {
        target: card
        function onLangChanged() { card.feed.refreshLanguage() }
    }
    Connections {
        target: card.feed.cut
        function onCatTravelYChanged() {
            travel.stop()
            travel.spring = card.feed.cut.travelSpring
            travel.damping = card.feed.cut.travelDamping
            travel.to = card.feed.cut.catTravelY
            travel.start()
        }
    }
    SpringAnimation {
        id: travel
        target: card
        property: "catTravelY"
        mass: 1
        epsilon: 0.25
    }

    // The header: the whole row opens and closes the card.
    T.AbstractButton {
        id: header

        objectName: "cleanupHeader"
        width: parent.width
        height: 24
        focusPolicy: Qt.StrongFocus
        text: Texts.cutPick
        Accessible.role: Accessible.Button
        Accessible.name: card.candidates.count > 0 ? Texts.withCount(text, card.candidates.count) : text
        Accessible.checkable: true
        Accessible.checked: card.expanded
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        onClicked: card.toggleRequested()

        background: Rectangle {
            color: "transparent"
            radius: 6
            border.width: header.visualFocus ? 1.5 : 0
            border.color: Colours.blue
        }
        contentItem: Item {
            Row {
                spacing: 6
                anchors.verticalCenter: parent.verticalCenter
                AISparkle {
                    size: 11
                    anchors.verticalCenter: parent.verticalCenter
                }
                UiText {
                    text: Texts.cutPick
                    font.pixelSize: 12
                    font.weight: Font.DemiBold
                    anchors.verticalCenter: parent.verticalCenter
                }
                Capsule {
                    objectName: "countBadge"
                    visible: card.candidates.count > 0
                    text: String(card.candidates.count)
                    font.pixelSize: 10
                    hPadding: 6
                    color: Colours.faded(Colours.pink, 0.3)
                    anchors.verticalCenter: parent.verticalCenter
                }
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 6
                T.AbstractButton {
                    id: cutAllButton

                    objectName: "cutAllButton"
                    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                                            implicitContentWidth + leftPadding + rightPadding)
                    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                                             implicitContentHeight + topPadding + bottomPadding)
                    visible: card.candidates.cutAllOffered
                    text: Texts.cutAll
                    leftPadding: 10
                    rightPadding: 10
                    topPadding: 4
                    bottomPadding: 4
                    focusPolicy: Qt.StrongFocus
                    anchors.verticalCenter: parent.verticalCenter
                    Accessible.role: Accessible.Button
                    Accessible.name: text
                    Keys.onReturnPressed: clicked()
                    Keys.onEnterPressed: clicked()
                    onClicked: card.feed.cutAll()

                    contentItem: Row {
                        spacing: 4
                        Symbol {
                            name: "scissors"
                            size: 10
                            color: Colours.ink
                            anchors.verticalCenter: parent.verticalCenter
                        }
                        UiText {
                            text: cutAllButton.text
                            color: Colours.ink
                            font.pixelSize: 11
                            font.weight: Font.DemiBold
                            anchors.verticalCenter: parent.verticalCenter
                            Accessible.ignored: true
                        }
                    }
                    background: Rectangle {
                        radius: height / 2
                        color: Colours.faded(Colours.pink, cutAllButton.down ? 0.75 : 0.55)
                        border.width: cutAllButton.visualFocus ? 1.5 : 1
                        border.color: cutAllButton.visualFocus ? Colours.blue
                                                               : Qt.rgba(1, 1, 1, 0.6)
                    }
                }
                Symbol {
                    name: "chevron.right"
                    size: 10
                    color: Colours.secondary
                    rotation: card.expanded ? 90 : 0
                    anchors.verticalCenter: parent.verticalCenter
                    Behavior on rotation { NumberAnimation { duration: 180; easing.type: Easing.InOutQuad } }
                }
            }
        }
    }

    // The advisor's banner and, below it, the criteria it opens.
    Reveal {
        open: card.expanded
        gap: card.spacing
        Column {
            width: parent.width
            AIBanner {
                feed: card.feed
                showCriteria: card.showCriteria
                onClicked: card.criteriaToggled()
            }
            Reveal {
                open: card.showCriteria
                duration: 200
                gap: 8
                // The gap between the banner and the panel, inside the part that opens.
                Column {
                    width: parent.width
                    topPadding: 8
                    CriteriaPanel {
                        feed: card.feed
                    }
                }
            }
        }
    }

    // The mascot's lane and the dashed cut line; drawn above the rows it walks down to.
    Item {
        id: lane
        width: parent.width
        height: mascot.height + 6
        z: 2

        CatMascot {
            id: mascot
            width: parent.width
            trigger: card.feed.cut.cutTrigger
            hasTargets: card.candidates.cutTargetCount > 0
            travelY: card.catTravelY
            styleRaw: card.catStyleRaw
            loops: card.loops
        }
        DashLine {
            // From 2 to the width less 2, with a cap of 1 beyond either end.
            x: 1
            y: mascot.height + 2
            width: parent.width - 2
            height: 2
            color: Colours.faded(Colours.ink, 0.16)
            lineWidth: 2
            // In units of the line width; the square caps add one on each side of a dash.
            dashPattern: [2, 3.5]
        }
    }

    // The rows, or the text saying there are none.
    Reveal {
        open: card.expanded
        gap: card.spacing
        Column {
            width: parent.width
            UiText {
                objectName: "nothingToClean"
                visible: card.candidates.count === 0
                width: parent.width
                text: Texts.nothingToCleanUp
                secondary: true
                font.pixelSize: 10
                wrapMode: Text.Wrap
            }

            ListView {
                id: rows

                objectName: "candidateRows"
                visible: count > 0
                width: parent.width
                height: visible ? contentHeight : 0
                interactive: false
                model: card.candidates
                Accessible.role: Accessible.List
                Accessible.name: Texts.cutPick

                delegate: CandidateRow {
                    id: candidate
                    hovered: card.hoveredID === candidate.pid
                    advisorAvailable: card.feed.advisorAvailable
                    onHoverChanged: inside => {
                        if (inside)
                            card.hoverRequested(candidate.pid)
                        else if (card.hoveredID === candidate.pid)
                            card.hoverRequested(-1)
                    }
                    onCutPressed: card.cutRow(candidate.pid,
                                              candidate.mapToItem(card, 0, candidate.height / 2).y)
                }
                add: Transition {
                    NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 250; easing.type: Easing.InOutQuad }
                }
                remove: Transition {
                    SpringAnimation {
                        property: "leaving"
                        to: 1
                        spring: card.feed.cut.listSpring
                        damping: card.feed.cut.listDamping
                        epsilon: 0.02
                    }
                }
                displaced: Transition {
                    SpringAnimation {
                        property: "y"
                        spring: card.feed.cut.listSpring
                        damping: card.feed.cut.listDamping
                        epsilon: 0.5
                    }
                }
            }
        }
    }

    SensitivityRow {
        feed: card.feed
        topPadding: 4
    }
    AIFooter {
        feed: card.feed
        topPadding: 2
    }
}
