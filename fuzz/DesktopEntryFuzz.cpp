// Desktop entries: any installed .desktop file, whoever wrote it.
#include "FuzzInput.h"
#include "platform/linux/apps/DesktopEntry.h"

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray input = fuzz::bytes(data, size);
    (void)linux_platform::parseDesktopEntry(input);
    (void)linux_platform::unescapeDesktopValue(QString::fromUtf8(input));
    return 0;
}
