#pragma once

#include "core/metrics/ProcessMonitor.h"
#include "core/metrics/sources/ProcessSource.h"

#include <QObject>
#include <QThread>
#include <memory>

namespace quelmo {

class ProcessScanWorker;

// Reads the process table for the hub. On a machine with thousands of processes a reading takes
// tens of milliseconds, so it runs on a thread of its own: every request is answered, in the
// order asked, by one `scanned` signal carrying the reading as a plain value. The source belongs
// to that thread from the first request on; nothing else is shared with it. Without a thread of
// its own (tests, benchmarks of the rules) a request is answered before `request` returns.
class ProcessScanner : public QObject {
    Q_OBJECT

public:
    enum class Threading { CallersThread, OwnThread };

    ProcessScanner(std::unique_ptr<ProcessSource> source, Threading threading,
                   QObject* parent = nullptr);
    ~ProcessScanner() override;
    ProcessScanner(const ProcessScanner&) = delete;
    ProcessScanner& operator=(const ProcessScanner&) = delete;

    // Asks for one reading; `scanned` answers with the same ticket.
    void request(quint64 ticket);
    // Lets the source drop what it keeps between readings; done after the readings asked so far.
    void release();

signals:
    void scanned(quint64 ticket, quelmo::ProcessScan scan);

private:
    std::unique_ptr<ProcessSource> source_; // until the thread takes it over
    Threading threading_;
    QThread thread_;
    ProcessScanWorker* worker_ = nullptr; // lives on thread_, deleted there when it finishes
};

} // namespace quelmo
