// /proc/PID/stat and /proc/PID/status as a process may shape them: names with any bytes, fields
// missing or out of range; and the command line a process may rewrite, which names it.
#include "FuzzInput.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::text(data, size);
    if (const auto stat = linux_platform::parseProcStat(input))
        (void)linux_platform::processName(stat->comm, input);
    (void)linux_platform::parseStatusUids(input);
    (void)linux_platform::processName(input.substr(0, 15), input);
    return 0;
}
