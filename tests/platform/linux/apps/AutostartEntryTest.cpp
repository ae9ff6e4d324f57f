// Launch at login through the autostart folder: the entry written, read back and removed, and
// the entries that start nothing reading as disabled.
#include "platform/linux/apps/AutostartEntry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::linux_platform;

namespace {

class AutostartEntryTest : public ::testing::Test {
protected:
    void write(const QByteArray& text) {
        QDir().mkpath(dir.filePath("autostart"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }

    QTemporaryDir dir;
    QString path = dir.filePath("autostart/quelmo.desktop");
    AutostartEntry entry{"/opt/My Apps/quelmo", path};
};

TEST_F(AutostartEntryTest, TheSwitchWritesTheEntryReadsItBackAndRemovesIt) {
    EXPECT_FALSE(entry.isEnabled());
    ASSERT_TRUE(LoginItem::set(entry, true)); // the folder is made on the way
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), AutostartEntry::entryText("/opt/My Apps/quelmo"));
    EXPECT_TRUE(entry.isEnabled());
    ASSERT_TRUE(LoginItem::set(entry, false));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(LoginItem::set(entry, false)); // already off
}

TEST_F(AutostartEntryTest, AnEntryThatStartsNothingReadsAsDisabled) {
    const std::pair<const char*, bool> entries[] = {
        {"[Desktop Entry]\nType=Application\nExec=quelmo\nHidden=true\n", false},
        {"[Desktop Entry]\nHidden = true\nExec=quelmo\n", false},
        {"[Desktop Entry]\nExec=quelmo\nHidden=false\n", true},
        {"[Desktop Entry]\nExec=quelmo\n[Desktop Action x]\nHidden=true\n", true},
        {"Exec=quelmo\n", false}, // no entry at all
    };
    for (const auto& [text, enabled] : entries) {
        write(text);
        EXPECT_EQ(entry.isEnabled(), enabled) << text;
    }
}

TEST_F(AutostartEntryTest, AFolderThatCannotBeMadeIsAFailure) {
    QFile blocker(dir.filePath("autostart"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly)); // a file where the folder should be
    EXPECT_TRUE(entry.apply(true).value_or("").contains("cannot create the folder"));
    EXPECT_FALSE(entry.isEnabled());
}

} // namespace
