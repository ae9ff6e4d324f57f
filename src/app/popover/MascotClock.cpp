#include "app/popover/MascotClock.h"

#include <QTimer>

namespace quelmo {

EventLoopMascotClock::~EventLoopMascotClock() {
    qDeleteAll(pending_);
}

MascotClock::Token EventLoopMascotClock::callAfter(int ms, std::function<void()> action) {
    const Token token = next_++;
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, [this, token, action = std::move(action)] {
        if (QTimer* done = pending_.take(token))
            done->deleteLater();
        action();
    });
    pending_.insert(token, timer);
    timer->start(ms);
    return token;
}

void EventLoopMascotClock::cancel(Token token) {
    delete pending_.take(token);
}

} // namespace quelmo
