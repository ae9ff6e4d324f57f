#include "app/popover/Glide.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace quelmo {

class Glide::Driver : public QAbstractAnimation {
public:
    Driver(Glide& glide) : QAbstractAnimation(&glide), glide_(glide) {}
    int duration() const override { return -1; }

protected:
    void updateCurrentTime(int ms) override { glide_.advanceTo(ms); }

private:
    Glide& glide_;
};

Glide::State Glide::springAt(State from, double to, double response, double dampingFraction,
                             double seconds) {
    const double omega = 2 * std::numbers::pi / response;
    const double a = from.value - to;
    if (dampingFraction >= 1) {
        // Critically damped (a stiffer damping is not used by the popover).
        const double b = from.velocity + omega * a;
        const double decay = std::exp(-omega * seconds);
        return {to + (a + b * seconds) * decay, (b - omega * (a + b * seconds)) * decay};
    }
    const double zeta = std::max(dampingFraction, 0.0);
    const double omegaD = omega * std::sqrt(1 - zeta * zeta);
    const double b = (from.velocity + zeta * omega * a) / omegaD;
    const double decay = std::exp(-zeta * omega * seconds);
    const double c = std::cos(omegaD * seconds);
    const double s = std::sin(omegaD * seconds);
    return {to + decay * (a * c + b * s),
            decay * (-zeta * omega * (a * c + b * s) + omegaD * (b * c - a * s))};
}

Glide::State Glide::easedAt(double from, double to, double durationMs, double ms) {
    if (!(durationMs > 0) || ms >= durationMs)
        return {to, 0};
    const double u = std::max(ms, 0.0) / durationMs;
    const double eased = u < 0.5 ? 2 * u * u : 1 - 2 * (1 - u) * (1 - u);
    const double slope = u < 0.5 ? 4 * u : 4 * (1 - u); // d eased / d u
    return {from + (to - from) * eased, (to - from) * slope * 1000 / durationMs};
}

Glide::Glide(QObject* parent) : QObject(parent), driver_(new Driver(*this)) {}

Glide::~Glide() {
    driver_->stop();
}

bool Glide::moving() const {
    return driver_->state() == QAbstractAnimation::Running;
}

void Glide::setTarget(double target) {
    if (target == target_)
        return;
    target_ = target;
    emit targetChanged();
    if (!animated_) {
        jumpTo(target_);
        return;
    }
    const bool wasMoving = moving();
    driver_->stop();
    start_ = now_;
    spring_ = response_ > 0;
    moveResponse_ = response_;
    moveDamping_ = damping_;
    moveDurationMs_ = durationMs_;
    if (settled(now_) && now_.value == target_) {
        if (wasMoving)
            emit movingChanged();
        return;
    }
    driver_->start();
    if (!wasMoving)
        emit movingChanged();
}

void Glide::advanceTo(int ms) {
    const State next = spring_ ? springAt(start_, target_, moveResponse_, moveDamping_, ms / 1000.0)
                               : easedAt(start_.value, target_, moveDurationMs_, ms);
    if (settled(next)) {
        jumpTo(target_);
        return;
    }
    setValue(next);
}

bool Glide::settled(State state) const {
    if (std::abs(state.value - target_) > epsilon_)
        return false;
    if (!spring_)
        return state.velocity == 0;
    // Still enough that it will not move by epsilon again.
    return std::abs(state.velocity) * moveResponse_ / (2 * std::numbers::pi) <= epsilon_;
}

void Glide::jumpTo(double value) {
    const bool wasMoving = moving();
    driver_->stop();
    setValue({value, 0}, true);
    if (wasMoving)
        emit movingChanged();
}

void Glide::setValue(State state, bool landing) {
    now_ = state;
    if (state.value == shown_)
        return;
    if (!landing && pixelsPerUnit_ > 0 && std::abs(state.value - shown_) * pixelsPerUnit_ < 0.5)
        return;
    shown_ = state.value;
    emit valueChanged();
}

void Glide::setResponse(double seconds) {
    if (std::exchange(response_, seconds) != seconds)
        emit motionChanged();
}

void Glide::setDampingFraction(double fraction) {
    if (std::exchange(damping_, fraction) != fraction)
        emit motionChanged();
}

void Glide::setDurationMs(int ms) {
    if (std::exchange(durationMs_, ms) != ms)
        emit motionChanged();
}

void Glide::setEpsilon(double epsilon) {
    if (std::exchange(epsilon_, epsilon) != epsilon)
        emit motionChanged();
}

void Glide::setPixelsPerUnit(double pixels) {
    if (std::exchange(pixelsPerUnit_, pixels) != pixels)
        emit motionChanged();
}

void Glide::setAnimated(bool animated) {
    if (animated == animated_)
        return;
    animated_ = animated;
    emit animatedChanged();
    if (!animated_)
        jumpTo(target_);
}

} // namespace quelmo
