#pragma once

#include <QtGlobal>
#include <functional>
#include <limits>

namespace quelmo {

// Lets the first of a burst of activations through and swallows the rest: a host that sends a
// click twice, a double click, or a program hammering the bus. A burst ends once no activation
// has come for `quietMs`; every swallowed one extends it, so a flood opens or closes the
// popover once, not thousands of times.
class ActivationGate {
public:
    using Clock = std::function<qint64()>; // milliseconds, monotonic
    static constexpr qint64 quietMs = 200;

    explicit ActivationGate(Clock clock = monotonicMs) : clock_(std::move(clock)) {}

    bool admit() {
        const qint64 now = clock_();
        const bool first = last_ == never || now - last_ >= quietMs;
        last_ = now;
        return first;
    }

    static qint64 monotonicMs();

private:
    static constexpr qint64 never = std::numeric_limits<qint64>::min();
    Clock clock_;
    qint64 last_ = never;
};

} // namespace quelmo
