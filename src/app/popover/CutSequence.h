#pragma once

#include "core/cleanup/ProcessIdentity.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QVariant>
#include <QtQml/qqmlregistration.h>
#include <functional>
#include <optional>

namespace quelmo {

// What a press of Cut sets going: the mascot walks down to the row, snips, the processes are
// asked to quit and the mascot walks back. Holds the two values the card's views animate:
// `cutTrigger`, which grows by one per snip, and `catTravelY`, how far below its lane the mascot
// is drawn, each with the spring its latest change should move with.
//
// Each process is taken as the row showed it when Cut was pressed (pid and start time), and that
// identity is what is asked to quit once the mascot gets there, whatever the process table says
// by then: a pid may have passed to another process in between.
class CutSequence : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(int cutTrigger READ cutTrigger NOTIFY cutTriggerChanged)
    Q_PROPERTY(double catTravelY READ catTravelY NOTIFY catTravelYChanged)
    // Qt Quick SpringAnimation parameters of the latest move of the mascot.
    Q_PROPERTY(double travelSpring READ travelSpring NOTIFY catTravelYChanged)
    Q_PROPERTY(double travelDamping READ travelDamping NOTIFY catTravelYChanged)
    // ... and of the list's change after the latest termination.
    Q_PROPERTY(double listSpring READ listSpring NOTIFY listSpringChanged)
    Q_PROPERTY(double listDamping READ listDamping NOTIFY listSpringChanged)

public:
    // Asks the listed processes to quit (the hub's terminate).
    using Terminate = std::function<void(const QList<ProcessIdentity>&)>;
    // The process a row shows now for `pid`; without a row, the pid alone (which nothing will
    // vouch for, so nothing is sent to it).
    using Identify = std::function<ProcessIdentity(qint64 pid)>;
    // Runs `step` on the event loop `delayMs` from now; a timer on this object unless given.
    using Schedule = std::function<void(int delayMs, std::function<void()> step)>;

    // The journey's steps, in milliseconds after the press.
    static constexpr int snipAtMs = 240;
    static constexpr int terminateAtMs = 400;
    static constexpr int returnAtMs = 850;
    // A pid pressed again within this long of its cut (a double click) is not cut twice.
    static constexpr int repeatGuardMs = 2000;

    CutSequence(Terminate terminate, Identify identify, Schedule schedule = {},
                QObject* parent = nullptr);

    // Cuts `targets`. With a `travelTo` row whose position is known in `rowYs` (pids and the lane's
    // key, in the card's coordinates) far enough below the lane, the mascot makes the journey;
    // otherwise it snips and the processes are asked to quit at once. Nothing for an empty list,
    // nor for pids cut in the last `repeatGuardMs`.
    void executeCut(const QList<ProcessIdentity>& targets, std::optional<qint64> travelTo,
                    const QHash<qint64, double>& rowYs);
    // The same from QML, at the press: `pids` become the processes their rows show now,
    // `travelTo` a pid or undefined, `rowYs` an object keyed by pid.
    Q_INVOKABLE void cut(const QVariantList& pids, const QVariant& travelTo,
                         const QVariantMap& rowYs);

    int cutTrigger() const { return cutTrigger_; }
    double catTravelY() const { return catTravelY_; }
    double travelSpring() const { return travelSpring_; }
    double travelDamping() const { return travelDamping_; }
    double listSpring() const { return listSpring_; }
    double listDamping() const { return listDamping_; }

signals:
    void cutTriggerChanged();
    void catTravelYChanged();
    void listSpringChanged();

private:
    void snip();
    void travel(double y, double response, double dampingFraction);
    void terminateWith(const QList<ProcessIdentity>& targets, double response,
                       double dampingFraction);

    Terminate terminate_;
    Identify identify_;
    Schedule schedule_;
    QSet<qint64> recentlyCut_;
    int cutTrigger_ = 0;
    double catTravelY_ = 0;
    double travelSpring_ = 0;
    double travelDamping_ = 0;
    double listSpring_ = 0;
    double listDamping_ = 0;
};

} // namespace quelmo
