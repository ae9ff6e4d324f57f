#pragma once

// A private X server (Xvfb, on a display number it picks itself) with the openbox window manager,
// for tests that need a real desktop. Both are stopped when the object goes away.

#include "ChildProcess.h"

#include <memory>
#include <string>

namespace quelmo::test {

class XTestServer {
public:
    XTestServer();
    ~XTestServer();

    bool ok() const { return error_.empty(); }
    const std::string& error() const { return error_; }
    const std::string& display() const { return display_; } // ":N"
    // "DISPLAY=:N" plus a private home for the programs started on it.
    std::vector<std::string> environment() const;

    static bool toolsInstalled();

private:
    std::string error_ = "not started";
    std::string display_;
    std::string home_;
    std::unique_ptr<ChildProcess> xvfb_;
    std::unique_ptr<ChildProcess> windowManager_;
};

} // namespace quelmo::test
