pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// How candidates are picked: nine fixed items in three groups.
Rectangle {
    id: panel

    required property CleanupFeed feed

    objectName: "criteriaPanel"
    width: parent ? parent.width : 0
    implicitHeight: body.implicitHeight + 20
    radius: 12
    color: Qt.rgba(1, 1, 1, 0.55)
    border.width: 1
    border.color: Colours.faded(Colours.lav, 0.25)

    Column {
        id: body
        x: 10
        y: 10
        width: parent.width - 20
        spacing: 6

        UiText {
            text: Texts.howItPicks
            font.pixelSize: 10
            font.bold: true
        }
        Repeater {
            model: Texts.criteriaItems
            Column {
                id: criterion
                required property var modelData
                width: body.width
                spacing: 6
                CriteriaItem {
                    symbol: criterion.modelData.symbol
                    tint: Colours[criterion.modelData.color]
                    title: criterion.modelData.title
                    detail: criterion.modelData.detail
                }
                Rectangle {
                    visible: criterion.modelData.groupEnd
                    width: parent.width
                    height: 1
                    color: Colours.faded(Colours.ink, 0.12)
                }
            }
        }
    }
}
