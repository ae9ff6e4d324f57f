#include "app/shell/QuitSignals.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace quelmo {

namespace {

constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};

// The pipe's ends; the handler writes to [1], the event loop reads [0].
int signalPipe[2] = {-1, -1};

extern "C" void onQuitSignal(int signalNumber) {
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(signalNumber);
    // A full pipe already holds a pending quit: the byte may be dropped.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}

void setHandler(int signalNumber, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(signalNumber, &action, nullptr);
}

} // namespace

QuitSignals::QuitSignals(QObject* parent) : QObject(parent) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep their default action: end at once
    notifier_ = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &QuitSignals::drain);
    for (const int signalNumber : quitSignals)
        setHandler(signalNumber, onQuitSignal);
}

QuitSignals::~QuitSignals() {
    if (!notifier_)
        return;
    for (const int signalNumber : quitSignals)
        setHandler(signalNumber, SIG_DFL);
    delete notifier_;
    ::close(signalPipe[0]);
    ::close(signalPipe[1]);
    signalPipe[0] = signalPipe[1] = -1;
}

void QuitSignals::drain() {
    unsigned char byte = 0;
    while (::read(signalPipe[0], &byte, 1) == 1)
        emit received(byte);
}

} // namespace quelmo
