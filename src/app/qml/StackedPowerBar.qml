pragma ComponentBehavior: Bound
import Quelmo
import QtQuick
import QtQuick.Shapes

// The watts of CPU, GPU, Neural Engine and DRAM side by side, each as wide as its share, in one
// capsule. All zero draws the empty track.
Item {
    id: bar

    property real cpu
    property real gpu
    property real ane
    property real dram

    readonly property list<color> colors: [Colours.blue, Colours.lav, Colours.pink, Colours.gray]

    width: parent ? parent.width : 0
    height: 8

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Colours.track
    }
    Repeater {
        model: 4

        Shape {
            id: segment
            required property int index

            anchors.fill: parent
            ShapePath {
                strokeWidth: -1
                strokeColor: "transparent"
                fillColor: bar.colors[segment.index]
                PathSvg {
                    path: Rules.powerSegmentPath(segment.index, bar.cpu, bar.gpu, bar.ane, bar.dram,
                                                 bar.width, bar.height)
                }
            }
        }
    }
}
