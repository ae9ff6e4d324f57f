#include "platform/linux/apps/AutostartEntry.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// The validator must print nothing at all, not even a hint, for programs at awkward paths.
TEST(AutostartEntryValidateTest, TheAutostartEntryPassesDesktopFileValidate) {
    if (QStandardPaths::findExecutable("desktop-file-validate").isEmpty())
        GTEST_SKIP() << "desktop-file-validate is not installed (Debian: desktop-file-utils)";
    QTemporaryDir dir;
    const QString path = dir.filePath("quelmo.desktop");
    for (const char* program : {"/usr/bin/quelmo", "/opt/My Apps/quelmo",
                                "/opt/100%/a$b/\"q\"/x\\y/quelmo", "/home/유저/bin/quelmo"}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(quelmo::linux_platform::AutostartEntry::entryText(QString::fromUtf8(program)));
        file.close();
        QProcess validator;
        validator.setProcessChannelMode(QProcess::MergedChannels);
        validator.start("desktop-file-validate", {path});
        ASSERT_TRUE(validator.waitForFinished(60000)) << program;
        EXPECT_EQ(validator.exitCode(), 0) << program;
        EXPECT_EQ(validator.readAll().trimmed().toStdString(), "") << program;
    }
}

} // namespace
