#pragma once

class QQmlEngine;

namespace quelmo {

// Readies a QML engine for the popover's views: the import path of the `Quelmo` module (its
// views, the `Rules` and `Colours` singletons and the C++ types), the symbol and card-shadow
// image providers, and the rule that the engine loads nothing but the program's own resources and
// local files. Call before loading PopoverView.qml.
void preparePopoverEngine(QQmlEngine& engine);

// Where the module's views live.
inline constexpr char popoverViewUrl[] = "qrc:/qt/qml/Quelmo/PopoverView.qml";
inline constexpr char mascotSheetUrl[] = "qrc:/qt/qml/Quelmo/MascotSheet.qml";

} // namespace quelmo
