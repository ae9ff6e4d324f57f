#include "core/metrics/ChipInfo.h"

#include <QThread>

namespace quelmo::ChipInfo {

QString coreSummary(const ChipFacts& facts) {
    if (facts.performanceCores >= 1 && facts.efficiencyCores >= 1)
        return QStringLiteral("%1P + %2E").arg(facts.performanceCores).arg(facts.efficiencyCores);
    const int n = facts.logicalCpus > 0 ? facts.logicalCpus : QThread::idealThreadCount();
    return QStringLiteral("%1 cores").arg(n);
}

} // namespace quelmo::ChipInfo
