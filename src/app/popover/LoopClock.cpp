#include "app/popover/LoopClock.h"

#include "app/popover/Loop.h"

#include <QElapsedTimer>
#include <algorithm>
#include <utility>

namespace quelmo {

namespace {

qint64 monotonicMs() {
    static const QElapsedTimer sinceStart = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return sinceStart.elapsed();
}

} // namespace

LoopClock::LoopClock(QObject* parent) : LoopClock(monotonicMs, parent) {}

LoopClock::LoopClock(Now now, QObject* parent) : QObject(parent), now_(std::move(now)) {
    timer_.setSingleShot(true);
    // Precise: the loops are eased, and a late step would show as a stutter.
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &LoopClock::step);
}

LoopClock::~LoopClock() {
    // The loops forget this clock and rest.
    const QList<Loop*> loops = std::exchange(loops_, {});
    for (Loop* loop : loops)
        loop->setClock(nullptr);
}

void LoopClock::setRunning(bool running) {
    if (running == running_)
        return;
    if (running) {
        startedAt_ = now_();
    } else {
        elapsedAtStart_ = elapsedMs();
    }
    running_ = running;
    step();
    emit runningChanged();
}

qint64 LoopClock::elapsedMs() const {
    return running_ ? elapsedAtStart_ + (now_() - startedAt_) : elapsedAtStart_;
}

void LoopClock::step() {
    showAll(std::max(elapsedMs(), shownUntilMs_));
}

void LoopClock::frameComing() {
    if (running_ && nextWakeMs_ >= 0 && nextWakeMs_ - elapsedMs() <= rideAheadMs)
        showAll(nextWakeMs_);
}

void LoopClock::showAll(qint64 at) {
    shownUntilMs_ = at;
    for (Loop* loop : std::as_const(loops_))
        loop->showAt(at);
    schedule();
}

void LoopClock::schedule() {
    timer_.stop();
    nextWakeMs_ = -1;
    if (!running_)
        return;
    const qint64 now = elapsedMs();
    // The latest moment that still draws every loop's next step in time, on the grid.
    qint64 earliest = -1;
    qint64 deadline = -1;
    for (const Loop* loop : std::as_const(loops_)) {
        const qint64 change = loop->nextChangeMs();
        if (change < 0)
            continue;
        if (earliest < 0 || change < earliest)
            earliest = change;
        if (deadline < 0 || change + loop->slackMs() < deadline)
            deadline = change + loop->slackMs();
    }
    if (earliest < 0)
        return;
    nextWakeMs_ = std::max(earliest, (deadline + frameMs - 1) / frameMs * frameMs);
    timer_.start(static_cast<int>(std::max<qint64>(nextWakeMs_ - now, 1)));
}

void LoopClock::add(Loop* loop) {
    if (!loops_.contains(loop))
        loops_.append(loop);
}

void LoopClock::remove(Loop* loop) {
    loops_.removeAll(loop);
    schedule();
}

void LoopClock::loopChanged(Loop* loop) {
    loop->showAt(std::max(elapsedMs(), shownUntilMs_));
    schedule();
}

} // namespace quelmo
