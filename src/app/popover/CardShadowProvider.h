#pragma once

#include <QQuickImageProvider>

namespace quelmo {

// The cards' soft drop shadow, blurred once on the CPU and drawn by QML as a nine-patch
// (BorderImage), so no shader effect is needed. `image://cardshadow/card` is the shadow of a
// rounded rectangle of radius `cornerRadius`, black at 0.13, blurred by `blurRadius`; the
// image has `margin` of shadow around the card's corner squares.
class CardShadowProvider : public QQuickImageProvider {
public:
    static constexpr int cornerRadius = 18;
    static constexpr int blurRadius = 12;
    static constexpr int margin = blurRadius + 4;
    // Width of each border of the nine-patch: the shadow margin and the corner.
    static constexpr int border = margin + cornerRadius;

    CardShadowProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    static QImage render();
};

} // namespace quelmo
