#pragma once

#include <QList>
#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>
#include <functional>

namespace quelmo {

class Loop;

// The clock of the popover's endless loops (Loop): the logo's breathing and the mascot's
// snipping, breathing and drifting sleep marks. It does not tick: it wakes when a loop's next
// visible step is due, moves every loop to where it is then, and sleeps until the next such
// moment. Slow loops may take their steps a little late (Loop::slackMs), on the frames that a
// faster loop draws anyway; wake-ups fall on a grid of `frameMs`, so the loops never have the
// popover drawn more than 1000 / frameMs times a second. Stopped (the popover hidden) it does
// not wake at all, and its time stands still, so the loops go on where they were.
class LoopClock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(bool running READ running WRITE setRunning NOTIFY runningChanged)

public:
    static constexpr int frameMs = 50;
    // How early a step may be taken on a frame drawn anyway (see frameComing).
    static constexpr int rideAheadMs = 12;
    // Milliseconds of a monotonic clock.
    using Now = std::function<qint64()>;

    explicit LoopClock(QObject* parent = nullptr);
    explicit LoopClock(Now now, QObject* parent = nullptr);
    ~LoopClock() override;

    bool running() const { return running_; }
    void setRunning(bool running);
    // Milliseconds the loops have run, counted only while running.
    qint64 elapsedMs() const;
    // When (in elapsedMs) it wakes next; -1 while nothing will move.
    qint64 nextWakeMs() const { return nextWakeMs_; }

    // Moves the loops to the present and sleeps until the next change (what its timer calls).
    void step();
    // The window is about to draw a frame for some other change (a reading, a glide). Steps
    // due within rideAheadMs are taken now and drawn on it, rather than on a frame of their
    // own a few milliseconds later.
    void frameComing();

    // For Loop: a loop joins, leaves, or changes how it runs.
    void add(Loop* loop);
    void remove(Loop* loop);
    void loopChanged(Loop* loop);

signals:
    void runningChanged();

private:
    // Shows every loop at `at` (elapsedMs or a little ahead) and sleeps until the next change.
    void showAll(qint64 at);
    void schedule();

    Now now_;
    QTimer timer_;
    QList<Loop*> loops_;
    bool running_ = false;
    qint64 startedAt_ = 0;
    qint64 elapsedAtStart_ = 0;
    qint64 nextWakeMs_ = -1;
    qint64 shownUntilMs_ = 0; // loops never go back behind a step taken early
};

} // namespace quelmo
