#include "DesktopBenchEnvironment.h"

#include <QString>
#include <chrono>

namespace quelmo::bench {
namespace {

// A mix of how applications name themselves: a declared id, a class matching an installed
// entry's file name, and a class nothing matches.
std::vector<std::string> clientArguments(int index) {
    switch (index % 3) {
    case 0:
        return {"--gtk-app-id", "org.example.Declared" + std::to_string(index)};
    case 1:
        return {"--class", "mousepad,Mousepad"};
    default:
        return {"--class", "unknown" + std::to_string(index) + ",Unknown"};
    }
}

} // namespace

DesktopBenchEnvironment& DesktopBenchEnvironment::instance() {
    static DesktopBenchEnvironment environment;
    return environment;
}

DesktopBenchEnvironment::DesktopBenchEnvironment() {
    std::vector<std::string> environment;
    display_ = qEnvironmentVariable("QUELMO_BENCH_DISPLAY").toStdString();
    if (display_.empty()) {
        if (!test::XTestServer::toolsInstalled()) {
            error_ = "Xvfb and openbox are needed (or set QUELMO_BENCH_DISPLAY)";
            return;
        }
        server_ = std::make_unique<test::XTestServer>();
        if (!server_->ok()) {
            error_ = server_->error();
            return;
        }
        display_ = server_->display();
        environment = server_->environment();
    } else {
        environment = {"DISPLAY=" + display_};
    }

    for (int i = 0; i < windowCount; ++i) {
        std::vector<std::string> argv{QUELMO_TEST_CLIENT};
        for (std::string& arg : clientArguments(i))
            argv.push_back(std::move(arg));
        auto client = std::make_unique<test::ChildProcess>(
            argv, test::ChildProcess::Options{environment, -1});
        const auto line = client->readLine(std::chrono::seconds(30));
        if (!line || line->rfind("ready", 0) != 0) {
            error_ = "a test window did not open";
            return;
        }
        pids_.push_back(client->pid());
        clients_.push_back(std::move(client));
    }
}

} // namespace quelmo::bench
