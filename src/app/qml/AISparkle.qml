import Quelmo
import QtQuick

// The advisor's sparkle: the "sparkles" symbol shaded left to right through pink, peach and
// lavender.
Symbol {
    name: "sparkles"
    size: 11
    gradientAcross: [Colours.pink, Colours.peach, Colours.lav]
}
