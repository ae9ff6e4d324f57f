pragma ComponentBehavior: Bound
import Quelmo
import QtQuick
import QtQuick.Templates as T

// The popover's content: header, the cleanup card's place, the metrics, the power card and the
// footer, 320 wide. It asks for its content's height up to `maxHeight` and scrolls beyond.
Item {
    id: view

    required property PopoverContext context
    // What the cleanup card shows and cuts with.
    required property CleanupFeed cleanup
    readonly property PopoverReadings readings: context.readings
    readonly property string lang: context.lang

    // Which collapsible sections are open: "cpu", "memory", "cleanup"; kept with the criteria's
    // disclosure by the popover, so they outlive this window.
    readonly property PopoverViewState viewState: context.viewState
    readonly property list<string> expanded: viewState.expanded
    // The cleanup card's state (the card fills `cleanupCardSlot`).
    readonly property bool showCriteria: viewState.showCriteria
    property int hoveredID: -1

    readonly property real contentHeight: stack.implicitHeight + 2 * stack.y
    readonly property real maxHeight: context.maxHeight
    // The window may be taller than the popover (it is made as tall as the popover may grow);
    // the popover then sits at its top, or at its bottom when it opened above the click.
    property bool contentAtBottom: false

    // Every text of the views follows the popover's language, all at once.
    Binding {
        target: Texts
        property: "lang"
        value: view.lang
    }

    function toggle(section) {
        viewState.expanded = Rules.toggled(expanded, section)
    }

    objectName: "popoverView"
    implicitWidth: 320
    implicitHeight: Rules.popoverHeight(contentHeight, maxHeight)
    focus: true

    Item {
        id: panel
        width: parent.width
        height: view.implicitHeight
        y: view.contentAtBottom ? view.height - height : 0

        // Colours.bg at 0.2 over the light base, in one opaque fill (one blend less per frame).
        Rectangle {
            anchors.fill: parent
            color: Qt.tint(Colours.base, Colours.faded(Colours.bg, 0.2))
            border.width: 1
            border.color: Colours.faded(Colours.ink, 0.16)
        }

        Flickable {
            id: scroller
            anchors.fill: parent
            contentWidth: width
            contentHeight: view.contentHeight
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            T.ScrollBar.vertical: T.ScrollBar {
                id: scrollBar
                policy: scroller.contentHeight > scroller.height ? T.ScrollBar.AlwaysOn
                                                                 : T.ScrollBar.AlwaysOff
                visible: policy !== T.ScrollBar.AlwaysOff
                implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                                        implicitContentWidth + leftPadding + rightPadding)
                implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                                         implicitContentHeight + topPadding + bottomPadding)
                padding: 2
                minimumSize: width / height
                contentItem: Rectangle {
                    implicitWidth: scrollBar.interactive ? 6 : 2
                    implicitHeight: scrollBar.interactive ? 6 : 2
                    radius: width / 2
                    color: scrollBar.pressed ? "#353637" : "#bdbdbd"
                    opacity: 0.0
                    states: State {
                        name: "active"
                        when: scrollBar.policy === T.ScrollBar.AlwaysOn
                              || (scrollBar.active && scrollBar.size < 1.0)
                        PropertyChanges { scrollBar.contentItem.opacity: 0.75 }
                    }
                    transitions: Transition {
                        from: "active"
                        SequentialAnimation {
                            PauseAnimation { duration: 450 }
                            NumberAnimation {
                                target: scrollBar.contentItem
                                duration: 200
                                property: "opacity"
                                to: 0.0
                            }
                        }
                    }
                }
            }

            Column {
                id: stack
                objectName: "stack"
                x: 16
                y: 16
                width: 320 - 32
                spacing: 12

                Header {
                    chipName: view.readings.chipName
                    totalWatts: view.readings.totalWatts
                    styleRaw: view.context.catStyleRaw
                    loops: view.context.loops
                }

                // The cleanup card, between the header and the metrics.
                Item {
                    objectName: "cleanupCardSlot"
                    width: parent.width
                    implicitHeight: cleanupCard.implicitHeight
                    CleanupCard {
                        id: cleanupCard
                        width: parent.width
                        feed: view.cleanup
                        expanded: view.expanded.includes("cleanup")
                        showCriteria: view.showCriteria
                        hoveredID: view.hoveredID
                        lang: view.lang
                        catStyleRaw: view.context.catStyleRaw
                        loops: view.context.loops
                        onToggleRequested: view.toggle("cleanup")
                        onCriteriaToggled: view.viewState.showCriteria = !view.showCriteria
                        onHoverRequested: pid => view.hoveredID = pid
                    }
                }

                MetricsSection {
                    readings: view.readings
                    context: view.context
                    cpuExpanded: view.expanded.includes("cpu")
                    memoryExpanded: view.expanded.includes("memory")
                    onToggle: section => view.toggle(section)
                }

                PowerCard {
                    readings: view.readings
                }

                Footer {
                    context: view.context
                }
            }
        }
    }

    // The one tooltip of the texts cut to their width (see UiText).
    TextTip {
        parent: CutTextTip.owner ? CutTextTip.owner : view
        visible: CutTextTip.owner !== null
        text: CutTextTip.text
    }
}
