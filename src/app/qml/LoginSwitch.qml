import Quelmo
import QtQuick
import QtQuick.Templates as T

// Launch at login, as a mini switch. It always shows the real state: a change the system refuses
// springs back.
T.Switch {
    id: toggle

    required property PopoverContext context

    objectName: "loginSwitch"
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             implicitContentHeight + topPadding + bottomPadding,
                             implicitIndicatorHeight + topPadding + bottomPadding)
    text: Texts.launchAtLogin
    font.pixelSize: 10
    padding: 0
    spacing: 6
    onToggled: context.launchAtLogin = checked
    Accessible.name: text
    Accessible.onPressAction: toggle.flip()
    Accessible.onToggleAction: toggle.flip()
    Keys.onReturnPressed: toggle.flip()

    // As a click would: the switch moves, then the change is handed on.
    function flip() {
        toggle.toggle()
        toggle.toggled()
    }

    Binding on checked {
        value: toggle.context.launchAtLogin
    }

    indicator: Rectangle {
        implicitWidth: 24
        implicitHeight: 14
        y: (toggle.height - height) / 2
        radius: height / 2
        color: toggle.checked ? Colours.blue : Colours.faded(Colours.ink, 0.18)
        border.width: toggle.visualFocus ? 1 : 0
        border.color: Colours.ink

        Rectangle {
            width: 12
            height: 12
            radius: 6
            y: 1
            x: toggle.checked ? parent.width - width - 1 : 1
            color: "white"
            Behavior on x {
                NumberAnimation { duration: 120; easing.type: Easing.InOutQuad }
            }
        }
    }
    contentItem: SymbolLabel {
        leftPadding: toggle.indicator.width + toggle.spacing
        symbol: "power"
        text: toggle.text
        secondary: false
        size: 10
    }
}
