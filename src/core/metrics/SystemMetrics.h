#pragma once

#include "core/Platform.h"
#include "core/advisor/AIAdvisor.h"
#include "core/advisor/AIVerdict.h"
#include "core/advisor/EvaluationQueue.h"
#include "core/cleanup/BaselineEngine.h"
#include "core/cleanup/CleanupCandidate.h"
#include "core/cleanup/FocusTracker.h"
#include "core/cleanup/ProcessIdentity.h"
#include "core/metrics/CPUMonitor.h"
#include "core/metrics/GPUMonitor.h"
#include "core/metrics/MemoryMonitor.h"
#include "core/metrics/PowerMonitor.h"
#include "core/metrics/ProcInfo.h"
#include "core/metrics/ProcessMonitor.h"
#include "core/metrics/ProcessScanner.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo {

// The one observable object through which the rest of the program sees the machine. Samples the
// monitors once a second; while polling, also refreshes the process table, the baselines, the
// cleanup candidates and the model queue. Every published property signals once per assignment.
class SystemMetrics : public QObject {
    Q_OBJECT
    Q_PROPERTY(double cpuTotal READ cpuTotal NOTIFY cpuTotalChanged)
    Q_PROPERTY(QList<double> cpuPerCore READ cpuPerCore NOTIFY cpuPerCoreChanged)
    Q_PROPERTY(double gpu READ gpu NOTIFY gpuChanged)
    Q_PROPERTY(double memUsed READ memUsed NOTIFY memUsedChanged)
    Q_PROPERTY(double memTotal READ memTotal NOTIFY memTotalChanged)
    Q_PROPERTY(double memFraction READ memFraction NOTIFY memFractionChanged)
    Q_PROPERTY(double cpuWatts READ cpuWatts NOTIFY cpuWattsChanged)
    Q_PROPERTY(double gpuWatts READ gpuWatts NOTIFY gpuWattsChanged)
    Q_PROPERTY(double aneWatts READ aneWatts NOTIFY aneWattsChanged)
    Q_PROPERTY(double dramWatts READ dramWatts NOTIFY dramWattsChanged)
    Q_PROPERTY(double totalWatts READ totalWatts NOTIFY totalWattsChanged)
    Q_PROPERTY(double aneLoad READ aneLoad NOTIFY aneLoadChanged)
    Q_PROPERTY(double sensitivity READ sensitivity WRITE setSensitivity NOTIFY sensitivityChanged)
    Q_PROPERTY(QString chipName READ chipName CONSTANT)
    Q_PROPERTY(QString coreSummary READ coreSummary CONSTANT)
    Q_PROPERTY(double memoryGB READ memoryGB CONSTANT)

public:
    explicit SystemMetrics(Platform platform, QObject* parent = nullptr);
    ~SystemMetrics() override;

    void start();
    void update();
    // Asks for a reading of the process table; the lists follow when it arrives (at once where
    // the table is read on this thread).
    void refreshProcesses();
    void reevaluateAI();
    // Stores the statistics gathered since the last save; called when the program ends.
    void savePending();
    // Asks the processes the user chose to end; each is known by the identity its row showed.
    int terminate(const QList<ProcessIdentity>& targets);

    // Published readings.
    double cpuTotal() const { return cpuTotal_; }
    QList<double> cpuPerCore() const { return cpuPerCore_; }
    double gpu() const { return gpu_; }
    double memUsed() const { return memUsed_; }
    double memTotal() const { return memTotal_; }
    double memFraction() const { return memFraction_; }
    double cpuWatts() const { return cpuWatts_; }
    double gpuWatts() const { return gpuWatts_; }
    double aneWatts() const { return aneWatts_; }
    double dramWatts() const { return dramWatts_; }
    double totalWatts() const { return totalWatts_; }
    double aneLoad() const { return aneLoad_; }
    const QList<ProcInfo>& topCPU() const { return topCPU_; }
    const QList<ProcInfo>& topMem() const { return topMem_; }
    const QList<CleanupCandidate>& cleanupCandidates() const { return cleanupCandidates_; }
    const AIVerdictMap& aiVerdicts() const { return queue_.verdicts(); }
    double sensitivity() const { return sensitivity_; }
    void setSensitivity(double value);

    // Publishes `candidates` as they are (the cleanup card's checks feed it this way).
    void setCleanupCandidates(QList<CleanupCandidate> candidates);

