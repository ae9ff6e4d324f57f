#include "LinuxPlatform.h"

namespace quelmo::linux_platform {

Platform makePlatform(const QString&) { return {}; }

} // namespace quelmo::linux_platform
