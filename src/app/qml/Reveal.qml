pragma ComponentBehavior: Bound
import QtQuick

// A part of a card that opens and closes: its height runs between nothing and its content's, and
// the content fades with it (ease in-out, 0.18 s like the sections' toggle). A change of the
// content's own height while open follows at once. The content is made when the part starts to
// open and dropped once it has closed: a closed part costs nothing to build, nor to keep up to
// date while hidden.
Item {
    id: reveal

    property bool open: false
    property int duration: 180
    // The spacing of the column it stands in: a closing part takes the gap above it along, so
    // nothing jumps when it leaves the column's layout at the end.
    property real gap: 0
    // What opens: one item, as wide as its parent (the part).
    default property Component content
    // The content while the part is open or on its way.
    property Item item: null

    // 0 closed, 1 open.
    property real extent: open ? 1 : 0
    readonly property real contentHeight: item ? item.height : 0

    width: parent ? parent.width : 0
    height: extent >= 1 ? contentHeight : extent * (contentHeight + gap) - gap
    visible: extent > 0
    opacity: extent
    // Only while it runs: a clip costs the renderer, and tooltips may reach beyond the part.
    clip: extent < 1

    Behavior on extent {
        NumberAnimation { duration: reveal.duration; easing.type: Easing.InOutQuad }
    }

    // The content, made in the same pass as the part when it starts open. (A Loader would do,
    // but Qt 6.4's refuses the components of files that bind their components to their own
    // context, as these views do.)
    Repeater {
        model: reveal.open || reveal.extent > 0 ? 1 : 0
        delegate: reveal.content
        onItemAdded: (index, made) => reveal.item = made
        onItemRemoved: reveal.item = null
    }
}
