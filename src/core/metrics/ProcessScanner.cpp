#include "core/metrics/ProcessScanner.h"

#include "core/metrics/ProcessScanWorker.h"

namespace quelmo {

ProcessScanner::ProcessScanner(std::unique_ptr<ProcessSource> source, Threading threading,
                               QObject* parent)
    : QObject(parent), source_(std::move(source)), threading_(threading) {
    qRegisterMetaType<ProcessScan>();
    thread_.setObjectName(QStringLiteral("process scan"));
}

ProcessScanner::~ProcessScanner() {
    // A reading under way is finished and dropped; the worker and its source go with the thread.
    thread_.quit();
    thread_.wait();
}

void ProcessScanner::request(quint64 ticket) {
    if (threading_ == Threading::CallersThread) {
        emit scanned(ticket, source_ ? ProcessMonitor::read(*source_) : ProcessScan{});
        return;
    }
    if (!worker_) {
        // The thread starts with the first reading: a popover never opened costs no thread.
        worker_ = new ProcessScanWorker(std::move(source_));
        worker_->moveToThread(&thread_);
        connect(&thread_, &QThread::finished, worker_, &QObject::deleteLater);
        connect(worker_, &ProcessScanWorker::scanned, this, &ProcessScanner::scanned,
                Qt::QueuedConnection);
        thread_.start();
    }
    QMetaObject::invokeMethod(
        worker_, [worker = worker_, ticket] { worker->scan(ticket); }, Qt::QueuedConnection);
}

void ProcessScanner::release() {
    if (threading_ == Threading::CallersThread) {
        if (source_)
            source_->release();
        return;
    }
    if (worker_)
        QMetaObject::invokeMethod(
            worker_, [worker = worker_] { worker->release(); }, Qt::QueuedConnection);
}

} // namespace quelmo
