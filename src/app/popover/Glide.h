#pragma once

#include <QAbstractAnimation>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// A value that follows its target the way its latest change asks: on a spring of `response`
// seconds (its period undamped) and `dampingFraction`, or, with no response, eased in and out
// over `durationMs`. It moves on Qt's animation timer, so at the display's frame rate, and only
// while it moves: once within `epsilon` of the target and all but still, it stops there. A new
// target in mid-move starts from where the value is, at the speed it has. Not `animated` (off
// screen), it follows at once. Given `pixelsPerUnit` (how far its drawing moves per unit of
// value), `value` is told only once it has moved half a pixel from what was last told, so the
// slow ends of a move draw only the frames that show a change; it always lands on the target.
class Glide : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double target READ target WRITE setTarget NOTIFY targetChanged)
    Q_PROPERTY(double value READ value NOTIFY valueChanged)
    Q_PROPERTY(double response READ response WRITE setResponse NOTIFY motionChanged)
    Q_PROPERTY(
        double dampingFraction READ dampingFraction WRITE setDampingFraction NOTIFY motionChanged)
    Q_PROPERTY(int durationMs READ durationMs WRITE setDurationMs NOTIFY motionChanged)
    Q_PROPERTY(double epsilon READ epsilon WRITE setEpsilon NOTIFY motionChanged)
    Q_PROPERTY(double pixelsPerUnit READ pixelsPerUnit WRITE setPixelsPerUnit NOTIFY motionChanged)
    Q_PROPERTY(bool animated READ animated WRITE setAnimated NOTIFY animatedChanged)
    Q_PROPERTY(bool moving READ moving NOTIFY movingChanged)

public:
    struct State {
        double value = 0;
        double velocity = 0; // per second
    };
    // Where a spring started at `from` with `velocity` towards `to` is after `seconds`.
    static State springAt(State from, double to, double response, double dampingFraction,
                          double seconds);
    // Where an ease in and out from `from` to `to` over `durationMs` is after `ms`.
    static State easedAt(double from, double to, double durationMs, double ms);

    explicit Glide(QObject* parent = nullptr);
    ~Glide() override;

    double target() const { return target_; }
    void setTarget(double target);
    // The value as last told (see pixelsPerUnit).
    double value() const { return shown_; }
    double response() const { return response_; }
    void setResponse(double seconds);
    double dampingFraction() const { return damping_; }
    void setDampingFraction(double fraction);
    int durationMs() const { return durationMs_; }
    void setDurationMs(int ms);
    double epsilon() const { return epsilon_; }
    void setEpsilon(double epsilon);
    double pixelsPerUnit() const { return pixelsPerUnit_; }
    void setPixelsPerUnit(double pixels);
    bool animated() const { return animated_; }
    void setAnimated(bool animated);
    bool moving() const;

    // Where the current move is `ms` after it started (what the animation timer calls).
    void advanceTo(int ms);

signals:
    void targetChanged();
    void valueChanged();
    void motionChanged();
    void animatedChanged();
    void movingChanged();

private:
    class Driver;

    void jumpTo(double value);
    // Moves to `state`; told when it shows (or, `landing`, whenever it changes).
    void setValue(State state, bool landing = false);
    bool settled(State state) const;

    Driver* driver_;
    double target_ = 0;
    State now_;
    // The current move: where it started and whether it is a spring.
    State start_;
    bool spring_ = false;
    double moveResponse_ = 0;
    double moveDamping_ = 0;
    int moveDurationMs_ = 0;

    double response_ = 0;
    double damping_ = 1;
    int durationMs_ = 250;
    double epsilon_ = 0.25;
    double pixelsPerUnit_ = 0; // 0: every change is told
    double shown_ = 0;
    bool animated_ = true;
};

} // namespace quelmo
