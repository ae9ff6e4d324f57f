#pragma once

#include <QHash>
#include <QObject>
#include <functional>

class QTimer;

namespace quelmo {

// Where the mascot's timers come from: the event loop in the program, a hand-driven clock in
// tests, so that its behaviour can be checked step by step without waiting.
class MascotClock {
public:
    using Token = quint64;

    virtual ~MascotClock() = default;
    // Runs `action` once, `ms` milliseconds from now, unless cancelled first.
    virtual Token callAfter(int ms, std::function<void()> action) = 0;
    // Forgets a pending call; a token that has run or is unknown is ignored.
    virtual void cancel(Token token) = 0;
};

// The event loop's timers (precise, so that repeats do not drift apart).
class EventLoopMascotClock : public QObject, public MascotClock {
public:
    using QObject::QObject;
    ~EventLoopMascotClock() override;

    Token callAfter(int ms, std::function<void()> action) override;
    void cancel(Token token) override;

private:
    QHash<Token, QTimer*> pending_;
    Token next_ = 1;
};

} // namespace quelmo
