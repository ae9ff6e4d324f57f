import Quelmo
import QtQuick

// The advisor's status line under the card.
Row {
    id: footer

    required property CleanupFeed feed

    objectName: "aiFooter"
    width: parent ? parent.width : 0
    spacing: 4

    AISparkle {
        size: 9
        anchors.verticalCenter: parent.verticalCenter
    }
    UiText {
        width: footer.width - 15
        text: footer.feed.footerText
        secondary: true
        font.pixelSize: 9
        elide: Text.ElideRight
        anchors.verticalCenter: parent.verticalCenter
    }
}
