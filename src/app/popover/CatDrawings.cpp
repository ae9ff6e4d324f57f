#include "app/popover/CatDrawings.h"

#include "app/popover/RepaintOnChange.h"

#include <QPainter>
#include <QPainterPath>

namespace quelmo {

EarDrawing::EarDrawing(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void EarDrawing::setFillColor(const QColor& color) {
    setAndRepaint(*this, fill_, color, [this] { emit lookChanged(); });
}

void EarDrawing::setStrokeColor(const QColor& color) {
    setAndRepaint(*this, stroke_, color, [this] { emit lookChanged(); });
}

void EarDrawing::setStrokeWidth(double width) {
    setAndRepaint(*this, strokeWidth_, width, [this] { emit lookChanged(); });
}

void EarDrawing::paint(QPainter* painter) {
    const double w = width() - 2 * catDrawingPad;
    const double h = height() - 2 * catDrawingPad;
    painter->translate(catDrawingPad, catDrawingPad);
    QPainterPath path({0.16 * w, h});
    path.quadTo(-0.05 * w, 0.5 * h, 0.415 * w, 0.05 * h);
    path.quadTo(0.5 * w, -0.06 * h, 0.585 * w, 0.05 * h);
    path.quadTo(1.05 * w, 0.5 * h, 0.84 * w, h);
    path.quadTo(0.5 * w, 1.07 * h, 0.16 * w, h);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(fill_);
    if (stroke_.alpha() > 0 && strokeWidth_ > 0)
        painter->setPen(QPen(stroke_, strokeWidth_, Qt::SolidLine, Qt::SquareCap, Qt::RoundJoin));
    else
        painter->setPen(Qt::NoPen);
    painter->drawPath(path);
}

ClosedEyeDrawing::ClosedEyeDrawing(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void ClosedEyeDrawing::setColor(const QColor& color) {
    setAndRepaint(*this, color_, color, [this] { emit lookChanged(); });
}

void ClosedEyeDrawing::setLineWidth(double width) {
    setAndRepaint(*this, lineWidth_, width, [this] { emit lookChanged(); });
}

void ClosedEyeDrawing::paint(QPainter* painter) {
    const double w = width() - 2 * catDrawingPad;
    const double h = height() - 2 * catDrawingPad;
    painter->translate(catDrawingPad, catDrawingPad);
    QPainterPath arc({0, h / 2 - 1});
    arc.quadTo(w / 2, h + 1, w, h / 2 - 1);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(color_, lineWidth_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPath(arc);
}

} // namespace quelmo
