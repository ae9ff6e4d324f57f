#include "platform/linux/metrics/ProcessToolRunner.h"

#include <QProcess>

namespace quelmo::linux_platform {

namespace {

constexpr int longestRunMs = 10'000;

} // namespace

std::optional<QByteArray> runProcessListingTool(const std::string& program) {
    QProcess tool;
    tool.setStandardInputFile(QProcess::nullDevice());
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QString::fromStdString(program),
               {QStringLiteral("-axco"), QStringLiteral("pid=,%cpu=,rss=,user=,comm=")},
               QIODevice::ReadOnly);
    // Waiting reads the output as it comes, so a listing larger than a pipe never blocks it.
    if (!tool.waitForStarted(longestRunMs))
        return std::nullopt;
    if (!tool.waitForFinished(longestRunMs)) {
        tool.kill();
        tool.waitForFinished(longestRunMs);
        return std::nullopt;
    }
    return tool.readAllStandardOutput();
}

} // namespace quelmo::linux_platform
