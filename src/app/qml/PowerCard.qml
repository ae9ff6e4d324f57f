import Quelmo
import QtQuick

// Total watts, the stacked bar of the four components and its legend.
LiquidCard {
    id: card

    required property QtObject metrics

    objectName: "powerCard"
    spacing: 7

    Item {
        width: parent.width
        height: 16

        SymbolLabel {
            symbol: "bolt.fill"
            text: "Power"
            size: 12
            color: Colours.peach
            weight: Font.DemiBold
            anchors.verticalCenter: parent.verticalCenter
        }
        UiText {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: Rules.watts(card.metrics.totalWatts, 2)
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
    }

    StackedPowerBar {
        cpu: card.metrics.cpuWatts
        gpu: card.metrics.gpuWatts
        ane: card.metrics.aneWatts
        dram: card.metrics.dramWatts
    }

    Row {
        spacing: 12
        PowerLegend { color: Colours.blue; label: "CPU"; watts: card.metrics.cpuWatts }
        PowerLegend { color: Colours.lav; label: "GPU"; watts: card.metrics.gpuWatts }
        PowerLegend { color: Colours.pink; label: "ANE"; watts: card.metrics.aneWatts }
        PowerLegend { color: Colours.gray; label: "RAM"; watts: card.metrics.dramWatts }
    }
}
