// /proc/cpuinfo, read through the chip facts reader from a machine tree of its own.
#include "FuzzInput.h"
#include "platform/linux/metrics/ChipFactsReader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace quelmo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir root;
    static const bool made = QDir(root.path()).mkpath(QStringLiteral("proc"));
    if (!made)
        return 0;
    QFile cpuinfo(root.filePath(QStringLiteral("proc/cpuinfo")));
    if (!cpuinfo.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    cpuinfo.write(fuzz::bytes(data, size));
    cpuinfo.close();
    (void)linux_platform::ChipFactsReader(root.path()).readChipFacts();
    return 0;
}
