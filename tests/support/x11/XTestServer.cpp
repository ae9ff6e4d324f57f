#include "XTestServer.h"

#include <cstdlib>
#include <filesystem>

namespace quelmo::test {

using namespace std::chrono_literals;

bool XTestServer::toolsInstalled() {
    return std::system("{ command -v Xvfb && command -v openbox; } >/dev/null") == 0;
}

XTestServer::XTestServer() {
    char pattern[] = "/tmp/quelmo-xtest-XXXXXX";
    if (!mkdtemp(pattern))
        return;
    home_ = pattern;
    // Xvfb writes the display number it chose once it accepts connections.
    xvfb_ = std::make_unique<ChildProcess>(std::vector<std::string>{
        "Xvfb", "-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"});
    const auto number = xvfb_->readLine(30s);
    if (!number) {
        error_ = "Xvfb did not start";
        return;
    }
    display_ = ":" + *number;
    // openbox runs its startup command once it manages the screen: from then on every window
    // mapped is taken in.
    windowManager_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{"openbox", "--sm-disable", "--startup", "echo managing"},
        ChildProcess::Options{environment(), -1});
    std::optional<std::string> line;
    while ((line = windowManager_->readLine(30s)) && *line != "managing") {
    }
    error_ = line ? "" : "openbox did not start";
}

XTestServer::~XTestServer() {
    windowManager_.reset();
    xvfb_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(home_, ignored); // nothing when it was never made
}

std::vector<std::string> XTestServer::environment() const {
    std::vector<std::string> added{"DISPLAY=" + display_, "HOME=" + home_,
                                   "XDG_RUNTIME_DIR=" + home_, "NO_AT_BRIDGE=1",
                                   "GSETTINGS_BACKEND=memory"};
    for (const char* kind : {"CONFIG", "CACHE", "DATA"})
        added.push_back(std::string("XDG_") + kind + "_HOME=" + home_ + "/" + kind);
    return added;
}

} // namespace quelmo::test
