#pragma once

#include <QObject>

class QSocketNotifier;

namespace quelmo {

// Turns SIGTERM, SIGINT and SIGHUP (the session ending, Ctrl+C, the terminal closing) into a
// signal on the event loop, so the program can end as it does from its menu: saving what is
// pending and leaving the tray. The handler itself only writes the signal's number into a pipe.
// One object per process; the handlers stay installed until it is destroyed.
class QuitSignals : public QObject {
    Q_OBJECT

public:
    explicit QuitSignals(QObject* parent = nullptr);
    ~QuitSignals() override;

signals:
    void received(int signalNumber);

private:
    void drain();

    QSocketNotifier* notifier_ = nullptr;
};

} // namespace quelmo
