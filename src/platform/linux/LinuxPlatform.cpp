#include "LinuxPlatform.h"

#include "desktop/DesktopServices.h"
#include "metrics/MetricsReaders.h"

namespace quelmo::linux_platform {

Platform makePlatform(const QString& root) {
    Platform platform;
    addMetricsReaders(platform, root);
    addDesktopServices(platform, root);
    return platform;
}

} // namespace quelmo::linux_platform
