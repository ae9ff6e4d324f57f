#pragma once

#include "app/popover/MascotClock.h"

#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <functional>
#include <memory>

namespace quelmo {

// The mascot's mind. It sleeps while there is nothing to cut; awake it wanders, looks around,
// rests now and then and blinks; on every cut it stands still, looks down and snips. Its two
// repeating timers (behaviour every 1.5 s, blink every 3.6 s) run only while it is on screen.
//
// The view animates each change; `motion` says which animation the last change of `x`, `look`,
// `resting` and `lookDown` asked for.
class MascotBehavior : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(bool hasTargets READ hasTargets WRITE setHasTargets NOTIFY hasTargetsChanged)
    Q_PROPERTY(int trigger READ trigger WRITE setTrigger NOTIFY triggerChanged)
    Q_PROPERTY(double x READ x NOTIFY poseChanged)
    Q_PROPERTY(int look READ look NOTIFY poseChanged)
    Q_PROPERTY(bool resting READ resting NOTIFY poseChanged)
    Q_PROPERTY(bool lookDown READ lookDown NOTIFY poseChanged)
    Q_PROPERTY(bool awake READ awake NOTIFY poseChanged)
    Q_PROPERTY(bool bladeClose READ bladeClose NOTIFY bladeCloseChanged)
    Q_PROPERTY(bool blink READ blink NOTIFY blinkChanged)
    Q_PROPERTY(Motion motion READ motion NOTIFY motionChanged)
    // How the last pose change moves: on a spring of `motionResponse` seconds and
    // `motionDamping` (its damping fraction), or, with no response, eased in and out over
    // `motionMs`.
    Q_PROPERTY(int motionMs READ motionMs NOTIFY motionChanged)
    Q_PROPERTY(double motionResponse READ motionResponse NOTIFY motionChanged)
    Q_PROPERTY(double motionDamping READ motionDamping NOTIFY motionChanged)

public:
    // wander: spring (response 0.5 s, damping 0.62); wake: ease in-out 0.6 s; aim: ease in-out
    // 0.1 s (the start of a cut); lookUp: spring (response 0.45 s, damping 0.6).
    enum class Motion { wander, wake, aim, lookUp };
    Q_ENUM(Motion)

    static constexpr int behaviorIntervalMs = 1500;
    static constexpr int blinkIntervalMs = 3600;
    static constexpr int blinkLengthMs = 130;
    static constexpr int bladeCloseAtMs = 60;
    static constexpr int bladeOpenAtMs = 160;
    static constexpr int lookUpAtMs = 550;
    static constexpr int maxWander = 60;

    // Draws a real number in [lo, hi) and a whole number in [lo, hi].
    struct Random {
        std::function<double(double lo, double hi)> real;
        std::function<int(int lo, int hi)> whole;
    };
    static Random systemRandom();

    // Without a clock the event loop's timers are used.
    explicit MascotBehavior(QObject* parent = nullptr);
    MascotBehavior(MascotClock& clock, Random random, QObject* parent = nullptr);
    ~MascotBehavior() override;

    bool active() const { return active_; }
    // On screen (true) or not: appearing wakes the cat if there is something to cut and starts
    // its timers; disappearing stops every timer and pending step.
    void setActive(bool active);

    bool hasTargets() const { return hasTargets_; }
    void setHasTargets(bool hasTargets);

    int trigger() const { return trigger_; }
    // Every change of the value is one cut.
    void setTrigger(int trigger);

    double x() const { return x_; }
    int look() const { return look_; }
    bool resting() const { return resting_; }
    bool lookDown() const { return lookDown_; }
    bool awake() const { return awake_; }
    bool bladeClose() const { return bladeClose_; }
    bool blink() const { return blink_; }
    Motion motion() const { return motion_; }
    int motionMs() const;
    double motionResponse() const;
    double motionDamping() const;

    // True while the repeating timers are scheduled.
    bool timersRunning() const { return behaviorToken_ != 0 || blinkToken_ != 0; }

signals:
    void activeChanged();
    void hasTargetsChanged();
    void triggerChanged();
    void motionChanged();
    void poseChanged();
    void bladeCloseChanged();
    void blinkChanged();

private:
    void startLoops();
    void stopLoops();
    void behaviorTick();
    void blinkTick();
    void performCut();
    void cancelCut();
    // Announced before the pose changes, so the view picks the animation first.
    void setMotion(Motion motion);
    void setBlink(bool on);
    void setBladeClose(bool closed);

    std::unique_ptr<EventLoopMascotClock> ownClock_;
    MascotClock& clock_;
    Random random_;

    bool active_ = false;
    bool hasTargets_ = false;
    int trigger_ = 0;
    double x_ = 0;
    int look_ = 0;
    bool resting_ = false;
    bool lookDown_ = false;
    bool awake_ = true;
    bool bladeClose_ = false;
    bool blink_ = false;
    Motion motion_ = Motion::wander;

    MascotClock::Token behaviorToken_ = 0;
    MascotClock::Token blinkToken_ = 0;
    MascotClock::Token unblinkToken_ = 0;
    QList<MascotClock::Token> cutSteps_;
};

} // namespace quelmo
