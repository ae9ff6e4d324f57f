#pragma once

#include "core/metrics/ProcessMonitor.h"
#include "core/metrics/sources/ProcessSource.h"

#include <QObject>
#include <memory>

namespace quelmo {

// The process scanner's half on the reading thread: owns the source and answers each request
// with a signal that the scanner receives, queued, on its own thread.
class ProcessScanWorker : public QObject {
    Q_OBJECT

public:
    explicit ProcessScanWorker(std::unique_ptr<ProcessSource> source)
        : source_(std::move(source)) {}

    void scan(quint64 ticket) {
        emit scanned(ticket, source_ ? ProcessMonitor::read(*source_) : ProcessScan{});
    }
    void release() {
        if (source_)
            source_->release();
    }

signals:
    void scanned(quint64 ticket, quelmo::ProcessScan scan);

private:
    std::unique_ptr<ProcessSource> source_;
};

} // namespace quelmo
