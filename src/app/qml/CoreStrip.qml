pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// One small bar per logical CPU, in order, sharing the width; an idle core keeps a 2 % sliver.
Row {
    id: strip

    property var cores: []
    property color color: Colours.blue

    width: parent ? parent.width : 0
    height: 18
    spacing: 3

    Repeater {
        model: strip.cores.length

        Item {
            id: core
            required property int index

            width: (strip.width - strip.spacing * (strip.cores.length - 1)) / strip.cores.length
            height: strip.height

            Rectangle {
                anchors.fill: parent
                radius: 2
                color: Colours.faded(strip.color, 0.2)
            }
            Rectangle {
                anchors.fill: parent
                radius: 2
                color: strip.color
                transform: Scale {
                    origin.y: strip.height
                    yScale: Rules.coreFillScale(strip.cores[core.index])
                }
            }
        }
    }
}
