#include "desktop/DesktopServices.h"

namespace quelmo::linux_platform {

void addDesktopServices(Platform&, const QString&) {}

} // namespace quelmo::linux_platform
