#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The clock of the popover's endless loops: the logo's breathing and the mascot's snipping,
// breathing and drifting sleep marks. Qt Quick's own animations draw a frame on every refresh of
// the screen; these loops are slow and small, so they step from one coarse timer at 15 frames a
// second instead, all on the same tick, and the popover is drawn 15 times a second rather than
// 60. The views read each loop's position from `elapsed` (see PopoverRules::loopPhase).
class LoopClock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    // Milliseconds the loops have run, counted only while running.
    Q_PROPERTY(int elapsed READ elapsed NOTIFY elapsedChanged)
    Q_PROPERTY(bool running READ running WRITE setRunning NOTIFY runningChanged)

public:
    static constexpr int stepMs = 66;

    explicit LoopClock(QObject* parent = nullptr);

    int elapsed() const { return elapsed_; }
    bool running() const { return timer_.isActive(); }
    void setRunning(bool running);

signals:
    void elapsedChanged();
    void runningChanged();

private:
    void step();

    QTimer timer_;
    QElapsedTimer sinceStart_;
    int elapsedAtStart_ = 0;
    int elapsed_ = 0;
};

} // namespace quelmo
