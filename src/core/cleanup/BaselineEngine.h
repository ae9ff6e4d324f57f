#pragma once

#include "core/cleanup/CleanupCandidate.h"
#include "core/metrics/ProcInfo.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <optional>
#include <vector>

namespace quelmo {

// Per-process-name CPU statistics kept across runs, and the resource reasons derived from them:
// an abnormal spike against a process's own history, a sustained hog, or a memory hog.
class BaselineEngine {
public:
    struct Stat {
        double mean = 0;    // exponentially weighted mean of cpu
        double meanSq = 0;  // exponentially weighted mean of cpu squared
        qint64 samples = 0; // samples folded in, capped at maxSamples

        friend bool operator==(const Stat&, const Stat&) = default;
    };

    static constexpr double alpha = 0.03; // weight of the newest sample
    static constexpr double hotCPU = 8.0; // cpu per cent at or above which a process is busy
    static constexpr qint64 maxSamples = 100000;
    static constexpr qint64 saveEvery = 30; // observations between two saves

    // Loads the statistics stored under `defaultsKey` at once.
    explicit BaselineEngine(QString defaultsKey);

    // Folds one process snapshot in; every 30th call stores the statistics.
    void observe(const std::vector<ProcInfo>& procs);
    // Why `proc` (a row of the last observed snapshot) is a resource hog, if it is one. Never
    // answers idleApp.
    std::optional<CleanupReason> reason(const ProcInfo& proc) const;

    void setSensitivity(double s) { sensitivity_ = s; }
    double sensitivity() const { return sensitivity_; }

    const QHash<QString, Stat>& baselines() const { return baselines_; }
    qint64 streak(qint64 pid) const { return streak_.value(pid, 0); }
    qint64 saveTick() const { return saveTick_; }

    // The stored document format: a JSON object of name -> {"mean", "meanSq", "samples"}.
    // Nothing when the document does not decode, or the statistics cannot be encoded.
    static std::optional<QHash<QString, Stat>> decode(const QByteArray& document);
    static std::optional<QByteArray> encode(const QHash<QString, Stat>& baselines);

private:
    void load();
    void save() const;

    QHash<QString, Stat> baselines_;
    QHash<qint64, qint64> streak_; // consecutive busy observations per live pid
    const QString defaultsKey_;
    qint64 saveTick_ = 0;
    double sensitivity_ = 0.5;
};

} // namespace quelmo
