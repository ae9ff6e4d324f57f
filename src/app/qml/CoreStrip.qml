pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// One small bar per logical CPU, in order, sharing the width; an idle core keeps a 2 % sliver.
// On machines with many CPUs the bars wrap into rows rather than shrink below 2 points.
Grid {
    id: strip

    property list<real> cores
    property color color: Colours.blue

    readonly property int rowCount: Math.ceil(cores.length / columns)
    readonly property real cellWidth: (width - columnSpacing * (columns - 1)) / columns
    readonly property real cellHeight: rowCount <= 1 ? 18 : Math.max(4, (18 - (rowCount - 1)) / rowCount)

    width: parent ? parent.width : 0
    columns: Rules.coreColumns(cores.length, width)
    columnSpacing: Rules.coreSpacing(cores.length, width)
    rowSpacing: 1

    Repeater {
        model: strip.cores.length

        Item {
            id: core
            required property int index

            width: strip.cellWidth
            height: strip.cellHeight

            Rectangle {
                anchors.fill: parent
                radius: Math.min(2, width / 2)
                color: Colours.faded(strip.color, 0.2)
            }
            Rectangle {
                anchors.fill: parent
                radius: Math.min(2, width / 2)
                color: strip.color
                transform: Scale {
                    origin.y: core.height
                    yScale: Rules.coreFillScale(strip.cores[core.index])
                }
            }
        }
    }
}
