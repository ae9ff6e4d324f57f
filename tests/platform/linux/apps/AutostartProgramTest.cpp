#include "platform/linux/apps/AutostartEntry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using quelmo::linux_platform::AutostartEntry;

namespace {

// An installed program and a build of it in a source tree, both real files.
class AutostartProgramTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(root.path()).mkpath("usr/bin"));
        ASSERT_TRUE(QDir(root.path()).mkpath("src/quelmo/build/dev/src/app"));
        // The merged /usr layout: /bin is a link to /usr/bin.
        ASSERT_TRUE(QFile::link(root.filePath("usr/bin"), root.filePath("bin")));
        makeProgram(installed);
        makeProgram(built);
    }

    static void makeProgram(const QString& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QTemporaryDir root;
    const QString installed = root.filePath("usr/bin/quelmo");
    const QString built = root.filePath("src/quelmo/build/dev/src/app/quelmo");
};

// The installed program starts itself by its installed path, a build in a source tree starts
// that build, and after an upgrade replaced the running file (the process can no longer name it)
// the installed program stands in when there is one.
TEST_F(AutostartProgramTest, WhichProgramTheLoginStarts) {
    EXPECT_EQ(AutostartEntry::autostartProgram(installed, installed), installed);
    EXPECT_EQ(AutostartEntry::autostartProgram(root.filePath("bin/quelmo"), installed), installed);
    EXPECT_EQ(AutostartEntry::autostartProgram(built, installed), built);
    EXPECT_EQ(AutostartEntry::autostartProgram(QString(), installed), installed);
    QFile::remove(installed); // nothing installed at all
    EXPECT_EQ(AutostartEntry::autostartProgram(built, installed), built);
    EXPECT_EQ(AutostartEntry::autostartProgram(QString(), installed), QString());
}

} // namespace
