pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// CPU (with the per-core strip, or the top CPU processes when expanded), GPU, Neural Engine and
// memory (with the top memory processes when expanded).
LiquidCard {
    id: section

    required property PopoverReadings readings
    required property PopoverContext context
    required property bool cpuExpanded
    required property bool memoryExpanded

    signal toggle(string section)

    objectName: "metricsSection"
    spacing: 10

    MetricBar {
        objectName: "cpuBar"
        title: Texts.cpu
        icon: "cpu"
        color: Colours.blue
        value: section.readings.cpuTotal
        valueText: Rules.pct(section.readings.cpuTotal)
        detail: section.readings.coreSummary
        expandable: true
        isExpanded: section.cpuExpanded
        onToggle: section.toggle("cpu")
    }
    Reveal {
        open: section.cpuExpanded
        gap: section.spacing
        ProcessList {
            objectName: "topCPUList"
            procs: section.context.topCPU
            color: Colours.blue
            kind: "cpu"
        }
    }
    Reveal {
        open: !section.cpuExpanded && section.readings.cpuPerCore.length > 0
        gap: section.spacing
        CoreStrip {
            objectName: "coreStrip"
            cores: section.readings.cpuPerCore
            color: Colours.blue
        }
    }
    MetricBar {
        objectName: "gpuBar"
        title: Texts.gpu
        icon: "display"
        color: Colours.lav
        value: section.readings.gpu
        valueText: Rules.pct(section.readings.gpu)
        detail: Rules.watts(section.readings.gpuWatts, 2)
    }
    MetricBar {
        objectName: "aneBar"
        title: Texts.neuralEngine
        icon: "brain.head.profile"
        color: Colours.pink
        value: section.readings.aneLoad
        valueText: Rules.watts(section.readings.aneWatts, 2)
        detail: Texts.ane
    }
    MetricBar {
        objectName: "memoryBar"
        title: Texts.memory
        icon: "memorychip"
        color: Colours.sage
        value: section.readings.memFraction
        valueText: Rules.pct(section.readings.memFraction)
        detail: Rules.memDetail(section.readings.memUsed, section.readings.memTotal)
        expandable: true
        isExpanded: section.memoryExpanded
        onToggle: section.toggle("memory")
    }
    Reveal {
        open: section.memoryExpanded
        gap: section.spacing
        ProcessList {
            objectName: "topMemList"
            procs: section.context.topMem
            color: Colours.sage
            kind: "memory"
        }
    }
}
