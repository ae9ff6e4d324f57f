import QtQuick

// The one text item of the popover, under UiText and the tooltips. Texts come from outside the
// program too (process names, window titles, the model's notes, the CPU's name), so they are
// drawn as they are, never as markup: a name that looks like HTML styles nothing and loads
// nothing.
Text {
    textFormat: Text.PlainText
}
