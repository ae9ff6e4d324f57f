import Quelmo
import QtQuick

// Total watts, the stacked bar of the four components and its legend.
LiquidCard {
    id: card

    required property PopoverReadings readings

    objectName: "powerCard"
    spacing: 7

    Item {
        width: parent.width
        height: 16

        SymbolLabel {
            symbol: "bolt.fill"
            text: Texts.power
            size: 12
            color: Colours.peach
            weight: Font.DemiBold
            anchors.verticalCenter: parent.verticalCenter
        }
        UiText {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: Rules.watts(card.readings.totalWatts, 2)
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
    }

    StackedPowerBar {
        objectName: "powerBar"
        width: parent.width
        colors: [Colours.blue, Colours.lav, Colours.pink, Colours.gray]
        trackColor: Colours.track
        cpu: card.readings.cpuWatts
        gpu: card.readings.gpuWatts
        ane: card.readings.aneWatts
        dram: card.readings.dramWatts
    }

    Row {
        spacing: 12
        PowerLegend { color: Colours.blue; label: Texts.cpu; watts: card.readings.cpuWatts }
        PowerLegend { color: Colours.lav; label: Texts.gpu; watts: card.readings.gpuWatts }
        PowerLegend { color: Colours.pink; label: Texts.ane; watts: card.readings.aneWatts }
        PowerLegend { color: Colours.gray; label: Texts.ram; watts: card.readings.dramWatts }
    }
}
