#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The machine's readings as the popover shows them, one plain value per refresh.
struct Readings {
    double cpuTotal = 0;
    QList<double> cpuPerCore;
    double gpu = 0;
    double aneLoad = 0;
    double memUsed = 0;
    double memTotal = 0;
    double memFraction = 0;
    double cpuWatts = 0;
    double gpuWatts = 0;
    double aneWatts = 0;
    double dramWatts = 0;
    double totalWatts = 0;
    QString chipName;
    QString coreSummary;

    bool operator==(const Readings&) const = default;
};

// The readings the views bind to: typed properties that change together, once per refresh that
// changes any of them.
class PopoverReadings : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(double cpuTotal READ cpuTotal NOTIFY changed)
    Q_PROPERTY(QList<double> cpuPerCore READ cpuPerCore NOTIFY changed)
    Q_PROPERTY(double gpu READ gpu NOTIFY changed)
    Q_PROPERTY(double aneLoad READ aneLoad NOTIFY changed)
    Q_PROPERTY(double memUsed READ memUsed NOTIFY changed)
    Q_PROPERTY(double memTotal READ memTotal NOTIFY changed)
    Q_PROPERTY(double memFraction READ memFraction NOTIFY changed)
    Q_PROPERTY(double cpuWatts READ cpuWatts NOTIFY changed)
    Q_PROPERTY(double gpuWatts READ gpuWatts NOTIFY changed)
    Q_PROPERTY(double aneWatts READ aneWatts NOTIFY changed)
    Q_PROPERTY(double dramWatts READ dramWatts NOTIFY changed)
    Q_PROPERTY(double totalWatts READ totalWatts NOTIFY changed)
    Q_PROPERTY(QString chipName READ chipName NOTIFY changed)
    Q_PROPERTY(QString coreSummary READ coreSummary NOTIFY changed)

public:
    using QObject::QObject;

    const Readings& values() const { return values_; }
    void setValues(const Readings& values);

    double cpuTotal() const { return values_.cpuTotal; }
    QList<double> cpuPerCore() const { return values_.cpuPerCore; }
    double gpu() const { return values_.gpu; }
    double aneLoad() const { return values_.aneLoad; }
    double memUsed() const { return values_.memUsed; }
    double memTotal() const { return values_.memTotal; }
    double memFraction() const { return values_.memFraction; }
    double cpuWatts() const { return values_.cpuWatts; }
    double gpuWatts() const { return values_.gpuWatts; }
    double aneWatts() const { return values_.aneWatts; }
    double dramWatts() const { return values_.dramWatts; }
    double totalWatts() const { return values_.totalWatts; }
    QString chipName() const { return values_.chipName; }
    QString coreSummary() const { return values_.coreSummary; }

signals:
    void changed();

private:
    Readings values_;
};

} // namespace quelmo
