import Quelmo
import QtQuick

// CPU (with the per-core strip, or the top CPU processes when expanded), GPU, Neural Engine and
// memory (with the top memory processes when expanded).
LiquidCard {
    id: section

    required property QtObject metrics
    required property QtObject context
    property var expanded: []
    property string lang: "en"

    readonly property bool cpuExpanded: expanded.includes("cpu")
    readonly property bool memoryExpanded: expanded.includes("memory")

    signal toggle(string section)

    objectName: "metricsSection"
    spacing: 10

    MetricBar {
        objectName: "cpuBar"
        title: "CPU"
        icon: "cpu"
        color: Colours.blue
        value: section.metrics.cpuTotal
        valueText: Rules.pct(section.metrics.cpuTotal)
        detail: section.metrics.coreSummary
        expandable: true
        isExpanded: section.cpuExpanded
        lang: section.lang
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
            lang: section.lang
        }
    }
    Reveal {
        open: !section.cpuExpanded && section.metrics.cpuPerCore.length > 0
        gap: section.spacing
        CoreStrip {
            objectName: "coreStrip"
            cores: section.metrics.cpuPerCore
            color: Colours.blue
        }
    }
    MetricBar {
        objectName: "gpuBar"
        title: "GPU"
        icon: "display"
        color: Colours.lav
        value: section.metrics.gpu
        valueText: Rules.pct(section.metrics.gpu)
        detail: Rules.watts(section.metrics.gpuWatts, 2)
    }
    MetricBar {
        objectName: "aneBar"
        title: "Neural Engine"
        icon: "brain.head.profile"
        color: Colours.pink
        value: section.metrics.aneLoad
        valueText: Rules.watts(section.metrics.aneWatts, 2)
        detail: "ANE"
    }
    MetricBar {
        objectName: "memoryBar"
        title: "Memory"
        icon: "memorychip"
        color: Colours.sage
        value: section.metrics.memFraction
        valueText: Rules.pct(section.metrics.memFraction)
        detail: Rules.memDetail(section.metrics.memUsed, section.metrics.memTotal)
        expandable: true
        isExpanded: section.memoryExpanded
        lang: section.lang
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
            lang: section.lang
        }
    }
}
