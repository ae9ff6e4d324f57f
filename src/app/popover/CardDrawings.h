#pragma once

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>
#include <array>

namespace quelmo {

// Two plain figures of the cards, painted once into an image that Qt Quick keeps until a value,
// a colour or the size changes.

// A straight line across the middle of its rectangle, dashed: where the cat cuts. The pattern is
// in units of the line width, and the square caps add half a width at each end of a dash; the
// line starts and ends half a width inside the rectangle, so that its end caps are not cut off.
class DashLine : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY lookChanged)
    Q_PROPERTY(double lineWidth READ lineWidth WRITE setLineWidth NOTIFY lookChanged)
    Q_PROPERTY(QList<double> dashPattern READ dashPattern WRITE setDashPattern NOTIFY lookChanged)

public:
    explicit DashLine(QQuickItem* parent = nullptr);

    QColor color() const { return color_; }
    void setColor(const QColor& color);
    double lineWidth() const { return lineWidth_; }
    void setLineWidth(double width);
    QList<double> dashPattern() const { return dashPattern_; }
    void setDashPattern(const QList<double>& pattern);

    void paint(QPainter* painter) override;

signals:
    void lookChanged();

private:
    QColor color_ = Qt::black;
    double lineWidth_ = 1;
    QList<double> dashPattern_{4, 3};
};

// The watts of CPU, GPU, Neural Engine and DRAM side by side in one capsule, each as wide as its
// share and in its colour of `colors`, over the track. All zero draws the empty track.
class StackedPowerBar : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double cpu READ cpu WRITE setCpu NOTIFY wattsChanged)
    Q_PROPERTY(double gpu READ gpu WRITE setGpu NOTIFY wattsChanged)
    Q_PROPERTY(double ane READ ane WRITE setAne NOTIFY wattsChanged)
    Q_PROPERTY(double dram READ dram WRITE setDram NOTIFY wattsChanged)
    Q_PROPERTY(QList<QColor> colors READ colors WRITE setColors NOTIFY lookChanged)
    Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY lookChanged)

public:
    explicit StackedPowerBar(QQuickItem* parent = nullptr);

    double cpu() const { return watts_[0]; }
    void setCpu(double watts) { setWatts(0, watts); }
    double gpu() const { return watts_[1]; }
    void setGpu(double watts) { setWatts(1, watts); }
    double ane() const { return watts_[2]; }
    void setAne(double watts) { setWatts(2, watts); }
    double dram() const { return watts_[3]; }
    void setDram(double watts) { setWatts(3, watts); }
    QList<QColor> colors() const { return colors_; }
    void setColors(const QList<QColor>& colors);
    QColor trackColor() const { return track_; }
    void setTrackColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void wattsChanged();
    void lookChanged();

private:
    void setWatts(int index, double watts);

    std::array<double, 4> watts_{};
    QList<QColor> colors_;
    QColor track_ = Qt::transparent;
};

} // namespace quelmo
