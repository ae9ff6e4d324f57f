#include "app/popover/CardDrawings.h"

#include "app/popover/PopoverRules.h"
#include "app/popover/RepaintOnChange.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace quelmo {

DashLine::DashLine(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void DashLine::setColor(const QColor& color) {
    setAndRepaint(*this, color_, color, [this] { emit lookChanged(); });
}

void DashLine::setLineWidth(double width) {
    setAndRepaint(*this, lineWidth_, width, [this] { emit lookChanged(); });
}

void DashLine::setDashPattern(const QList<double>& pattern) {
    setAndRepaint(*this, dashPattern_, pattern, [this] { emit lookChanged(); });
}

void DashLine::paint(QPainter* painter) {
    if (!(lineWidth_ > 0) || color_.alpha() == 0)
        return;
    QPen pen(color_, lineWidth_, Qt::CustomDashLine, Qt::SquareCap, Qt::BevelJoin);
    // A pattern needs pairs of positive lengths; anything else draws a solid line.
    const bool usable = !dashPattern_.isEmpty() && dashPattern_.size() % 2 == 0 &&
                        std::all_of(dashPattern_.begin(), dashPattern_.end(),
                                    [](double length) { return length > 0; });
    if (usable)
        pen.setDashPattern(dashPattern_);
    else
        pen.setStyle(Qt::SolidLine);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(pen);
    // The caps stay inside the rectangle: the line runs half a width in from either end.
    const double middle = height() / 2;
    const double inset = lineWidth_ / 2;
    painter->drawLine(QPointF(inset, middle), QPointF(width() - inset, middle));
}

StackedPowerBar::StackedPowerBar(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setImplicitHeight(8);
}

void StackedPowerBar::setWatts(int index, double watts) {
    setAndRepaint(*this, watts_[static_cast<std::size_t>(index)], watts,
                  [this] { emit wattsChanged(); });
}

void StackedPowerBar::setColors(const QList<QColor>& colors) {
    setAndRepaint(*this, colors_, colors, [this] { emit lookChanged(); });
}

void StackedPowerBar::setTrackColor(const QColor& color) {
    setAndRepaint(*this, track_, color, [this] { emit lookChanged(); });
}

void StackedPowerBar::paint(QPainter* painter) {
    const double w = width();
    const double h = height();
    if (!(w > 0) || !(h > 0))
        return;
    QPainterPath capsule;
    capsule.addRoundedRect(QRectF(0, 0, w, h), h / 2, h / 2);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->fillPath(capsule, track_);

    const auto shares = PopoverRules::powerShares(watts_[0], watts_[1], watts_[2], watts_[3]);
    double start = 0;
    for (std::size_t i = 0; i < shares.size(); ++i) {
        const double end = start + shares[i] * w;
        if (end > start && static_cast<qsizetype>(i) < colors_.size()) {
            QPainterPath segment;
            segment.addRect(QRectF(start, 0, end - start, h));
            painter->fillPath(capsule.intersected(segment), colors_[static_cast<qsizetype>(i)]);
        }
        start = end;
    }
}

} // namespace quelmo
