#pragma once

// A desktop with a known number of application windows for the benchmarks, set up once on first
// use and kept until the program ends.

#include "support/x11/ChildProcess.h"
#include "support/x11/XTestServer.h"

#include <QtGlobal>
#include <memory>
#include <string>
#include <vector>

namespace quelmo::bench {

class DesktopBenchEnvironment {
public:
    static constexpr int windowCount = 20;

    // Nothing usable when the desktop could not be set up; error() says why.
    static DesktopBenchEnvironment& instance();

    bool ok() const { return error_.empty(); }
    const std::string& error() const { return error_; }
    const std::string& display() const { return display_; }
    const std::vector<qint64>& clientPids() const { return pids_; }

private:
    DesktopBenchEnvironment();

    std::string error_;
    std::string display_;
    std::unique_ptr<test::XTestServer> server_;
    std::vector<std::unique_ptr<test::ChildProcess>> clients_;
    std::vector<qint64> pids_;
};

} // namespace quelmo::bench
