import Quelmo
import QtQuick

// A value that glides to `target` in steps of the loops' clock (15 a second) instead of Qt
// Quick's per-frame animation: for the mascot's slow wandering, which would otherwise have the
// popover drawn 60 times a second for half of every second. Without a running clock it follows
// the target at once.
QtObject {
    id: glide

    property LoopClock loops: null
    property real target: 0
    property int duration: 500
    // Overshoots a little and settles (the wander's spring), else eases in and out.
    property bool overshoot: false

    property real value: target

    property real from: target
    property real startedAt: 0

    function eased(t) {
        if (overshoot) {
            const s = 1.70158, u = t - 1
            return 1 + u * u * ((s + 1) * u + s)
        }
        return t < 0.5 ? 2 * t * t : 1 - 2 * (1 - t) * (1 - t)
    }
    function step() {
        const t = duration > 0 ? Math.min(1, Math.max(0, (loops.elapsed - startedAt) / duration)) : 1
        value = from + (target - from) * eased(t)
    }

    onTargetChanged: {
        if (!loops || !loops.running) {
            value = target
            return
        }
        from = value
        startedAt = loops.elapsed
    }

    readonly property Connections ticks: Connections {
        target: glide.loops
        enabled: glide.value !== glide.target
        function onElapsedChanged() { glide.step() }
    }
}
