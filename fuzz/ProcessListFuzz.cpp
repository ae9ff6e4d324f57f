// The process tool's text, the fallback where /proc is absent.
#include "FuzzInput.h"
#include "core/metrics/ProcessListText.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (const auto decoded = decodeProcessListText(fuzz::bytes(data, size)))
        (void)parseProcessListText(*decoded);
    return 0;
}
