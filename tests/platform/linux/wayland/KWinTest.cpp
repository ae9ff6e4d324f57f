// KWin through a script of ours, on a private bus with a stand-in for KWin's scripting service:
// the script is loaded and run, its reports (in the form the script sends them) become windows
// and activations, a close loads a one-off script naming the window, and the reporting script
// is unloaded when the link goes.

#include "platform/linux/wayland/KWinScript.h"
#include "platform/linux/wayland/KWinScriptLink.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

QByteArray recorded(const char* name) {
    QFile file(QStringLiteral(QUELMO_FIXTURES_DIR "/kwin/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template <typename Done> bool spinUntil(Done done) {
    for (int i = 0; i < 300 && !done(); ++i) {
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
    return done();
}

} // namespace

// KWin's scripting service: loaded scripts are kept; running the reporting one replays the
// recorded reports to the bus name the script names.
class FakeKWinScripting : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kwin.Scripting")
public:
    explicit FakeKWinScripting(QDBusConnection bus) : bus_(std::move(bus)) {}
    QStringList scripts;
    QStringList unloaded;

public slots:
    int loadScript(const QString& path, const QString& plugin) {
        QFile file(path);
        scripts << (file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString());
        plugins_ << plugin;
        return int(scripts.size());
    }
    bool unloadScript(const QString& plugin) {
        unloaded << plugin;
        return true;
    }

public:
    void run(int id) {
        const QString script = scripts.value(id - 1);
        const qsizetype start = script.indexOf(QLatin1String("service = \"")) + 11;
        if (start < 11)
            return; // a closing script: nothing to report
        const QString service = script.sliced(start, script.indexOf(u'"', start) - start);
        QTimer::singleShot(0, this, [this, service] {
            report(service, QStringLiteral("windows"), recorded("windows.json"));
        });
    }
    void report(const QString& service, const QString& method, const QByteArray& json) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(service, QStringLiteral("/org/quelmo/KWinWindows"),
                                           QString::fromLatin1(kwin::reportInterface), method);
        call << QString::fromUtf8(json);
        bus_.call(call, QDBus::NoBlock);
    }

private:
    QDBusConnection bus_;
    QStringList plugins_;
};

// A loaded script's object (Plasma 6's path).
class FakeKWinScript : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kwin.Script")
public:
    FakeKWinScript(FakeKWinScripting& scripting, int id) : scripting_(scripting), id_(id) {}
public slots:
    void run() { scripting_.run(id_); }

private:
    FakeKWinScripting& scripting_;
    int id_;
};

namespace {

// A private session bus for the test, ended with it.
struct PrivateBus {
    QProcess daemon;
    QString address;
    PrivateBus() {
        daemon.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--session"), QStringLiteral("--nofork"),
                      QStringLiteral("--print-address=1")});
        if (daemon.waitForReadyRead(5000))
            address = QString::fromUtf8(daemon.readLine()).trimmed();
    }
    ~PrivateBus() {
        daemon.terminate();
        daemon.waitForFinished(2000);
    }
};

TEST(KWinScript, ReportsBecomeWindows) {
    const auto windows = kwin::windowsOfReport(recorded("windows.json"));
    ASSERT_EQ(windows.size(), 4u);
    EXPECT_TRUE(windows[0].focused && windows[0].onScreen);
    EXPECT_EQ(windows[0].appId, QStringLiteral("org.kde.konsole"));
    EXPECT_TRUE(windows[1].minimised && !windows[1].onScreen);
    EXPECT_TRUE(!windows[2].ordinary && windows[2].skipTaskbar); // the panel
    EXPECT_TRUE(windows[3].xwayland); // only a class: matched against entries, never taken as id
    EXPECT_TRUE(kwin::windowsOfReport("not json").empty());

    EXPECT_TRUE(
        kwin::closingScript("{8a2e55c0-1d4f-4b7a-8c3e-5f6a7b8c9d02}").contains("closeWindow"));
    EXPECT_TRUE(kwin::closingScript("\"); workspace.slotKillWindow(); (\"").isEmpty());
    const QByteArray script = kwin::reportingScript(":1.42", "/org/quelmo/KWinWindows");
    EXPECT_TRUE(script.contains("\":1.42\"") && script.contains("org.quelmo.KWinWindows"));
}

TEST(KWinScript, TheLinkLoadsTheScriptAndFollowsItsReports) {
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
        GTEST_SKIP() << "dbus-daemon is not installed";
    PrivateBus bus;
    ASSERT_FALSE(bus.address.isEmpty());
    QDBusConnection kwinBus = QDBusConnection::connectToBus(bus.address, QStringLiteral("kwin"));
    FakeKWinScripting scripting(kwinBus);
    std::vector<std::unique_ptr<FakeKWinScript>> loaded;
    for (int id = 1; id <= 3; ++id) {
        loaded.push_back(std::make_unique<FakeKWinScript>(scripting, id));
        kwinBus.registerObject(QStringLiteral("/Scripting/Script%1").arg(id), loaded.back().get(),
                               QDBusConnection::ExportAllSlots);
    }
    kwinBus.registerObject(QStringLiteral("/Scripting"), &scripting,
                           QDBusConnection::ExportAllSlots);
    ASSERT_TRUE(kwinBus.registerService(QStringLiteral("org.kde.KWin")));

    {
        auto link = KWinScriptLink::connect(
            QDBusConnection::connectToBus(bus.address, QStringLiteral("quelmo")));
        ASSERT_TRUE(link);
        ASSERT_EQ(link->windows().size(), 4u);
        QStringList activated;
        link->setFocusHandler([&](const CompositorWindow& w) { activated << w.handle; });
        scripting.report(QDBusConnection(QStringLiteral("quelmo")).baseService(),
                         QStringLiteral("activated"), recorded("activated.json"));
        ASSERT_TRUE(spinUntil([&] { return !activated.isEmpty(); }));
        EXPECT_EQ(activated.front(), QStringLiteral("{8a2e55c0-1d4f-4b7a-8c3e-5f6a7b8c9d02}"));
        EXPECT_TRUE(link->windows()[1].focused);

        ASSERT_TRUE(link->close(link->windows()[0]));
        ASSERT_TRUE(spinUntil([&] { return scripting.scripts.size() == 2; }));
        EXPECT_TRUE(scripting.scripts[1].contains(
            QLatin1String("\"{4f1c2a9e-7b3d-4c1e-9a51-0d2b6e8f1a11}\") w.closeWindow()")));
        ASSERT_TRUE(spinUntil([&] { return scripting.unloaded.size() == 1; })); // the one-off
    }
    ASSERT_TRUE(spinUntil([&] { return scripting.unloaded.size() == 2; })); // and the reporter
    EXPECT_TRUE(scripting.unloaded.back().startsWith(QLatin1String("quelmo-windows-")));
}

TEST(KWinScript, NoKWinNoLink) {
    PrivateBus bus;
    if (bus.address.isEmpty())
        GTEST_SKIP() << "dbus-daemon is not installed";
    EXPECT_FALSE(KWinScriptLink::connect(
        QDBusConnection::connectToBus(bus.address, QStringLiteral("alone"))));
}

} // namespace
} // namespace quelmo::linux_platform

#include "KWinTest.moc"
