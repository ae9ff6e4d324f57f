#include "cleanup/BaselineEngine.h"

namespace quelmo {

BaselineEngine::BaselineEngine() = default;

void BaselineEngine::observe(const std::vector<ProcInfo>&) {}

std::optional<CleanupReason> BaselineEngine::reason(const ProcInfo&) const { return std::nullopt; }

} // namespace quelmo
