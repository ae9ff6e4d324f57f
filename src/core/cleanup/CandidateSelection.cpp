// The hub's cleanup side: which processes to offer, and terminating the ones the user cuts.
#include "metrics/SystemMetrics.h"

namespace quelmo {

QList<CleanupCandidate> SystemMetrics::computeCleanupCandidates(const std::vector<ProcInfo>&) const {
    return {};
}

int SystemMetrics::terminate(const QList<qint64>&) { return 0; }

} // namespace quelmo
