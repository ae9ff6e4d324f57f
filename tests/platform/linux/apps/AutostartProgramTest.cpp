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

TEST_F(AutostartProgramTest, TheInstalledProgramStartsItselfByItsInstalledPath) {
    EXPECT_EQ(AutostartEntry::autostartProgram(installed, installed), installed);
    EXPECT_EQ(AutostartEntry::autostartProgram(root.filePath("bin/quelmo"), installed), installed);
}

TEST_F(AutostartProgramTest, ABuildInASourceTreeStartsThatBuild) {
    EXPECT_EQ(AutostartEntry::autostartProgram(built, installed), built);
    QFile::remove(installed); // nothing installed at all
    EXPECT_EQ(AutostartEntry::autostartProgram(built, installed), built);
}

// An upgrade replaces the running program's file; the process can then no longer name it.
TEST_F(AutostartProgramTest, AnUnknownRunningPathFallsBackToTheInstalledProgramWhenThereIsOne) {
    EXPECT_EQ(AutostartEntry::autostartProgram(QString(), installed), installed);
    QFile::remove(installed);
    EXPECT_EQ(AutostartEntry::autostartProgram(QString(), installed), QString());
}

} // namespace
