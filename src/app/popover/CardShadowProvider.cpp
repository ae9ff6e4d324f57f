#include "app/popover/CardShadowProvider.h"

#include <QPainter>
#include <QPainterPath>
#include <vector>

namespace quelmo {

namespace {

// One pass of a box blur over the alpha channel, along rows (horizontal) or columns.
void boxBlur(std::vector<float>& alpha, int width, int height, int radius, bool horizontal) {
    const std::vector<float> source = alpha;
    const int lines = horizontal ? height : width;
    const int length = horizontal ? width : height;
    const auto at = [&](int line, int i) -> float {
        if (i < 0 || i >= length)
            return 0;
        return horizontal ? source[line * width + i] : source[i * width + line];
    };
    for (int line = 0; line < lines; ++line) {
        float sum = 0;
        for (int i = -radius; i <= radius; ++i)
            sum += at(line, i);
        for (int i = 0; i < length; ++i) {
            float& out = horizontal ? alpha[line * width + i] : alpha[i * width + line];
            out = sum / static_cast<float>(2 * radius + 1);
            sum += at(line, i + radius + 1) - at(line, i - radius);
        }
    }
}

} // namespace

QImage CardShadowProvider::render() {
    // The corner squares and one pixel of straight edge between them.
    const int side = 2 * border + 1;
    QImage shape(side, side, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::transparent);
    {
        QPainter painter(&shape);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath card;
        const int inner = side - 2 * margin;
        card.addRoundedRect(QRectF(margin, margin, inner, inner), cornerRadius, cornerRadius);
        painter.fillPath(card, Qt::black);
    }

    std::vector<float> alpha(static_cast<size_t>(side) * side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            alpha[y * side + x] = static_cast<float>(qAlpha(shape.pixel(x, y))) / 255.0f;
    // Three box passes each way come close to a Gaussian blur.
    const int passRadius = blurRadius / 3;
    for (int pass = 0; pass < 3; ++pass) {
        boxBlur(alpha, side, side, passRadius, true);
        boxBlur(alpha, side, side, passRadius, false);
    }

    QImage shadow(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            shadow.setPixel(
                x, y, qPremultiply(qRgba(0, 0, 0, qRound(alpha[y * side + x] * 0.13f * 255.0f))));
    return shadow;
}

QImage CardShadowProvider::requestImage(const QString&, QSize* size, const QSize&) {
    static const QImage shadow = render();
    if (size)
        *size = shadow.size();
    return shadow;
}

} // namespace quelmo
