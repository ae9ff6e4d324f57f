#include "platform/linux/common/UserNames.h"

#include "platform/linux/metrics/ProcfsProcessReader.h"
#include "platform/linux/system/LinuxSystemInfo.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace quelmo;
using namespace quelmo::linux_platform;

TEST(UserNamesTest, EachUidIsLookedUpOnceAndANamelessOneReadsAsItsNumber) {
    int lookups = 0;
    UserNames names([&](std::uint32_t uid) -> std::optional<QString> {
        ++lookups;
        if (uid == 1000)
            return QStringLiteral("zoë");
        return std::nullopt;
    });
    EXPECT_EQ(names.nameOf(1000), QStringLiteral("zoë"));
    EXPECT_EQ(names.nameOf(1000), QStringLiteral("zoë"));
    EXPECT_EQ(names.nameOf(4242), QStringLiteral("4242"));
    EXPECT_EQ(names.nameOf(4242), QStringLiteral("4242"));
    EXPECT_EQ(lookups, 2);
}

TEST(UserNamesTest, TheSessionUserOwnsTheSessionsOwnProcess) {
    // The candidate rules compare these two names: they must come out the same way.
    EXPECT_EQ(systemUserName(0), std::optional<QString>(QStringLiteral("root")));
    LinuxSystemInfo system(QStringLiteral("/"), [] { return 0.0; });
    ProcfsProcessReader reader(QStringLiteral("/"));
    const auto table = reader.readTable();
    ASSERT_TRUE(table);
    const auto own = std::find_if(table->processes.begin(), table->processes.end(),
                                  [](const ProcessRecord& r) { return r.pid == ::getpid(); });
    ASSERT_NE(own, table->processes.end());
    EXPECT_FALSE(system.userName().isEmpty());
    EXPECT_EQ(own->user, system.userName());
}
