// The hub's model queue: one evaluation in flight, verdicts cached by candidate key.
#include "metrics/SystemMetrics.h"

namespace quelmo {

void SystemMetrics::queueAIEvaluations() {}

void SystemMetrics::pumpAI() {}

void SystemMetrics::reevaluateAI() {
    setAIVerdicts({});
    aiQueue_.clear();
    if (pollProcesses_)
        queueAIEvaluations();
}

} // namespace quelmo
