// /proc/meminfo and zram's mm_stat.
#include "FuzzInput.h"
#include "platform/linux/metrics/MemInfoReader.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::text(data, size);
    const auto zram = linux_platform::parseZramCompressedBytes(input);
    (void)linux_platform::parseMemInfo(input, zram ? static_cast<double>(*zram) : 0.0);
    return 0;
}
