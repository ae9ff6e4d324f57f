#include "settings/LoginItem.h"

#include "TempSettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

QStringList warnings;

class LoginItemTest : public ::testing::Test {
protected:
    void SetUp() override {
        clearFolder();
        warnings.clear();
        previous_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&,
                                              const QString& message) { warnings << message; });
    }
    void TearDown() override {
        qInstallMessageHandler(previous_);
        clearFolder();
    }

    static QString folder() { return qEnvironmentVariable("XDG_CONFIG_HOME") + "/autostart"; }
    static void clearFolder() {
        QFile::remove(folder());
        QDir(folder()).removeRecursively();
    }
    static void writeEntry(const QByteArray& text) {
        QDir().mkpath(folder());
        QFile file(LoginItem::entryPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

private:
    QtMessageHandler previous_ = nullptr;
};

TEST_F(LoginItemTest, TheEntryStartsThisProgramAndItsStateIsReadBackFromTheFile) {
    EXPECT_EQ(LoginItem::entryPath(), folder() + "/quelmo.desktop");
    EXPECT_FALSE(LoginItem::isEnabled());
    ASSERT_TRUE(LoginItem::set(true));
    EXPECT_TRUE(LoginItem::isEnabled());
    QFile file(LoginItem::entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), LoginItem::entryText(QCoreApplication::applicationFilePath()));
    ASSERT_TRUE(LoginItem::set(false));
    EXPECT_FALSE(QFile::exists(LoginItem::entryPath()));
    EXPECT_TRUE(LoginItem::set(false));

    writeEntry("[Desktop Entry]\nName=Quelmo\nHidden = true\n");
    EXPECT_FALSE(LoginItem::isEnabled());
    writeEntry("[Desktop Entry]\nName=Quelmo\n[Desktop Action x]\nHidden=true\n");
    EXPECT_TRUE(LoginItem::isEnabled());
    EXPECT_TRUE(warnings.isEmpty());

    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", "relative/config"); // not absolute, so ignored
    EXPECT_EQ(LoginItem::entryPath(), QDir::homePath() + "/.config/autostart/quelmo.desktop");
    qputenv("XDG_CONFIG_HOME", saved);
}

TEST_F(LoginItemTest, AFailureIsLoggedOnceAndReportedAsFalse) {
    QFile blocker(folder()); // a plain file where the folder should be
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EXPECT_FALSE(LoginItem::set(true));
    QFile::remove(folder());
    ASSERT_TRUE(QDir().mkpath(LoginItem::entryPath() + "/inside")); // a folder is no entry
    EXPECT_FALSE(LoginItem::set(false));
    ASSERT_EQ(warnings.size(), 2);
    for (const QString& warning : warnings)
        EXPECT_TRUE(warning.startsWith("LoginItem error: ")) << warning.toStdString();
}

TEST_F(LoginItemTest, TheExecLineQuotesAndEscapesTheProgramPath) {
    const auto exec = [](const QString& program) {
        const QByteArray text = LoginItem::entryText(program);
        const qsizetype start = text.indexOf("\nExec=") + 6;
        return QString::fromUtf8(text.mid(start, text.indexOf('\n', start) - start));
    };
    EXPECT_EQ(exec("/usr/bin/quelmo"), "/usr/bin/quelmo");
    EXPECT_EQ(exec("/opt/My Apps/quelmo"), "\"/opt/My Apps/quelmo\"");
    EXPECT_EQ(exec("/opt/100%/quelmo"), "/opt/100%%/quelmo");
    // Quoting puts a backslash before `$`, `"` and `\`; the value then doubles every backslash.
    EXPECT_EQ(exec("/opt/a$b/\"q\"/x\\y"), R"("/opt/a\\$b/\\"q\\"/x\\\\y")");
}

} // namespace
