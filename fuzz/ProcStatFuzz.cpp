// /proc/PID/stat and /proc/PID/status as a process may shape them: names with any bytes, fields
// missing or out of range.
#include "FuzzInput.h"
#include "platform/linux/common/ProcFiles.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::text(data, size);
    (void)linux_platform::parseProcStat(input);
    (void)linux_platform::parseStatusUid(input);
    const QByteArray copy = fuzz::bytes(data, size);
    (void)linux_platform::parseStartTime(copy);
    (void)linux_platform::parseUids(copy);
    return 0;
}
