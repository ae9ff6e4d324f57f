#include "app/popover/LoopClock.h"

namespace quelmo {

LoopClock::LoopClock(QObject* parent) : QObject(parent) {
    timer_.setInterval(stepMs);
    timer_.setTimerType(Qt::CoarseTimer);
    connect(&timer_, &QTimer::timeout, this, &LoopClock::step);
}

void LoopClock::setRunning(bool running) {
    if (running == timer_.isActive())
        return;
    if (running) {
        // Resumes where the loops stopped, so that nothing jumps when the popover opens again.
        elapsedAtStart_ = elapsed_;
        sinceStart_.start();
        timer_.start();
    } else {
        timer_.stop();
    }
    emit runningChanged();
}

void LoopClock::step() {
    elapsed_ = elapsedAtStart_ + static_cast<int>(sinceStart_.elapsed());
    emit elapsedChanged();
}

} // namespace quelmo
