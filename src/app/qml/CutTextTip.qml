pragma Singleton
import QtQuick

// The text cut to its width that is under the pointer, shown whole by PopoverView's tooltip.
QtObject {
    property Item owner: null
    property string text
}
