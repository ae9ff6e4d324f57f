#pragma once

#include <QColor>
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The popover's rules as the QML singleton `Rules`: formats, sizes, shares, the cat styles'
// colours and the symbols' image sources. Stateless; every function only
// forwards to the tested rules.
class PopoverRulesObject : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Rules)
    QML_SINGLETON

public:
    using QObject::QObject;

    Q_INVOKABLE static QString pct(double fraction);
    Q_INVOKABLE static QString mem(double bytes);
    Q_INVOKABLE static QString memDetail(double usedBytes, double totalBytes);
    Q_INVOKABLE static QString fixed(double value, int decimals);
    // `value` with `decimals` decimals and " W".
    Q_INVOKABLE static QString watts(double value, int decimals);

    Q_INVOKABLE static double popoverHeight(double contentHeight, double maxHeight);
    Q_INVOKABLE static double barFillWidth(double trackWidth, double value);
    Q_INVOKABLE static double coreFillScale(double load);
    Q_INVOKABLE static double coreSpacing(int cores, double width);
    Q_INVOKABLE static int coreColumns(int cores, double width);
    Q_INVOKABLE static double processFillWidth(double trackWidth, double value, double maxValue);
    // A process's figure: "150%" for kind "cpu" (as the process table reports it), else mem(rss).
    Q_INVOKABLE static QString processValueText(const QString& kind, double cpu, double rss);
    Q_INVOKABLE static QStringList toggled(const QStringList& expanded, const QString& section);

    Q_INVOKABLE static QStringList catStyles();
    Q_INVOKABLE static QColor catFur(const QString& raw);
    Q_INVOKABLE static QColor catEyes(const QString& raw);
    Q_INVOKABLE static QColor catOutline(const QString& raw);
    Q_INVOKABLE static QColor catInnerEar(const QString& raw);
    // Whether the style's figure and swatch carry tabby stripes, and its swatch dots.
    Q_INVOKABLE static bool catStriped(const QString& raw);
    Q_INVOKABLE static bool catDotted(const QString& raw);
    Q_INVOKABLE static QColor catStripes();
    Q_INVOKABLE static QColor grayMarks();

    Q_INVOKABLE static QString symbol(const QString& name, const QColor& color,
                                      const QColor& gradientTo = QColor());
    // A symbol shaded left to right through `colours` (the advisor's sparkle).
    Q_INVOKABLE static QString symbolAcross(const QString& name, const QList<QColor>& colours);
};

} // namespace quelmo
