#pragma once

class QQmlEngine;

namespace quelmo {

// Makes the popover's C++ side known to a QML engine: the `Quelmo` module (the `Rules` and
// `Palette` singletons, `MascotBehavior`, the list model and context types) and the symbol and
// card-shadow image providers. Call before loading PopoverView.qml.
//
// Qt Quick has a `Palette` type of its own, and of two imports naming the same type the first
// one wins: every view imports Quelmo before QtQuick.
void registerPopoverQml(QQmlEngine& engine);

// Where PopoverView.qml lives.
inline constexpr char popoverViewUrl[] = "qrc:/quelmo/qml/PopoverView.qml";

} // namespace quelmo
