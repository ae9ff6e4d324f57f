#pragma once

#include <QByteArray>
#include <optional>
#include <string>

namespace quelmo::linux_platform {

// Runs `program` with the arguments "-axco" and "pid=,%cpu=,rss=,user=,comm=" and gives its
// standard output. Its standard input and error are the null device, so neither a tool waiting
// for input nor one writing pages of warnings can hold it up. Nothing when the program cannot
// be started or has not finished within ten seconds; its exit status is not looked at.
std::optional<QByteArray> runProcessListingTool(const std::string& program);

} // namespace quelmo::linux_platform
