pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// The mascot above the cleanup card's cut line. It dozes while there is nothing to cut, wanders,
// looks around and blinks when there is, and snips on every change of `trigger`. Its timers and
// animations run only while it is visible in a shown window.
Item {
    id: mascot

    // Incremented by the cut sequence: every change is one snip.
    property int trigger: 0
    // Whether there is anything to cut.
    property bool hasTargets: false
    // How far down the cut sequence sends the cat (to the row being cut).
    property real travelY: 0
    property string styleRaw: "white"

    readonly property color fur: Rules.catFur(styleRaw)
    readonly property color outline: Rules.catOutline(styleRaw)
    readonly property color innerEar: Rules.catInnerEar(styleRaw)
    readonly property color eyeColor: Rules.catEyes(styleRaw)
    readonly property alias behavior: mind
    readonly property bool eyesClosed: mind.blink || !mind.awake

    // The clock of the three endless loops; without one the figure stands still.
    property LoopClock loops: null
    // The loops, 0 to 1 and back, each in half-pixel steps of what it moves: scissors (0.3 s
    // each way; 6 degrees at the blades' tips, 13 px out), breathing (1.8 s; 3 % of the 64 px
    // figure), sleep marks (1.6 s, 4 px, only while asleep).
    readonly property Loop snipLoop: Loop {
        clock: mascot.loops
        running: mind.active
        halfPeriodMs: 300
        travel: 1.4
    }
    readonly property Loop breatheLoop: Loop {
        clock: mascot.loops
        running: mind.active
        halfPeriodMs: 1800
        travel: 1.9
    }
    readonly property Loop zzzLoop: Loop {
        clock: mascot.loops
        running: mind.active && !mind.awake
        halfPeriodMs: 1600
        travel: 4
    }
    readonly property real snipPhase: snipLoop.phase
    readonly property real breathePhase: breatheLoop.phase
    readonly property real zzzPhase: zzzLoop.phase

    objectName: "catMascot"
    implicitWidth: 200
    implicitHeight: 64
    Accessible.ignored: true

    MascotBehavior {
        id: mind
        active: mascot.visible && mascot.Window.visibility !== Window.Hidden
        hasTargets: mascot.hasTargets
        trigger: mascot.trigger
    }

    Item {
        id: figure

        readonly property real wander: wanderGlide.value

        width: 64
        height: 64
        x: (mascot.width - width) / 2 + wander
        // Lowered by 2 while resting; the cut's travel follows its own springs.
        y: mascot.travelY + 2 * restGlide.value
        transform: [
            Scale {
                origin.x: 32
                origin.y: 64
                yScale: 1 + 0.03 * mascot.breathePhase
            },
            Rotation {
                origin.x: 32
                origin.y: 64
                angle: figure.wander * 0.1
            }
        ]

        // The pose moves as its latest change asks, on a spring or eased (see MascotBehavior),
        // at the display's frame rate while it moves.
        readonly property Glide wanderGlide: Glide {
            animated: mind.active
            response: mind.motionResponse
            dampingFraction: mind.motionDamping
            durationMs: mind.motionMs
            target: mind.lookDown ? 0 : mind.x
            pixelsPerUnit: 1.1 // shifted by x and tilted by x / 10 degrees, 64 high
        }
        readonly property Glide lookGlide: Glide {
            animated: mind.active
            response: mind.motionResponse
            dampingFraction: mind.motionDamping
            durationMs: mind.motionMs
            epsilon: 0.05
            target: mind.look
            pixelsPerUnit: 3 // the head's turn
        }
        readonly property Glide restGlide: Glide {
            animated: mind.active
            response: mind.motionResponse
            dampingFraction: mind.motionDamping
            durationMs: mind.motionMs
            epsilon: 0.05
            target: mind.resting ? 1 : 0
            pixelsPerUnit: 2 // lowered by 2
        }
        readonly property Glide lookDownGlide: Glide {
            animated: mind.active
            response: mind.motionResponse
            dampingFraction: mind.motionDamping
            durationMs: mind.motionMs
            epsilon: 0.05
            target: mind.lookDown ? 1 : 0
            pixelsPerUnit: 3 // the head's drop
        }

        // Body
        Rectangle {
            x: 15
            y: 38
            width: 34
            height: 25
            radius: 9
            color: mascot.fur
            border.color: mascot.outline
            border.width: 1
        }

        // Scissors in the paws; they open and close with the loop and shut on a cut. The cut's
        // turn is animated apart from the loop's steps, which the clock already paces.
        Item {
            x: 34
            y: 28
            width: 27
            height: 27
            rotation: mind.bladeClose ? 22 : 0
            Behavior on rotation {
                enabled: mind.active
                NumberAnimation {
                    duration: mind.bladeClose ? 80 : 140
                    easing.type: mind.bladeClose ? Easing.InQuad : Easing.OutQuad
                }
            }
            Symbol {
                name: "scissors"
                size: 27
                rotation: 74 + (mind.bladeClose ? 0 : 6 * mascot.snipPhase)
                color: Colours.pink
                gradientTo: Colours.blue
            }
        }

        // Head
        Item {
            id: head
            width: 40
            height: 30
            x: 12 + figure.lookGlide.value * 3
            y: 10 + 3 * figure.lookDownGlide.value

            Repeater {
                model: [{ x: 2, mirrored: false }, { x: 23, mirrored: true }]
                Item {
                    id: ear
                    required property var modelData
                    x: ear.modelData.x
                    y: -9
                    width: 15
                    height: 14
                    rotation: ear.modelData.mirrored ? 10 : -10
                    transform: Scale { origin.x: 7.5; xScale: ear.modelData.mirrored ? -1 : 1 }
                    CatEarShape {
                        anchors.fill: parent
                        fillColor: mascot.fur
                        strokeColor: mascot.outline
                    }
                    CatEarShape {
                        x: 4
                        y: 4.5
                        width: 7
                        height: 7.5
                        fillColor: mascot.innerEar
                    }
                }
            }

            Rectangle {
                anchors.fill: parent
                radius: 13
                color: mascot.fur
                border.color: mascot.outline
                border.width: 1
            }

            Row {
                visible: Rules.catStriped(mascot.styleRaw)
                anchors.horizontalCenter: parent.horizontalCenter
                y: 2
                spacing: 2.5
                Repeater {
                    // Made only for the tabby: the other styles never show them.
                    model: Rules.catStriped(mascot.styleRaw) ? [6, 8, 6] : []
                    Rectangle {
                        id: whisker
                        required property real modelData
                        width: 2.4
                        height: whisker.modelData
                        radius: 1.2
                        color: Rules.catStripes()
                    }
                }
            }

            Row {
                x: 10 + figure.lookGlide.value * 1.5
                y: 12 + 2 * figure.lookDownGlide.value
                spacing: 10
                Repeater {
                    model: 2
                    Item {
                        width: 6
                        height: 6
                        Rectangle {
                            visible: !mascot.eyesClosed
                            anchors.fill: parent
                            radius: 3
                            color: mascot.eyeColor
                        }
                        SleepyEye {
                            visible: mascot.eyesClosed
                            anchors.fill: parent
                            color: mascot.styleRaw === "black" ? mascot.eyeColor
                                                               : Colours.faded(Colours.ink, 0.7)
                        }
                    }
                }
            }

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: 20
                width: 4
                height: 3
                radius: 1.5
                color: mascot.innerEar
            }
        }

        // Sleep marks drifting up beside the head
        Item {
            x: 50
            y: 2 - 4 * mascot.zzzPhase
            opacity: mind.awake ? 0 : 0.85
            Behavior on opacity {
                NumberAnimation { duration: 600; easing.type: Easing.InOutQuad }
            }
            Repeater {
                model: [{ x: 0, y: 12, size: 8 }, { x: 6, y: 5, size: 10 }, { x: 13, y: -3, size: 12 }]
                UiText {
                    id: mark
                    required property var modelData
                    x: mark.modelData.x
                    y: mark.modelData.y
                    text: "z"
                    font.pixelSize: mark.modelData.size
                    font.bold: true
                    color: Colours.lav
                    Accessible.ignored: true
                }
            }
        }
    }
}
