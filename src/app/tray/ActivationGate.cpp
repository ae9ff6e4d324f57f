#include "app/tray/ActivationGate.h"

#include <QElapsedTimer>

namespace quelmo {

qint64 ActivationGate::monotonicMs() {
    static const QElapsedTimer sinceStart = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    return sinceStart.elapsed();
}

} // namespace quelmo
