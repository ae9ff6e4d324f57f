#pragma once

#include "app/popover/LoopClock.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// One endless loop of the popover: a position running from 0 to 1 and back, eased in and out,
// `halfPeriodMs` each way. It is held at the few positions its drawing can show apart: `travel`
// is how far (in pixels) the loop's farthest drawn point moves each way, and the position moves
// in steps of half a pixel of that travel. So it changes, and the popover is drawn, only when
// the picture does. Without a running clock, or while not `running`, it rests at 0.
class Loop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(quelmo::LoopClock* clock READ clock WRITE setClock NOTIFY clockChanged)
    Q_PROPERTY(int halfPeriodMs READ halfPeriodMs WRITE setHalfPeriodMs NOTIFY shapeChanged)
    Q_PROPERTY(double travel READ travel WRITE setTravel NOTIFY shapeChanged)
    Q_PROPERTY(bool running READ running WRITE setRunning NOTIFY runningChanged)
    Q_PROPERTY(double phase READ phase NOTIFY phaseChanged)

public:
    explicit Loop(QObject* parent = nullptr);
    ~Loop() override;

    // The position at `elapsedMs`, in `steps` equal steps each way (rounded to the nearest).
    static double levelAt(double elapsedMs, int halfPeriodMs, int steps);
    // The first whole millisecond after `elapsedMs` at which levelAt differs; -1 if never.
    static qint64 nextChangeAfter(qint64 elapsedMs, int halfPeriodMs, int steps);
    // Half-pixel steps for a travel in pixels: at least one while it moves at all.
    static int stepsFor(double travel);
    // How late a step may be drawn: up to half a step for slow loops, so that they move on the
    // frames a faster loop draws anyway; on time for loops whose steps come quicker than
    // `onTimeBelowMs` apart, where lateness would show as a stutter.
    static constexpr int onTimeBelowMs = 150;
    static int slackMs(int halfPeriodMs, int steps);

    LoopClock* clock() const { return clock_; }
    void setClock(LoopClock* clock);
    int halfPeriodMs() const { return halfPeriodMs_; }
    void setHalfPeriodMs(int ms);
    double travel() const { return travel_; }
    void setTravel(double travel);
    bool running() const { return running_; }
    void setRunning(bool running);
    double phase() const { return phase_; }

    // Whether it moves at all: running, with a period and a travel.
    bool moves() const;
    int steps() const { return stepsFor(travel_); }
    int slackMs() const { return slackMs(halfPeriodMs_, steps()); }
    // Called by the clock: the position at the clock's `elapsedMs`.
    void showAt(qint64 elapsedMs);
    // When the position shown last changes next (in the clock's time); -1 if never.
    qint64 nextChangeMs() const { return nextChangeMs_; }

signals:
    void clockChanged();
    void shapeChanged();
    void runningChanged();
    void phaseChanged();

private:
    void setPhase(double phase);
    void changed();

    QPointer<LoopClock> clock_;
    int halfPeriodMs_ = 0;
    double travel_ = 0;
    bool running_ = true;
    double phase_ = 0;
    // Worked out once per change: it stays right until then.
    qint64 nextChangeMs_ = -1;
    qint64 shownAtMs_ = -1;
};

} // namespace quelmo
