import QtQuick

// The popover's frame: a light panel hanging under the tray item. Its sections, cards and
// mascot are laid out inside it.
Rectangle {
    id: popover

    // The metrics hub whose readings the popover shows.
    property QtObject metrics

    implicitWidth: 320
    implicitHeight: 420
    color: "#f5f5f7"
    border.color: "#c7c7cc"
    border.width: 1
    focus: true
}
