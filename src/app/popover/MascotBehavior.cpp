#include "app/popover/MascotBehavior.h"

#include <QRandomGenerator>
#include <utility>

namespace quelmo {

MascotBehavior::Random MascotBehavior::systemRandom() {
    return {[](double lo, double hi) {
                return lo + QRandomGenerator::global()->generateDouble() * (hi - lo);
            },
            [](int lo, int hi) { return QRandomGenerator::global()->bounded(lo, hi + 1); }};
}

MascotBehavior::MascotBehavior(QObject* parent)
    : QObject(parent), ownClock_(std::make_unique<EventLoopMascotClock>()), clock_(*ownClock_),
      random_(systemRandom()) {}

MascotBehavior::MascotBehavior(MascotClock& clock, Random random, QObject* parent)
    : QObject(parent), clock_(clock), random_(std::move(random)) {}

MascotBehavior::~MascotBehavior() {
    stopLoops();
    cancelCut();
}

void MascotBehavior::setActive(bool active) {
    if (active == active_)
        return;
    active_ = active;
    if (active_) {
        awake_ = hasTargets_;
        emit poseChanged();
        startLoops();
    } else {
        stopLoops();
        cancelCut();
        setBlink(false);
        setBladeClose(false);
        if (lookDown_) {
            lookDown_ = false;
            emit poseChanged();
        }
    }
    emit activeChanged();
}

void MascotBehavior::startLoops() {
    stopLoops();
    behaviorToken_ = clock_.callAfter(behaviorIntervalMs, [this] {
        behaviorToken_ = 0;
        behaviorTick();
    });
    blinkToken_ = clock_.callAfter(blinkIntervalMs, [this] {
        blinkToken_ = 0;
        blinkTick();
    });
}

void MascotBehavior::stopLoops() {
    for (MascotClock::Token* token : {&behaviorToken_, &blinkToken_, &unblinkToken_}) {
        if (*token)
            clock_.cancel(*token);
        *token = 0;
    }
}

void MascotBehavior::behaviorTick() {
    behaviorToken_ = clock_.callAfter(behaviorIntervalMs, [this] {
        behaviorToken_ = 0;
        behaviorTick();
    });
    if (!awake_)
        return;
    const double r = random_.real(0, 9);
    setMotion(Motion::wander);
    if (r < 2)
        resting_ = !resting_;
    if (resting_) {
        x_ = 0;
        look_ = 0;
    } else {
        x_ = random_.whole(-maxWander, maxWander);
        look_ = random_.whole(-1, 1);
    }
    emit poseChanged();
}

void MascotBehavior::blinkTick() {
    blinkToken_ = clock_.callAfter(blinkIntervalMs, [this] {
        blinkToken_ = 0;
        blinkTick();
    });
    if (!awake_)
        return;
    setBlink(true);
    if (unblinkToken_)
        clock_.cancel(unblinkToken_);
    unblinkToken_ = clock_.callAfter(blinkLengthMs, [this] {
        unblinkToken_ = 0;
        setBlink(false);
    });
}

void MascotBehavior::setHasTargets(bool hasTargets) {
    if (hasTargets == hasTargets_)
        return;
    hasTargets_ = hasTargets;
    emit hasTargetsChanged();
    if (!active_)
        return;
    setMotion(Motion::wake);
    awake_ = hasTargets_;
    if (!awake_) {
        x_ = 0;
        look_ = 0;
        resting_ = false;
    }
    emit poseChanged();
}

void MascotBehavior::setTrigger(int trigger) {
    if (trigger == trigger_)
        return;
    trigger_ = trigger;
    emit triggerChanged();
    performCut();
}

void MascotBehavior::performCut() {
    cancelCut();
    setMotion(Motion::aim);
    resting_ = false;
    lookDown_ = true;
    x_ = 0;
    emit poseChanged();
    cutSteps_ = {
        clock_.callAfter(bladeCloseAtMs, [this] { setBladeClose(true); }),
        clock_.callAfter(bladeOpenAtMs, [this] { setBladeClose(false); }),
        clock_.callAfter(lookUpAtMs,
                         [this] {
                             cutSteps_.clear();
                             setMotion(Motion::lookUp);
                             lookDown_ = false;
                             emit poseChanged();
                         }),
    };
}

void MascotBehavior::cancelCut() {
    for (MascotClock::Token token : std::as_const(cutSteps_))
        clock_.cancel(token);
    cutSteps_.clear();
}

namespace {

// How each kind of pose change moves: eased over `ms`, or on a spring when `response` is set.
struct MotionShape {
    int ms;
    double response;
    double damping;
};

MotionShape shapeOf(MascotBehavior::Motion motion) {
    using Motion = MascotBehavior::Motion;
    switch (motion) {
    case Motion::wander:
        return {500, 0.5, 0.62};
    case Motion::wake:
        return {600, 0, 1};
    case Motion::aim:
        return {100, 0, 1};
    case Motion::lookUp:
        return {450, 0.45, 0.6};
    }
    return {0, 0, 1};
}

} // namespace

int MascotBehavior::motionMs() const {
    return shapeOf(motion_).ms;
}

double MascotBehavior::motionResponse() const {
    return shapeOf(motion_).response;
}

double MascotBehavior::motionDamping() const {
    return shapeOf(motion_).damping;
}

void MascotBehavior::setMotion(Motion motion) {
    if (std::exchange(motion_, motion) != motion)
        emit motionChanged();
}

void MascotBehavior::setBlink(bool on) {
    if (std::exchange(blink_, on) != on)
        emit blinkChanged();
}

void MascotBehavior::setBladeClose(bool closed) {
    if (std::exchange(bladeClose_, closed) != closed)
        emit bladeCloseChanged();
}

} // namespace quelmo
