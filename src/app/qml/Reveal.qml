import QtQuick

// A part of a card that opens and closes: its height runs between nothing and its content's, and
// the content fades with it (ease in-out, 0.18 s like the sections' toggle). A change of the
// content's own height while open follows at once.
Item {
    id: reveal

    property bool open: false
    property int duration: 180
    // The spacing of the column it stands in: a closing part takes the gap above it along, so
    // nothing jumps when it leaves the column's layout at the end.
    property real gap: 0
    property alias spacing: body.spacing
    default property alias content: body.data

    // 0 closed, 1 open.
    property real extent: open ? 1 : 0

    width: parent ? parent.width : 0
    height: extent >= 1 ? body.implicitHeight : extent * (body.implicitHeight + gap) - gap
    visible: extent > 0
    opacity: extent
    // Only while it runs: a clip costs the renderer, and tooltips may reach beyond the part.
    clip: extent < 1

    Behavior on extent {
        NumberAnimation { duration: reveal.duration; easing.type: Easing.InOutQuad }
    }

    Column {
        id: body
        width: parent.width
    }
}
