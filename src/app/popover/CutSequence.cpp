#include "app/popover/CutSequence.h"

#include "app/popover/CleanupRules.h"

#include <QPointer>
#include <QTimer>

namespace quelmo {

namespace rules = cleanup_rules;

CutSequence::CutSequence(Terminate terminate, Identify identify, Schedule schedule, QObject* parent)
    : QObject(parent), terminate_(std::move(terminate)), identify_(std::move(identify)),
      schedule_(std::move(schedule)) {
    if (!schedule_)
        schedule_ = [this](int delayMs, std::function<void()> step) {
            QTimer::singleShot(delayMs, this, std::move(step));
        };
    // Rows that come and go without a cut (a process that ended by itself) move on the spring
    // of a cut's removal.
    const rules::SpringParameters rows = rules::springFor(0.5, 0.85);
    listSpring_ = rows.spring;
    listDamping_ = rows.damping;
}

void CutSequence::executeCut(const QList<ProcessIdentity>& requested,
                             std::optional<qint64> travelTo, const QHash<qint64, double>& rowYs) {
    QList<ProcessIdentity> targets;
    QList<qint64> pids;
    for (const ProcessIdentity& target : requested) {
        if (!recentlyCut_.contains(target.pid)) {
            targets.append(target);
            pids.append(target.pid);
        }
    }
    if (targets.isEmpty())
        return;
    for (const qint64 pid : pids)
        recentlyCut_.insert(pid);
    const QPointer<CutSequence> guard(this);
    schedule_(repeatGuardMs, [guard, pids] {
        if (guard)
            for (const qint64 pid : pids)
                guard->recentlyCut_.remove(pid);
    });
    const double distance = rules::travelDistance(rowYs, travelTo);
    if (!rules::hasJourney(distance)) {
        snip();
        terminateWith(targets, 0.5, 0.85);
        return;
    }
    // The later steps go ahead even when another cut starts meanwhile; only the end of this
    // object stops them.
    travel(distance, 0.3, 0.72);
    const QPointer<CutSequence> self(this);
    schedule_(snipAtMs, [self] {
        if (self)
            self->snip();
    });
    schedule_(terminateAtMs, [self, targets] {
        if (self)
            self->terminateWith(targets, 0.45, 0.85);
    });
    schedule_(returnAtMs, [self] {
        if (self)
            self->travel(0, 0.5, 0.7);
    });
}

void CutSequence::cut(const QVariantList& pids, const QVariant& travelTo,
                      const QVariantMap& rowYs) {
    QList<ProcessIdentity> targets;
    for (const QVariant& value : pids) {
        const qint64 pid = value.toLongLong();
        targets.append(identify_ ? identify_(pid) : ProcessIdentity{pid, std::nullopt});
    }
    std::optional<qint64> target;
    if (travelTo.isValid() && !travelTo.isNull())
        target = travelTo.toLongLong();
    QHash<qint64, double> ys;
    for (auto it = rowYs.constBegin(); it != rowYs.constEnd(); ++it) {
        bool isNumber = false;
        const qint64 key = it.key().toLongLong(&isNumber);
        if (isNumber)
            ys.insert(key, it.value().toDouble());
    }
    executeCut(targets, target, ys);
}

void CutSequence::snip() {
    ++cutTrigger_;
    emit cutTriggerChanged();
}

void CutSequence::travel(double y, double response, double dampingFraction) {
    const rules::SpringParameters spring = rules::springFor(response, dampingFraction);
    travelSpring_ = spring.spring;
    travelDamping_ = spring.damping;
    catTravelY_ = y;
    emit catTravelYChanged();
}

void CutSequence::terminateWith(const QList<ProcessIdentity>& targets, double response,
                                double dampingFraction) {
    const rules::SpringParameters spring = rules::springFor(response, dampingFraction);
    listSpring_ = spring.spring;
    listDamping_ = spring.damping;
    emit listSpringChanged();
    if (terminate_)
        terminate_(targets);
}

} // namespace quelmo
