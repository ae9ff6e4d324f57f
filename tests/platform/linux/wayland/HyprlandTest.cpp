// Hyprland on recorded replies and events: what the window list says, and the link against a
// stand-in compositor serving them on its two sockets the way Hyprland does (one request per
// connection, closed after the reply; events as lines on the second socket).

#include "platform/linux/wayland/HyprlandLink.h"
#include "platform/linux/wayland/HyprlandProtocol.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

QByteArray recorded(const char* name) {
    QFile file(QStringLiteral(QUELMO_FIXTURES_DIR "/hyprland/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template <typename Done> bool spinUntil(Done done) {
    for (int i = 0; i < 200 && !done(); ++i) {
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
    return done();
}

TEST(Hyprland, TheClientListTellsWhatIsShownAndWhatIsPutAway) {
    const auto windows = hyprland::windowsOf(recorded("clients.json"), recorded("monitors.json"));
    ASSERT_EQ(windows.size(), 4u);
    const auto& [terminal, browser, store, files] =
        std::tie(windows[0], windows[1], windows[2], windows[3]);
    EXPECT_TRUE(terminal.focused && terminal.onScreen);
    EXPECT_EQ(terminal.pid, std::optional<qint64>(2311));
    EXPECT_EQ(terminal.height, std::optional<double>(1380));
    EXPECT_FALSE(browser.onScreen || browser.minimised || browser.focused); // another workspace
    EXPECT_TRUE(store.minimised && store.xwayland && !store.onScreen);
    EXPECT_FALSE(files.onScreen); // behind the terminal in a group
    EXPECT_EQ(files.appId, QStringLiteral("org.gnome.Nautilus"));

    EXPECT_TRUE(hyprland::windowsOf("[{\"address\":\"0x1; rm\"}]", "[]").empty());
    EXPECT_TRUE(hyprland::windowsOf("{", "]").empty());
    const auto event = hyprland::parseEvent("activewindowv2>>5581a3d41c90");
    ASSERT_TRUE(event);
    EXPECT_EQ(hyprland::addressOfActiveWindowEvent(*event), QStringLiteral("0x5581a3d41c90"));
    EXPECT_FALSE(hyprland::parseEvent("no separator"));
    EXPECT_EQ(hyprland::closeRequest(terminal),
              QByteArray("dispatch closewindow address:0x5581a3c0e2b0"));
}

// Serves the recorded replies; the client list can change while it runs.
struct FakeHyprland {
    QTemporaryDir folder;
    QLocalServer requests;
    QLocalServer events;
    QList<QLocalSocket*> listeners;
    QByteArray clients = recorded("clients.json");
    QByteArrayList received;

    FakeHyprland() {
        requests.listen(folder.filePath(".socket.sock"));
        events.listen(folder.filePath(".socket2.sock"));
        QObject::connect(&events, &QLocalServer::newConnection, &events, [this] {
            while (QLocalSocket* s = events.nextPendingConnection())
                listeners << s;
        });
        QObject::connect(&requests, &QLocalServer::newConnection, &requests, [this] {
            while (QLocalSocket* s = requests.nextPendingConnection())
                QObject::connect(s, &QLocalSocket::readyRead, s, [this, s] { answer(s); });
        });
    }
    void answer(QLocalSocket* s) {
        const QByteArray request = s->readAll();
        received << request;
        s->write(request == "j/clients"    ? clients
                 : request == "j/monitors" ? recorded("monitors.json")
                                           : QByteArray("ok"));
        s->flush();
        s->disconnectFromServer();
    }
    void tell(const QByteArray& lines) {
        for (QLocalSocket* s : listeners) {
            s->write(lines);
            s->flush();
        }
    }
};

TEST(Hyprland, TheLinkFollowsActivationsAndClosesThroughTheCompositor) {
    FakeHyprland hyprland;
    auto link = HyprlandLink::connect(hyprland.folder.path());
    ASSERT_TRUE(link);
    EXPECT_EQ(link->windows().size(), 4u);
    QStringList focused;
    link->setFocusHandler([&](const CompositorWindow& w) { focused << w.handle; });

    // Activations of a known window, then of one opened a moment ago that the list gets later.
    QByteArray clients = hyprland.clients;
    clients.chop(clients.size() - clients.lastIndexOf(']'));
    hyprland.clients = clients + R"(,{"address":"0x5581a3f9b120","class":"foot","pid":2801,
        "workspace":{"id":2,"name":"2"},"size":[600,400],"focusHistoryID":0}])";
    hyprland.tell(recorded("events.txt"));
    ASSERT_TRUE(spinUntil([&] { return focused.size() >= 2; }));
    EXPECT_EQ(focused, (QStringList{"0x5581a3d41c90", "0x5581a3f9b120"}));
    ASSERT_TRUE(spinUntil([&] { return link->windows().size() == 5; }));

    ASSERT_TRUE(link->close(link->windows().front()));
    ASSERT_TRUE(spinUntil(
        [&] { return hyprland.received.contains("dispatch closewindow address:0x5581a3c0e2b0"); }));
}

TEST(Hyprland, NoCompositorNoLink) {
    QTemporaryDir empty;
    EXPECT_FALSE(HyprlandLink::connect(empty.path()));
    EXPECT_TRUE(hyprland::socketFolder(empty.path(), "../../etc").isEmpty());
}

} // namespace
} // namespace quelmo::linux_platform
