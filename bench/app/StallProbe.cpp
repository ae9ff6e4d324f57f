// Measures how long the running program's main thread takes to answer: every interval it reads one
// property of the program's status item over the session bus (the call is served on the main
// thread) and times the round trip. Prints one line per answer slower than the threshold, then
// a summary line.
//
//   quelmo_stall_probe SERVICE SECONDS [INTERVAL_MS] [THRESHOLD_MS]

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: %s SERVICE SECONDS [INTERVAL_MS] [THRESHOLD_MS]\n", argv[0]);
        return 2;
    }
    const QString service = args[1];
    const qint64 seconds = args[2].toLongLong();
    const int intervalMs = args.size() > 3 ? args[3].toInt() : 100;
    const double thresholdMs = args.size() > 4 ? args[4].toDouble() : 50.0;

    QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusMessage get = QDBusMessage::createMethodCall(
        service, QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("Status");

    std::vector<double> rounds;
    int failures = 0;
    QElapsedTimer total;
    total.start();
    while (total.elapsed() < seconds * 1000) {
        QElapsedTimer round;
        round.start();
        const QDBusMessage reply = bus.call(get, QDBus::Block, 10000);
        const double ms = static_cast<double>(round.nsecsElapsed()) / 1e6;
        if (reply.type() != QDBusMessage::ReplyMessage) {
            ++failures;
        } else {
            rounds.push_back(ms);
            if (ms > thresholdMs)
                std::printf("stall %.1f ms at %.1f s\n", ms,
                            static_cast<double>(total.elapsed()) / 1000.0);
        }
        std::fflush(stdout);
        QThread::msleep(static_cast<unsigned long>(intervalMs));
    }
    std::sort(rounds.begin(), rounds.end());
    const auto at = [&](double q) {
        return rounds.empty()
                   ? 0.0
                   : rounds[static_cast<std::size_t>(q * static_cast<double>(rounds.size() - 1))];
    };
    const auto stalls =
        std::count_if(rounds.begin(), rounds.end(), [&](double ms) { return ms > thresholdMs; });
    std::printf("probe: %zu answers, %d failed, median %.2f ms, p99 %.2f ms, max %.2f ms, "
                "%ld over %.0f ms\n",
                rounds.size(), failures, at(0.5), at(0.99), rounds.empty() ? 0.0 : rounds.back(),
                static_cast<long>(stalls), thresholdMs);
    return 0;
}
