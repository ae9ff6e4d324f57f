#include "settings/LoginItem.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

// Everything the validator printed (errors, warnings and hints alike), or why it failed.
std::string validate(const QString& path) {
    QProcess validator;
    validator.setProcessChannelMode(QProcess::MergedChannels);
    validator.start(QStringLiteral("desktop-file-validate"), {path});
    if (!validator.waitForFinished(60000))
        return "desktop-file-validate did not finish";
    const QString output = QString::fromUtf8(validator.readAll()).trimmed();
    if (validator.exitStatus() != QProcess::NormalExit || validator.exitCode() != 0)
        return QStringLiteral("exit %1: %2").arg(validator.exitCode()).arg(output).toStdString();
    return output.toStdString();
}

TEST(LoginItemValidateTest, TheAutostartEntryPassesDesktopFileValidate) {
    if (QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate")).isEmpty())
        GTEST_SKIP() << "desktop-file-validate is not installed (Debian: desktop-file-utils)";
    ASSERT_TRUE(LoginItem::set(true));
    EXPECT_EQ(validate(LoginItem::entryPath()), "");
    ASSERT_TRUE(LoginItem::set(false));

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("quelmo.desktop"));
    for (const char* program :
         {"/opt/My Apps/quelmo", "/opt/100%/a$b/\"q\"/x\\y/quelmo", "/home/유저/bin/quelmo"}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(LoginItem::entryText(QString::fromUtf8(program)));
        file.close();
        EXPECT_EQ(validate(path), "") << program;
    }
}

} // namespace
