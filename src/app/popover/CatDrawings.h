#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The cat's curved strokes, painted once into an image that Qt Quick keeps and only moves,
// turns and scales while the cat animates: nothing is traced again until a colour or the size
// changes. Each reaches `pad` beyond the rectangle it draws in on every side, so that strokes
// and round caps on its edges are not cut off (CatEarShape.qml and SleepyEye.qml place them).
constexpr double catDrawingPad = 2;

// A cat's ear in its rectangle: a rounded triangle with a soft tip and a slightly bulging base.
class EarDrawing : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor fillColor READ fillColor WRITE setFillColor NOTIFY lookChanged)
    Q_PROPERTY(QColor strokeColor READ strokeColor WRITE setStrokeColor NOTIFY lookChanged)
    Q_PROPERTY(double strokeWidth READ strokeWidth WRITE setStrokeWidth NOTIFY lookChanged)

public:
    explicit EarDrawing(QQuickItem* parent = nullptr);

    QColor fillColor() const { return fill_; }
    void setFillColor(const QColor& color);
    QColor strokeColor() const { return stroke_; }
    void setStrokeColor(const QColor& color);
    double strokeWidth() const { return strokeWidth_; }
    void setStrokeWidth(double width);

    void paint(QPainter* painter) override;

signals:
    void lookChanged();

private:
    QColor fill_ = Qt::white;
    QColor stroke_ = Qt::transparent;
    double strokeWidth_ = 1;
};

// A closed eye: a downward arc across the middle of its rectangle, stroked with round caps.
class ClosedEyeDrawing : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY lookChanged)
    Q_PROPERTY(double lineWidth READ lineWidth WRITE setLineWidth NOTIFY lookChanged)

public:
    explicit ClosedEyeDrawing(QQuickItem* parent = nullptr);

    QColor color() const { return color_; }
    void setColor(const QColor& color);
    double lineWidth() const { return lineWidth_; }
    void setLineWidth(double width);

    void paint(QPainter* painter) override;

signals:
    void lookChanged();

private:
    QColor color_ = Qt::black;
    double lineWidth_ = 1.4;
};

} // namespace quelmo
