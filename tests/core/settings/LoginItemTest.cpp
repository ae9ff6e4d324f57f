// The launch-at-login switch over the platform's record: the state is read back after every
// change, and every failure is one log line.
#include "core/settings/LoginItem.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

QStringList logged;

void record(QtMsgType, const QMessageLogContext&, const QString& message) {
    logged << message;
}

// A record that can refuse a change, or accept it and then read back something else.
struct FakeService : LoginItemService {
    bool enabled = false;
    std::optional<QString> refusal;
    bool ignoresChanges = false;
    std::optional<QString> apply(bool on) override {
        if (!refusal && !ignoresChanges)
            enabled = on;
        return refusal;
    }
    bool isEnabled() override { return enabled; }
};

TEST(LoginItemTest, AChangeCountsOnlyWhenTheRecordReadsItBack) {
    logged.clear();
    const QtMessageHandler previous = qInstallMessageHandler(record);
    FakeService service;
    EXPECT_TRUE(LoginItem::set(service, true));
    EXPECT_TRUE(logged.isEmpty());

    service.refusal = "cannot write /x: Permission denied";
    EXPECT_FALSE(LoginItem::set(service, false));
    service.refusal.reset();
    service.ignoresChanges = true;
    EXPECT_FALSE(LoginItem::set(service, false));
    qInstallMessageHandler(previous);
    EXPECT_EQ(logged, QStringList({"LoginItem error: cannot write /x: Permission denied",
                                   "LoginItem error: the login item does not read back as "
                                   "disabled"}));
}

} // namespace
