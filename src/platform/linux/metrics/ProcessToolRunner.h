#pragma once

#include <QByteArray>
#include <optional>
#include <string>

namespace quelmo::linux_platform {

// Runs `program` with the arguments "-axco" and "pid=,%cpu=,rss=,user=,comm=", reads its
// standard output to the end and only then waits for it, so output larger than a pipe never
// blocks it. Its standard error goes to a pipe of its own that is never read. Nothing when the
// program cannot be started; its exit status is not looked at.
std::optional<QByteArray> runProcessListingTool(const std::string& program);

} // namespace quelmo::linux_platform
