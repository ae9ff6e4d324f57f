pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// The preview's sheet of the four cat styles' mascots side by side.
Rectangle {
    id: sheet

    property bool hasTargets: false

    width: 4 * 150
    height: 84
    color: Colours.bg
    Row {
        y: 10
        Repeater {
            model: Rules.catStyles()
            CatMascot {
                required property string modelData
                width: 150
                height: 64
                styleRaw: modelData
                hasTargets: sheet.hasTargets
            }
        }
    }
}
