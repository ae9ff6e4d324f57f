#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/DesktopServices.h"
#include "platform/linux/metrics/MetricsReaders.h"
#include "platform/ollama/OllamaModel.h"

namespace quelmo::linux_platform {

Platform makePlatform(const QString& root) {
    Platform platform;
    addMetricsReaders(platform, root);
    addDesktopServices(platform, root);
    platform.model =
        std::make_unique<ollama_platform::OllamaModel>(); // the local runtime, on loopback only
    return platform;
}

} // namespace quelmo::linux_platform
