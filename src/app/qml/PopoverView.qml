import Quelmo 1.0
import QtQuick
import QtQuick.Controls.Basic

// The popover's content: header, the cleanup card's place, the metrics, the power card and the
// footer, 320 wide. It asks for its content's height up to `maxHeight` and scrolls beyond.
Item {
    id: view

    required property PopoverContext context
    readonly property QtObject metrics: context.metrics
    readonly property string lang: context.lang

    // Which collapsible sections are open: "cpu", "memory", "cleanup".
    property var expanded: []
    // The cleanup card's state (the card fills `cleanupCardSlot`).
    property int cutTrigger: 0
    property bool showCriteria: false
    property int hoveredID: -1
    property var rowYs: ({})
    property real catTravelY: 0

    readonly property real contentHeight: stack.implicitHeight + 2 * stack.y
    readonly property real maxHeight: context.maxHeight

    function toggle(section) {
        expanded = Rules.toggled(expanded, section)
    }

    objectName: "popoverView"
    implicitWidth: 320
    implicitHeight: Rules.popoverHeight(contentHeight, maxHeight)
    focus: true

    Rectangle {
        anchors.fill: parent
        color: Palette.base
    }
    Rectangle {
        anchors.fill: parent
        color: Palette.bg
        opacity: 0.2
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.width: 1
        border.color: Palette.faded(Palette.ink, 0.16)
    }

    Flickable {
        id: scroller
        anchors.fill: parent
        contentWidth: width
        contentHeight: view.contentHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {
            policy: scroller.contentHeight > scroller.height ? ScrollBar.AlwaysOn
                                                             : ScrollBar.AlwaysOff
        }

        Column {
            id: stack
            objectName: "stack"
            x: 16
            y: 16
            width: 320 - 32
            spacing: 12

            Header {
                chipName: view.metrics.chipName
                totalWatts: view.metrics.totalWatts
                styleRaw: view.context.catStyleRaw
                animate: view.context.shown
            }

            // The cleanup card goes here, between the header and the metrics.
            Loader {
                id: cleanupCardSlot
                objectName: "cleanupCardSlot"
                width: parent.width
                visible: item !== null
            }

            MetricsSection {
                metrics: view.metrics
                context: view.context
                expanded: view.expanded
                lang: view.lang
                onToggle: section => view.toggle(section)
            }

            PowerCard {
                metrics: view.metrics
            }

            Footer {
                context: view.context
            }
        }
    }
}