    // Whether the process table is followed: switched on when the popover is about to show, which
    // reads the table at once and then on every tick; switched off when it has closed, which
    // drops any reading under way and empties the top lists and the candidates.
    bool pollProcesses() const { return pollProcesses_; }
    void setPollProcesses(bool on);
    // The advisor's status at its first look, which the advisor signals; before that, neither
    // available nor with a reason.
    AIAdvisor::Status aiStatus() const { return aiStatus_; }
    // The advisor itself, whose status is read live by the cleanup card.
    const AIAdvisor* advisor() const { return advisor_.get(); }
    QString chipName() const { return chipName_; }
    QString coreSummary() const { return coreSummary_; }
    double memoryGB() const { return memoryGB_; }

    const QSet<qint64>& cuttingPIDs() const { return cuttingPIDs_; }

    static constexpr double aneMaxWatts = 8.0;
    static constexpr int tickIntervalMs = 1000;

signals:
    void cpuTotalChanged();
    void cpuPerCoreChanged();
    void gpuChanged();
    void memUsedChanged();
    void memTotalChanged();
    void memFractionChanged();
    void cpuWattsChanged();
    void gpuWattsChanged();
    void aneWattsChanged();
    void dramWattsChanged();
    void totalWattsChanged();
    void aneLoadChanged();
    void topCPUChanged();
    void topMemChanged();
    void cleanupCandidatesChanged();
    void aiVerdictsChanged();
    void sensitivityChanged();
    // After every refresh, once each reading has told its own change.
    void ticked();

private:
    QList<CleanupCandidate> computeCleanupCandidates(const std::vector<ProcInfo>& procs) const;
    void queueAIEvaluations();
    // One tick's readings of the machine, sampled together.
    struct Readings {
        CPUMonitor::Reading cpu;
        double gpu = 0;
        MemoryMonitor::Reading memory;
        std::optional<PowerMonitor::Reading> power;
    };
    void publishReadings(const Readings& readings);
    // Publishes the readings held for the table being read; false when none were held.
    bool publishHeldReadings();
    void applyProcessScan(quint64 ticket, ProcessScan scan);
    void publishProcesses(const std::vector<ProcInfo>& snapshot);

    template <typename T> void publish(T& field, T value, void (SystemMetrics::*changed)()) {
        field = std::move(value);
        emit(this->*changed)();
    }

    // Published readings.
    double cpuTotal_ = 0;
    QList<double> cpuPerCore_;
    double gpu_ = 0;
    double memUsed_ = 0;
    double memTotal_ = 1.0;
    double memFraction_ = 0;
    double cpuWatts_ = 0;
    double gpuWatts_ = 0;
    double aneWatts_ = 0;
    double dramWatts_ = 0;
    double totalWatts_ = 0;
    double aneLoad_ = 0;
    QList<ProcInfo> topCPU_;
    QList<ProcInfo> topMem_;
    QList<CleanupCandidate> cleanupCandidates_;
    bool pollProcesses_ = false;
    AIAdvisor::Status aiStatus_;
    double sensitivity_ = 0.5;
    QString chipName_;
    QString coreSummary_;
    double memoryGB_ = 0;

    // Owned machinery.
    std::unique_ptr<DesktopSession> desktop_;
    std::unique_ptr<SystemInfo> system_;
    std::unique_ptr<ProcessSignaller> signaller_;
    CPUMonitor cpu_;
    MemoryMonitor mem_;
    GPUMonitor gpuMon_;
    PowerMonitor power_;
    ProcessMonitor procMon_;
    ProcessScanner* scanner_ = nullptr; // child QObject; owns the process source
    // Readings are numbered as they are asked for. Only one is under way at a time; asks made
    // meanwhile are folded into one more reading once it has arrived.
    quint64 lastTicket_ = 0;
    bool scanUnderWay_ = false;
    bool scanWanted_ = false;
    std::optional<Readings> heldReadings_; // sampled, waiting for the table being read
    quint64 discardThrough_ = 0;           // readings asked for before the popover last closed
    BaselineEngine baseline_;
    std::unique_ptr<AIAdvisor> advisor_;
    EvaluationQueue queue_; // asks advisor_
    FocusTracker focus_;
    QTimer* timer_ = nullptr; // child QObject, made by start()
    QSet<qint64> cuttingPIDs_;
    // Cut pids whose hold has ended, with the last reading asked for before it ended: they stay
    // hidden until a reading asked for after that arrives, so a table read while they were still
    // winding down cannot bring them back.
    QHash<qint64, quint64> releasedAfter_;
    Platform::Later later_;
};

} // namespace quelmo

Q_DECLARE_METATYPE(quelmo::CleanupCandidate)
