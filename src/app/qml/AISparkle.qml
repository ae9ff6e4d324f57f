import Quelmo 1.0
import QtQuick

// The advisor's sparkle: the "sparkles" symbol shaded from pink to lavender.
Symbol {
    name: "sparkles"
    size: 11
    color: Palette.pink
    gradientTo: Palette.lav
}
