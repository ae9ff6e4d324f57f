pragma ComponentBehavior: Bound
import Quelmo
import QtQuick

// The logo: a cat holding scissors, in the chosen cat style, drawn in a 100 x 100 frame and
// scaled to fill any square.
Item {
    id: logo

    property string styleRaw: "white"
    property color pink: Colours.pink
    property color blue: Colours.blue

    readonly property color fur: Rules.catFur(styleRaw)
    readonly property color outline: Rules.catOutline(styleRaw)
    readonly property color innerEar: Rules.catInnerEar(styleRaw)
    readonly property color eyes: Rules.catEyes(styleRaw)
    readonly property bool tabby: Rules.catStriped(styleRaw)

    Accessible.ignored: true

    Item {
        id: art
        width: 100
        height: 100
        anchors.centerIn: parent
        scale: Math.min(logo.width, logo.height) / 100

        // Body
        Rectangle {
            x: 28
            y: 60
            width: 44
            height: 34
            radius: 15
            color: logo.fur
            border.color: logo.outline
            border.width: 1.6
        }

        // Scissors, with a faint shadow under them
        Symbol {
            name: "scissors"
            size: 40
            x: 31
            y: 55
            rotation: -58
            color: Qt.rgba(0, 0, 0, 0.3)
            opacity: 0.5
            renderScale: 1
        }
        Symbol {
            objectName: "logoScissors"
            name: "scissors"
            size: 40
            x: 30
            y: 53
            rotation: -58
            color: logo.pink
            gradientTo: logo.blue
            renderScale: 1
        }

        // Arms and paws reaching to the handles
        Repeater {
            model: [{ x: 30, y: 66, angle: 40 }, { x: 61, y: 66, angle: -40 }]
            Item {
                id: ear
                required property var modelData
                x: ear.modelData.x
                y: ear.modelData.y
                Rectangle {
                    width: 9
                    height: 18
                    radius: 4.5
                    rotation: ear.modelData.angle
                    color: logo.fur
                    border.color: logo.outline
                    border.width: 1.4
                }
                Rectangle {
                    x: ear.modelData.angle > 0 ? 6 : -6
                    y: 12
                    width: 9
                    height: 9
                    radius: 4.5
                    color: logo.fur
                    border.color: logo.outline
                    border.width: 1.4
                }
            }
        }

        // Head
        Item {
            id: head
            x: 19
            y: 14
            width: 62
            height: 48

            Repeater {
                model: [{ x: 4, mirrored: false }, { x: 37, mirrored: true }]
                Item {
                    id: logoEar
                    required property var modelData
                    x: logoEar.modelData.x
                    y: -11
                    width: 21
                    height: 19
                    rotation: logoEar.modelData.mirrored ? 9 : -9
                    transform: Scale { origin.x: 10.5; xScale: logoEar.modelData.mirrored ? -1 : 1 }
                    CatEarShape {
                        anchors.fill: parent
                        fillColor: logo.fur
                        strokeColor: logo.outline
                        strokeWidth: 1.6
                    }
                    CatEarShape {
                        x: 5.5
                        y: 6
                        width: 10
                        height: 10
                        fillColor: logo.innerEar
                    }
                }
            }

            Rectangle {
                anchors.fill: parent
                radius: 22
                color: logo.fur
                border.color: logo.outline
                border.width: 1.6
            }

            Row {
                visible: logo.tabby
                anchors.horizontalCenter: parent.horizontalCenter
                y: 2
                spacing: 3.5
                Repeater {
                    // Made only for the tabby: the other styles never show them.
                    model: logo.tabby ? [9, 12, 9] : []
                    Rectangle {
                        id: whisker
                        required property real modelData
                        width: 3.5
                        height: whisker.modelData
                        radius: 1.75
                        color: Rules.catStripes()
                    }
                }
            }

            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                y: 19
                spacing: 17
                Repeater {
                    model: 2
                    Rectangle {
                        width: 7
                        height: 9
                        radius: 3.5
                        color: logo.eyes
                        Rectangle {
                            x: 1.5
                            y: 1.5
                            width: 2.5
                            height: 2.5
                            radius: 1.25
                            color: "white"
                            opacity: 0.85
                        }
                    }
                }
            }

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: 31
                width: 5
                height: 3.5
                radius: 1.75
                color: logo.innerEar
            }

            Repeater {
                model: [{ x: -5, angle: 6, y: 30 }, { x: -5, angle: -6, y: 35 },
                        { x: 53, angle: -6, y: 30 }, { x: 53, angle: 6, y: 35 }]
                Rectangle {
                    id: eye
                    required property var modelData
                    x: eye.modelData.x
                    y: eye.modelData.y
                    width: 14
                    height: 1.2
                    radius: 0.6
                    rotation: eye.modelData.angle
                    color: Colours.faded(Colours.ink, 0.35)
                }
            }
        }
    }
}
