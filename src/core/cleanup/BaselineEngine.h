#pragma once

#include "core/cleanup/CleanupCandidate.h"
#include "core/metrics/ProcInfo.h"

#include <QByteArray>
#include <QHash>
#include <QString>

class QSettings;
class QThreadPool;
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo {

// Per-process-name CPU statistics kept across runs, and the resource reasons derived from them:
// an abnormal spike against a process's own history, a sustained hog, or a memory hog.
//
// The store is bounded: each name remembers the day it was last observed, and a name that has not
// been observed for `maxIdleDays` (`youngIdleDays` while it has fewer samples than the spike test
// needs) is forgotten at the next load or save. Beyond `maxEntries` names, the ones observed
// longest ago go first, fewest samples first among those of the same day.
//
// A save hands a copy of the store to a writer thread of its own, which encodes it and writes the
// settings file, so the observation that saves costs the main thread next to nothing. Writes run
// one at a time in the order they were asked for.
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
    static constexpr qint64 saveEvery = 30;    // observations between two saves
    static constexpr qint64 spikeSamples = 20; // history the spike test needs
    static constexpr qint64 maxIdleDays = 30;
    static constexpr qint64 youngIdleDays = 2;
    static constexpr qsizetype maxEntries = 4000;

    // Whole days since 1970-01-01 UTC.
    using DayClock = std::function<qint64()>;
    static qint64 utcDay();

    // What is stored: the statistics and, per name, the day it was last observed.
    struct Document {
        QHash<QString, Stat> baselines;
        QHash<QString, qint64> lastSeen;
    };

    // Loads the statistics stored under `defaultsKey` at once.
    explicit BaselineEngine(QString defaultsKey, DayClock today = utcDay);
    // Waits for the writes already asked for.
    ~BaselineEngine();
    BaselineEngine(const BaselineEngine&) = delete;
    BaselineEngine& operator=(const BaselineEngine&) = delete;

    // Folds one process snapshot in; every 30th call stores the statistics.
    void observe(const std::vector<ProcInfo>& procs);
    // Why `proc` (a row of the last observed snapshot) is a resource hog, if it is one. Never
    // answers idleApp.
    std::optional<CleanupReason> reason(const ProcInfo& proc) const;

    // Stores what has been observed since the last save, and waits until every write is done.
    void flush();
    // Waits until the writes already asked for are done.
    void waitForWrites();

    void setSensitivity(double s) { sensitivity_ = s; }
    double sensitivity() const { return sensitivity_; }

    const QHash<QString, Stat>& baselines() const { return store_.baselines; }
    std::optional<qint64> lastSeen(const QString& name) const;
    qint64 streak(qint64 pid) const { return streak_.value(pid, 0); }

    // The stored document format: a JSON object of name -> {"mean", "meanSq", "samples",
    // "lastSeen"}; "lastSeen" (a day number) may be missing, and then reads as `today`. Nothing
    // when the document does not decode, or the statistics cannot be encoded.
    static std::optional<Document> decode(const QByteArray& document, qint64 today);
    static std::optional<QByteArray> encode(const Document& document);

    // The settings file the document is kept in, beside the program's settings file.
    static std::unique_ptr<QSettings> openStore();

    // Drops from `document` what has aged out on `today`, then the oldest beyond `maxEntries`.
    static void prune(Document& document, qint64 today);

private:
    void load();
    void save();

    Document store_;
    QHash<qint64, qint64> streak_; // consecutive busy observations per live pid
    const QString defaultsKey_;
    const DayClock today_;
    std::unique_ptr<QThreadPool> writer_;
    qint64 saveTick_ = 0;
    double sensitivity_ = 0.5;
};

} // namespace quelmo
