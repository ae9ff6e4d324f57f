pragma ComponentBehavior: Bound
import QtQuick

// The popover's tooltip (TextTip) over the item it stands in, made only while `shown`: most are
// never shown, and each would be a popup built and kept for nothing.
Item {
    id: tip

    property bool shown: false
    property string text
    property int delay: 500

    // The tooltip while shown.
    property TextTip popup: null

    onShownChanged: {
        if (shown && !popup) {
            popup = made.createObject(tip, { parent: tip.parent })
        } else if (!shown && popup) {
            popup.destroy()
            popup = null
        }
    }

    Component {
        id: made
        TextTip {
            delay: tip.delay
            text: tip.text
            visible: true
        }
    }
}
