#include "metrics/MetricsReaders.h"

namespace quelmo::linux_platform {

void addMetricsReaders(Platform&, const QString&) {}

} // namespace quelmo::linux_platform
