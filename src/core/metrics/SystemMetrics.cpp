#include "core/metrics/SystemMetrics.h"

#include "core/advisor/NoLanguageModel.h"
#include "core/cleanup/CandidateSelection.h"
#include "core/cleanup/Termination.h"
#include "core/metrics/ChipInfo.h"
#include "core/settings/SettingsFile.h"
#include "core/settings/SettingsKeys.h"

#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <numeric>

namespace quelmo {

namespace {

constexpr int cuttingHoldMs = 1600;

MemoryMonitor makeMemoryMonitor(std::unique_ptr<MemorySource> source) {
    const double total = source ? source->physicalBytes() : 0.0;
    return MemoryMonitor(std::move(source), total);
}

// The first `limit` rows of the snapshot by `key`, highest first, ties in snapshot order. Only
// positions are sorted, and only as far as the first `limit`: a snapshot may hold thousands.
template <typename Key>
QList<ProcInfo> topRows(const std::vector<ProcInfo>& rows, Key key, std::size_t limit) {
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto middle = order.begin() + static_cast<std::ptrdiff_t>(std::min(limit, order.size()));
    std::partial_sort(order.begin(), middle, order.end(), [&](std::size_t a, std::size_t b) {
        const double ka = key(rows[a]), kb = key(rows[b]);
        return ka > kb || (!(kb > ka) && a < b);
    });
    QList<ProcInfo> top;
    top.reserve(middle - order.begin());
    for (auto it = order.begin(); it != middle; ++it)
        top.append(rows[*it]);
    return top;
}

} // namespace

SystemMetrics::SystemMetrics(Platform platform, QObject* parent)
    : QObject(parent), desktop_(std::move(platform.desktop)), system_(std::move(platform.system)),
      signaller_(std::move(platform.signaller)), cpu_(std::move(platform.cpuTicks)),
      mem_(makeMemoryMonitor(std::move(platform.memory))), gpuMon_(std::move(platform.gpu)),
      power_(std::move(platform.energy), std::move(platform.clock)),
      scanner_(new ProcessScanner(std::move(platform.processes),
                                  platform.readProcessesOffThread
                                      ? ProcessScanner::Threading::OwnThread
                                      : ProcessScanner::Threading::CallersThread,
                                  this)),
      baseline_(QString::fromLatin1(SettingsKeys::baselines)),
      advisor_(std::make_unique<AIAdvisor>(platform.model ? std::move(platform.model)
                                                          : std::make_unique<NoLanguageModel>())),
      queue_(*advisor_, [this] { emit aiVerdictsChanged(); }), focus_(desktop_.get()),
      later_(std::move(platform.later)) {
    const ChipFacts chip = platform.chip ? platform.chip->readChipFacts() : ChipFacts{};
    // The name shown for a processor that names itself nowhere (no model name, no board model).
    chipName_ = chip.name.isEmpty() ? QStringLiteral("Apple Silicon") : chip.name;
    coreSummary_ = ChipInfo::coreSummary(chip);
    memoryGB_ = mem_.total() * (1.0 / 1073741824.0);
    connect(scanner_, &ProcessScanner::scanned, this, &SystemMetrics::applyProcessScan);

    // The status kept for the cleanup card is the first real look at the model, not the guess
    // the advisor starts with; until that look has answered, the card shows no reason at all.
    // Connected before anyone else can listen, so readers of the signal find it captured.
    connect(
        advisor_.get(), &AIAdvisor::statusRefreshed, this,
        [this] { aiStatus_ = advisor_->status(); }, Qt::SingleShotConnection);

    // A stored value that is not a finite number is ignored and left as it is.
    const QVariant stored = SettingsFile::value(SettingsKeys::sensitivity);
    bool isNumber = false;
    const double storedSensitivity = stored.toDouble(&isNumber);
    if (stored.isValid() && isNumber && std::isfinite(storedSensitivity))
        setSensitivity(storedSensitivity);
    baseline_.setSensitivity(sensitivity_);
}

SystemMetrics::~SystemMetrics() {
    delete scanner_; // ends the reading thread before anything it could answer to goes
}

void SystemMetrics::start() {
    update();
    delete timer_;
    timer_ = new QTimer(this);
    timer_->setInterval(tickIntervalMs);
    // The timer is a child of the hub: it dies with it, so a tick never reaches a destroyed hub.
    connect(timer_, &QTimer::timeout, this, &SystemMetrics::update);
    timer_->start();
}

void SystemMetrics::update() {
    Readings readings{cpu_.sample(), gpuMon_.sample(), mem_.sample(), power_.sample()};
    // While the popover shows the process table, the readings wait for the table asked for
    // now (a few milliseconds) and both change together: one redraw a second, not two.
    if (pollProcesses_ && !scanUnderWay_) {
        heldReadings_ = std::move(readings);
        refreshProcesses();
        return;
    }
    heldReadings_.reset(); // older than these: never shown after them
    publishReadings(readings);
    if (pollProcesses_)
        refreshProcesses();
    emit ticked();
}

void SystemMetrics::publishReadings(const Readings& readings) {
    const CPUMonitor::Reading& cpu = readings.cpu;
    if (!cpu.perCore.empty()) {
        publish(cpuTotal_, cpu.total, &SystemMetrics::cpuTotalChanged);
        publish(cpuPerCore_, QList<double>(cpu.perCore.begin(), cpu.perCore.end()),
                &SystemMetrics::cpuPerCoreChanged);
    }

    publish(gpu_, readings.gpu, &SystemMetrics::gpuChanged);

    const MemoryMonitor::Reading& mem = readings.memory;
    publish(memUsed_, mem.used, &SystemMetrics::memUsedChanged);
    publish(memTotal_, mem.total, &SystemMetrics::memTotalChanged);
    publish(memFraction_, mem.fraction, &SystemMetrics::memFractionChanged);

    if (const auto& power = readings.power) {
        publish(cpuWatts_, power->cpuWatts, &SystemMetrics::cpuWattsChanged);
        publish(gpuWatts_, power->gpuWatts, &SystemMetrics::gpuWattsChanged);
        publish(aneWatts_, power->aneWatts, &SystemMetrics::aneWattsChanged);
        publish(dramWatts_, power->dramWatts, &SystemMetrics::dramWattsChanged);
        publish(totalWatts_,
                ((power->cpuWatts + power->gpuWatts) + power->aneWatts) + power->dramWatts,
                &SystemMetrics::totalWattsChanged);
        publish(aneLoad_, std::clamp(power->aneWatts / aneMaxWatts, 0.0, 1.0),
                &SystemMetrics::aneLoadChanged);
    }
}

bool SystemMetrics::publishHeldReadings() {
    const std::optional<Readings> held = std::exchange(heldReadings_, std::nullopt);
    if (held)
        publishReadings(*held);
    return held.has_value();
}

void SystemMetrics::savePending() {
    baseline_.flush();
}

void SystemMetrics::setPollProcesses(bool on) {
    if (on == pollProcesses_)
        return;
    pollProcesses_ = on;
    if (on) {
        refreshProcesses();
        return;
    }
    if (publishHeldReadings())
        emit ticked();
    // What was asked for while the popover was open no longer has anywhere to go, and the files
    // and names the reader keeps for the next reading are let go until it opens again.
    discardThrough_ = lastTicket_;
    scanWanted_ = false;
    scanner_->release();
    publish(topCPU_, {}, &SystemMetrics::topCPUChanged);
    publish(topMem_, {}, &SystemMetrics::topMemChanged);
    publish(cleanupCandidates_, {}, &SystemMetrics::cleanupCandidatesChanged);
}

void SystemMetrics::refreshProcesses() {
    if (scanUnderWay_) {
        scanWanted_ = true;
        return;
    }
    scanUnderWay_ = true;
    scanner_->request(++lastTicket_);
}

void SystemMetrics::applyProcessScan(quint64 ticket, ProcessScan scan) {
    scanUnderWay_ = false;
    const bool ticking = publishHeldReadings();
    if (ticket > discardThrough_) {
        for (auto it = releasedAfter_.begin(); it != releasedAfter_.end();) {
            if (ticket > it.value()) {
                cuttingPIDs_.remove(it.key());
                it = releasedAfter_.erase(it);
            } else {
                ++it;
            }
        }
        publishProcesses(procMon_.take(std::move(scan)));
    }
    if (ticking)
        emit ticked();
    if (std::exchange(scanWanted_, false))
        refreshProcesses();
}

void SystemMetrics::publishProcesses(const std::vector<ProcInfo>& snapshot) {
    // The statistics learn from figures measured over the last second only: not the figures
    // repeated by a refresh right after a tick (as after a cut), nor those of the first
    // refresh after the popover was closed for a while. Such a refresh leaves the busy streaks
    // as they were, so no row loses its place for it.
    if (procMon_.figuresAreFresh())
        baseline_.observe(snapshot);
    publish(topCPU_,
            topRows(
                snapshot, [](const ProcInfo& p) { return p.cpu; }, 5),
            &SystemMetrics::topCPUChanged);
    publish(topMem_,
            topRows(
                snapshot, [](const ProcInfo& p) { return p.rss; }, 5),
            &SystemMetrics::topMemChanged);
    publish(cleanupCandidates_, computeCleanupCandidates(snapshot),
            &SystemMetrics::cleanupCandidatesChanged);
    queueAIEvaluations();
}

void SystemMetrics::setSensitivity(double value) {
    publish(sensitivity_, value, &SystemMetrics::sensitivityChanged);
    baseline_.setSensitivity(value);
    SettingsFile::setValue(SettingsKeys::sensitivity, value);
}

void SystemMetrics::setCleanupCandidates(QList<CleanupCandidate> candidates) {
    publish(cleanupCandidates_, std::move(candidates), &SystemMetrics::cleanupCandidatesChanged);
}

QList<CleanupCandidate>
SystemMetrics::computeCleanupCandidates(const std::vector<ProcInfo>& procs) const {
    // Without knowing whose session this is, nothing can be told apart from the user's own use.
    if (procs.empty() || !system_)
        return {};
    SelectionInputs inputs;
    inputs.userName = system_->userName();
    inputs.ownPid = system_->ownPid();
    if (desktop_) {
        inputs.desktop = desktop_->snapshot();
        inputs.application = [this](qint64 pid) { return desktop_->application(pid); };
    }
    inputs.lastActiveSeconds = [this](const QString& appId) {
        return focus_.lastActiveSeconds(appId);
    };
    inputs.resourceReason = [this](const ProcInfo& p) { return baseline_.reason(p); };
    inputs.strain = {cpuTotal_, totalWatts_, [this] { return system_->thermalNominal(); }};
    inputs.cuttingPIDs = cuttingPIDs_;
    inputs.sensitivity = sensitivity_;
    inputs.nowSeconds = FocusTracker::nowSeconds();
    return selectCleanupCandidates(procs, inputs);
}

int SystemMetrics::terminate(const QList<ProcessIdentity>& targets) {
    const int count = requestTermination(targets, {desktop_.get(), signaller_.get()});
    QList<qint64> pids;
    for (const ProcessIdentity& target : targets)
        pids.append(target.pid);
    for (const qint64 pid : pids) {
        cuttingPIDs_.insert(pid);
        releasedAfter_.remove(pid);
    }
    // The rows go at once; the table is read again and the rest follows when it arrives.
    QList<CleanupCandidate> remaining = cleanupCandidates_;
    if (remaining.removeIf(
            [this](const CleanupCandidate& c) { return cuttingPIDs_.contains(c.id()); }) > 0)
        publish(cleanupCandidates_, std::move(remaining), &SystemMetrics::cleanupCandidatesChanged);
    refreshProcesses();

    // The rows stay hidden while the processes wind down, and until a table read after that has
    // arrived. If the popover has closed by then, they stay hidden: nothing is refreshed while it
    // is closed.
    auto endHold = [hub = QPointer<SystemMetrics>(this), pids] {
        if (!hub || !hub->pollProcesses_)
            return;
        for (const qint64 pid : pids) {
            if (hub->cuttingPIDs_.contains(pid))
                hub->releasedAfter_.insert(pid, hub->lastTicket_);
        }
        hub->refreshProcesses();
    };
    if (later_)
        later_(cuttingHoldMs, std::move(endHold));
    else
        QTimer::singleShot(cuttingHoldMs, this, std::move(endHold));
    return count;
}

void SystemMetrics::queueAIEvaluations() {
    queue_.queueCandidates(cleanupCandidates_);
}

void SystemMetrics::reevaluateAI() {
    queue_.clear();
    if (pollProcesses_)
        queueAIEvaluations();
}

} // namespace quelmo
