// /proc/stat.
#include "FuzzInput.h"
#include "platform/linux/metrics/CpuTicksReader.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (void)linux_platform::parseCpuTicks(fuzz::text(data, size));
    return 0;
}
