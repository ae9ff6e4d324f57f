pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// The top processes under an expanded bar: name, a bar scaled to the busiest one, and the figure.
// Rows are filled in place, so a refresh makes no new row items.
Column {
    id: list

    property ProcessListModel procs
    property color color: Colours.blue
    // "cpu" or "memory"
    property string kind: "cpu"

    readonly property real maxValue: kind === "cpu" ? procs.maxCPU : procs.maxRSS

    width: parent ? parent.width : 0
    leftPadding: 22
    topPadding: 2
    bottomPadding: 2
    spacing: 5

    UiText {
        visible: list.procs.count === 0
        text: Texts.collecting
        font.pixelSize: 10
        secondary: true
    }

    Repeater {
        model: list.procs

        Item {
            id: row

            required property string name
            required property real cpu
            required property real rss

            width: list.width - list.leftPadding
            height: 15

            UiText {
                id: label
                objectName: "processName"
                text: row.name
                font.pixelSize: 11
                elide: Text.ElideMiddle
                maximumLineCount: 1
                // One width for every name, so equal values draw equal bars.
                width: 150
                anchors.verticalCenter: parent.verticalCenter
            }
            Item {
                id: track
                anchors.left: label.right
                anchors.leftMargin: 8
                anchors.right: figure.left
                anchors.rightMargin: 6
                anchors.verticalCenter: parent.verticalCenter
                height: 5

                Rectangle {
                    anchors.fill: parent
                    radius: height / 2
                    color: Colours.faded(list.color, 0.2)
                }
                Rectangle {
                    height: parent.height
                    radius: height / 2
                    color: Colours.faded(list.color, 0.65)
                    width: Rules.processFillWidth(track.width,
                                                  list.kind === "cpu" ? row.cpu : row.rss,
                                                  list.maxValue)
                }
            }
            UiText {
                id: figure
                objectName: "processFigure"
                width: 52
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                horizontalAlignment: Text.AlignRight
                text: Rules.processValueText(list.kind, row.cpu, row.rss)
                font.pixelSize: 10
                font.weight: Font.Medium
                secondary: true
            }
        }
    }
}
