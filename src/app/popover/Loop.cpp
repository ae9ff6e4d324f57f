#include "app/popover/Loop.h"

#include "app/popover/LoopClock.h"
#include "app/popover/PopoverRules.h"

#include <cmath>
#include <utility>

namespace quelmo {

Loop::Loop(QObject* parent) : QObject(parent) {}

Loop::~Loop() {
    if (clock_)
        clock_->remove(this);
}

double Loop::levelAt(double elapsedMs, int halfPeriodMs, int steps) {
    if (steps <= 0)
        return 0;
    return std::round(PopoverRules::loopPhase(elapsedMs, halfPeriodMs) * steps) / steps;
}

qint64 Loop::nextChangeAfter(qint64 elapsedMs, int halfPeriodMs, int steps) {
    if (steps <= 0 || halfPeriodMs <= 0)
        return -1;
    // Every level lasts less than a whole period, so a change comes within one.
    const double now = levelAt(static_cast<double>(elapsedMs), halfPeriodMs, steps);
    for (qint64 t = elapsedMs + 1; t <= elapsedMs + 2 * qint64{halfPeriodMs}; ++t) {
        if (levelAt(static_cast<double>(t), halfPeriodMs, steps) != now)
            return t;
    }
    return -1;
}

int Loop::stepsFor(double travel) {
    if (!(travel > 0) || !std::isfinite(travel))
        return 0;
    return static_cast<int>(std::ceil(travel / 0.5));
}

int Loop::slackMs(int halfPeriodMs, int steps) {
    if (steps <= 0 || halfPeriodMs <= 0)
        return 0;
    const int stepMs = halfPeriodMs / steps;
    return stepMs < onTimeBelowMs ? 0 : stepMs / 2;
}

void Loop::setClock(LoopClock* clock) {
    if (clock == clock_)
        return;
    if (clock_)
        clock_->remove(this);
    clock_ = clock;
    if (clock_)
        clock_->add(this);
    emit clockChanged();
    changed();
}

void Loop::setHalfPeriodMs(int ms) {
    if (ms == halfPeriodMs_)
        return;
    halfPeriodMs_ = ms;
    emit shapeChanged();
    changed();
}

void Loop::setTravel(double travel) {
    if (travel == travel_)
        return;
    travel_ = travel;
    emit shapeChanged();
    changed();
}

void Loop::setRunning(bool running) {
    if (running == running_)
        return;
    running_ = running;
    emit runningChanged();
    changed();
}

bool Loop::moves() const {
    return running_ && halfPeriodMs_ > 0 && steps() > 0;
}

void Loop::showAt(qint64 elapsedMs) {
    if (!moves()) {
        nextChangeMs_ = -1;
        shownAtMs_ = -1;
        setPhase(0);
        return;
    }
    setPhase(levelAt(static_cast<double>(elapsedMs), halfPeriodMs_, steps()));
    const bool stillAhead = shownAtMs_ >= 0 && shownAtMs_ <= elapsedMs && nextChangeMs_ > elapsedMs;
    if (!stillAhead)
        nextChangeMs_ = nextChangeAfter(elapsedMs, halfPeriodMs_, steps());
    shownAtMs_ = elapsedMs;
}

void Loop::changed() {
    shownAtMs_ = -1;
    if (clock_)
        clock_->loopChanged(this);
    else
        setPhase(0);
}

void Loop::setPhase(double phase) {
    if (std::exchange(phase_, phase) != phase)
        emit phaseChanged();
}

} // namespace quelmo
