// The status item and the single instance as any program on the session bus can reach them:
// calls with wrong types, extreme numbers and unknown ids, and floods of calls.
#include "app/PrivateBus.h"
#include "app/popover/PopoverPlacement.h"
#include "app/shell/QuitSignals.h"
#include "app/shell/SingleInstance.h"
#include "app/tray/ScissorsIcon.h"
#include "app/tray/StatusNotifierItem.h"
#include "app/tray/TrayStatusItem.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusContext>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace quelmo;
using quelmo::test::PrivateBus;

namespace {

const QString sniInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString menuPath = QString::fromLatin1(DBusMenuExporter::objectPath);
const QString itemPath = QString::fromLatin1(StatusNotifierItem::objectPath);

// The item with its one-entry menu on a private bus, and a caller on another connection.
struct PublishedItem {
    PrivateBus bus;
    std::unique_ptr<StatusNotifierItem> item;
    QDBusConnection caller{QString()};
    QList<QPoint> activations, menuRequests;
    QList<int> triggered;

    PublishedItem() {
        if (!bus.ready())
            return;
        item = std::make_unique<StatusNotifierItem>(bus.connect(QStringLiteral("item")));
        item->menu().setEntries(
            {{QStringLiteral("Quit Nuvex"), QKeySequence(Qt::CTRL | Qt::Key_Q)}});
        if (!item->publish())
            item.reset();
        caller = bus.connect(QStringLiteral("caller"));
        if (!item)
            return;
        QObject::connect(item.get(), &StatusNotifierItem::activated,
                         [this](QPoint at) { activations << at; });
        QObject::connect(item.get(), &StatusNotifierItem::contextMenuRequested,
                         [this](QPoint at) { menuRequests << at; });
        QObject::connect(&item->menu(), &DBusMenuExporter::triggered,
                         [this](int index) { triggered << index; });
    }

    QDBusMessage message(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& args = {}) const {
        QDBusMessage call =
            QDBusMessage::createMethodCall(item->serviceName(), path, interface, method);
        call.setArguments(args);
        return call;
    }
    // The item lives on this thread, so the call waits in an event loop of its own.
    QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& args = {}) {
        return caller.call(message(path, interface, method, args), QDBus::BlockWithGui, 5000);
    }
    QDBusMessage callMenu(const QString& method, const QVariantList& args = {}) {
        return call(menuPath, menuInterface, method, args);
    }
    QDBusMessage callItem(const QString& method, const QVariantList& args = {}) {
        return call(itemPath, sniInterface, method, args);
    }
};

void spin(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

DBusMenuLayoutItem layoutOf(const QDBusMessage& reply) {
    DBusMenuLayoutItem layout;
    if (reply.arguments().size() == 2)
        reply.arguments().at(1).value<QDBusArgument>() >> layout;
    return layout;
}

TEST(TrayBusTest, HostileCallsGetAnAnswerAndNumbersStayInRange) {
    PublishedItem p;
    ASSERT_TRUE(p.item);

    // Any depth below zero asks for every level, INT_MIN included.
    for (const int depth : {-1, INT_MIN, INT_MAX}) {
        const DBusMenuLayoutItem layout =
            layoutOf(p.callMenu(QStringLiteral("GetLayout"), {0, depth, QStringList()}));
        ASSERT_EQ(layout.children.size(), 1) << depth;
        EXPECT_EQ(layout.children[0].properties.value(QStringLiteral("label")), "Quit Nuvex");
    }
    EXPECT_EQ(p.callMenu(QStringLiteral("GetLayout"), {INT_MIN, -1, QStringList()}).type(),
              QDBusMessage::ErrorMessage);

    // A property that is not there is an error, not a reply the caller waits for in vain.
    const QDBusMessage label =
        p.callMenu(QStringLiteral("GetProperty"), {1, QStringLiteral("label")});
    ASSERT_EQ(label.type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(label.arguments().value(0).value<QDBusVariant>().variant(), "Quit Nuvex");
    for (const auto& [id, name] : {std::pair{99, "label"}, {INT_MIN, "label"}, {1, "no-such"}}) {
        const QDBusMessage reply =
            p.callMenu(QStringLiteral("GetProperty"), {id, QString::fromLatin1(name)});
        EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage) << id << name;
        EXPECT_EQ(reply.errorName(), "org.freedesktop.DBus.Error.InvalidArgs") << id << name;
    }

    // The item's properties come from what was built when they last changed.
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    p.item->setTitle(QStringLiteral("23% 62%"));
    const QDBusMessage all = p.call(itemPath, properties, QStringLiteral("GetAll"), {sniInterface});
    const QVariantMap map = qdbus_cast<QVariantMap>(all.arguments().value(0));
    EXPECT_EQ(map.value(QStringLiteral("XAyatanaLabel")), "23% 62%");
    EXPECT_EQ(map.value(QStringLiteral("XAyatanaLabelGuide")), "100% 100%");
    EXPECT_EQ(map.value(QStringLiteral("ItemIsMenu")), false);
    EXPECT_EQ(qdbus_cast<QDBusObjectPath>(map.value(QStringLiteral("Menu"))).path(), menuPath);
    EXPECT_EQ(
        p.call(itemPath, properties, QStringLiteral("Get"), {sniInterface, QStringLiteral("Nope")})
            .errorName(),
        "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(p.call(itemPath, properties, QStringLiteral("Set"),
                     {sniInterface, QStringLiteral("Id"), QVariant::fromValue(QDBusVariant(1))})
                  .type(),
              QDBusMessage::ErrorMessage);

    const QString described =
        p.call(itemPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
               QStringLiteral("Introspect"))
            .arguments()
            .value(0)
            .toString();
    EXPECT_TRUE(described.contains(QLatin1String("<method name=\"Activate\">")) &&
                described.endsWith(QLatin1String("</node>\n")));

    // Wrong argument types are refused by the bus layer; the item goes on answering.
    EXPECT_EQ(p.callItem(QStringLiteral("Activate"), {QStringLiteral("x"), 1.5}).type(),
              QDBusMessage::ErrorMessage);
    EXPECT_EQ(p.callMenu(QStringLiteral("Event"), {QStringLiteral("1"), 2, 3}).type(),
              QDBusMessage::ErrorMessage);

    // Extreme points arrive clamped to what a screen can hold; placement keeps its sums sane.
    EXPECT_EQ(p.callItem(QStringLiteral("Activate"), {INT_MAX, INT_MAX}).type(),
              QDBusMessage::ReplyMessage);
    ASSERT_EQ(p.activations.size(), 1);
    EXPECT_EQ(p.activations[0], QPoint(32767, 32767));
    const QRect screen(0, 0, 1280, 800);
    for (const QPoint anchor : {QPoint(INT_MAX, INT_MAX), QPoint(INT_MIN, INT_MAX),
                                QPoint(INT_MIN, INT_MIN), QPoint(INT_MAX, INT_MIN)})
        EXPECT_TRUE(screen.contains(popoverGeometry(anchor, QSize(320, 420), screen)));

    // Unknown ids in groups are reported back; clicks on the entry act once per burst.
    DBusMenuEventList events;
    for (const int id : {1, 1, 7, INT_MIN, 1})
        events.append({id, QStringLiteral("clicked"), QDBusVariant(0), 0});
    const QDBusMessage unknown =
        p.callMenu(QStringLiteral("EventGroup"), {QVariant::fromValue(events)});
    ASSERT_EQ(unknown.type(), QDBusMessage::ReplyMessage) << unknown.errorMessage().toStdString();
    EXPECT_EQ(qdbus_cast<QList<int>>(unknown.arguments().value(0)), QList<int>({7, INT_MIN}));
    spin(50);
    EXPECT_EQ(p.triggered, QList<int>({0}));
}

// Sends one call over a connection of its own, at a steady rate for a while, without waiting
// for the answers: a buggy host or any program on the session bus.
class Flood : public QThread {
public:
    Flood(QString address, QDBusMessage message, int perSecond, int milliseconds)
        : address_(std::move(address)), message_(std::move(message)), perSecond_(perSecond),
          milliseconds_(milliseconds) {}
    qint64 sent() const { return sent_; }

protected:
    void run() override {
        const QString name = QStringLiteral("flood-%1").arg(quintptr(this));
        {
            QDBusConnection connection = QDBusConnection::connectToBus(address_, name);
            QElapsedTimer clock;
            clock.start();
            qint64 sent = 0;
            while (clock.elapsed() < milliseconds_) {
                for (const qint64 due = clock.elapsed() * perSecond_ / 1000; sent < due; ++sent)
                    connection.send(message_);
                QThread::usleep(500);
            }
            sent_ = sent;
        }
        QDBusConnection::disconnectFromBus(name);
    }

private:
    QString address_;
    QDBusMessage message_;
    int perSecond_;
    int milliseconds_;
    std::atomic<qint64> sent_ = 0;
};

qint64 residentBytes() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

// How the main thread fared while `flood` ran: the longest it went without running a timer, how
// long a SIGTERM raised in the middle took to reach the event loop, and how much it grew.
struct FloodOutcome {
    qint64 longestStallMs = 0;
    qint64 quitSignalMs = -1;
    qint64 grownBytes = 0;
};

FloodOutcome endure(Flood& flood) {
    FloodOutcome outcome;
    QuitSignals quitSignals;
    QElapsedTimer sinceSignal;
    QObject::connect(&quitSignals, &QuitSignals::received, [&](int signalNumber) {
        if (signalNumber == SIGTERM && outcome.quitSignalMs < 0)
            outcome.quitSignalMs = sinceSignal.elapsed();
    });
    const qint64 before = residentBytes();
    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = 0;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, [&] {
        outcome.longestStallMs = std::max(outcome.longestStallMs, clock.elapsed() - lastTick);
        lastTick = clock.elapsed();
    });
    ticks.start(10);
    QTimer::singleShot(1000, [&] {
        sinceSignal.start();
        ::raise(SIGTERM);
    });
    flood.start();
    while (!flood.isFinished() || clock.elapsed() < 1500)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    spin(300); // what is still on its way
    outcome.grownBytes = residentBytes() - before;
    return outcome;
}

// AddressSanitizer makes both ends several times slower, the answering one more so, and keeps
// freed memory aside for a while, so resident size says nothing there.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool addressSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool addressSanitizer = true;
#else
constexpr bool addressSanitizer = false;
#endif
#else
constexpr bool addressSanitizer = false;
#endif

constexpr int floodRate = addressSanitizer ? 2000 : 10000; // calls a second
constexpr int floodMs = 2500;

void expectEndured(const FloodOutcome& outcome, const Flood& flood) {
    std::printf("  %lld calls: longest stall %lld ms, SIGTERM seen after %lld ms, grew %lld KiB\n",
                static_cast<long long>(flood.sent()),
                static_cast<long long>(outcome.longestStallMs),
                static_cast<long long>(outcome.quitSignalMs),
                static_cast<long long>(outcome.grownBytes >> 10));
    EXPECT_GT(flood.sent(), floodRate * floodMs / 2000);
    EXPECT_LT(outcome.longestStallMs, 500);
    EXPECT_GE(outcome.quitSignalMs, 0);
    EXPECT_LT(outcome.quitSignalMs, 1000);
    if (!addressSanitizer) {
        EXPECT_LT(outcome.grownBytes, 64ll << 20);
    }
}

// Clicks of either kind toggle once per burst; reads are answered without falling behind.
TEST(TrayBusTest, FloodsOfClicksAndReadsLeaveTheProgramResponsive) {
    PublishedItem p;
    ASSERT_TRUE(p.item);
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    const QDBusMessage floods[] = {
        p.message(itemPath, sniInterface, QStringLiteral("Activate"), {10, 20}),
        p.message(itemPath, sniInterface, QStringLiteral("ContextMenu"), {10, 20}),
        p.message(itemPath, properties, QStringLiteral("GetAll"), {sniInterface}),
        p.message(menuPath, menuInterface, QStringLiteral("GetLayout"), {0, -1, QStringList()}),
        p.message(itemPath, QStringLiteral("org.freedesktop.DBus.Introspectable"),
                  QStringLiteral("Introspect")),
    };
    for (const QDBusMessage& call : floods) {
        SCOPED_TRACE(call.member().toStdString());
        p.activations.clear();
        p.menuRequests.clear();
        Flood flood(p.bus.address(), call, floodRate, floodMs);
        expectEndured(endure(flood), flood);
        const bool click = call.interface() == sniInterface;
        EXPECT_EQ(p.activations.size() + p.menuRequests.size(), click ? 1 : 0);
    }
}

TEST(TrayBusTest, AFloodOfLaunchesHandingOverOpensThePopoverOnce) {
    PrivateBus bus;
    ASSERT_TRUE(bus.ready());
    SingleInstance instance(bus.connect(QStringLiteral("first")));
    ASSERT_FALSE(instance.handOver());
    int opened = 0;
    QObject::connect(&instance, &SingleInstance::activationRequested, [&] { ++opened; });
    const QString name = QString::fromLatin1(SingleInstance::serviceName);
    Flood flood(bus.address(),
                QDBusMessage::createMethodCall(name,
                                               QString::fromLatin1(SingleInstance::objectPath),
                                               name, QStringLiteral("Activate")),
                floodRate, floodMs);
    expectEndured(endure(flood), flood);
    EXPECT_EQ(opened, 1);
}

// A desktop's watcher that drops the first items registered with it a moment later, as GNOME
// Shell's now and then does.
class DroppingWatcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)

public:
    // `joiner` goes between an item's bus name and its path in the list ('@' in GNOME Shell).
    explicit DroppingWatcher(int drops, QChar joiner = QLatin1Char('/'))
        : drops_(drops), joiner_(joiner) {}
    QStringList items() const { return items_; }
    bool hostRegistered() const { return true; }
    int registrations = 0;

public slots:
    void RegisterStatusNotifierItem(const QString& service) {
        ++registrations;
        const QString entry = message().service() + joiner_ + QStringLiteral("/StatusNotifierItem");
        if (registrations > drops_) {
            items_ = {service.startsWith(QLatin1Char('/')) ? entry : service};
            return;
        }
        QTimer::singleShot(10, this, [this, entry] { emit StatusNotifierItemUnregistered(entry); });
    }

signals:
    void StatusNotifierItemUnregistered(const QString& entry);

private:
    int drops_;
    QChar joiner_;
    QStringList items_;
};

// A private bus whose desktop connection publishes `watcher`.
struct Desktop {
    PrivateBus bus;
    QDBusConnection connection{QString()};
    bool ready = false;
    explicit Desktop(DroppingWatcher& watcher) {
        if (!bus.ready())
            return;
        connection = bus.connect(QStringLiteral("desktop"));
        ready = connection.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                                          QDBusConnection::ExportAllContents) &&
                connection.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }
};

TEST(TrayBusTest, AnItemTheHostDropsRegistersAgainAFewTimesThenStops) {
    for (const auto& [drops, expected] : {std::pair{1, 2}, {100, 6}}) {
        SCOPED_TRACE(drops);
        DroppingWatcher watcher(drops);
        Desktop desktop(watcher);
        ASSERT_TRUE(desktop.ready);
        QTemporaryDir icons;
        TrayStatusItem item(desktop.bus.connect(QStringLiteral("app")), icons.path());
        spin(2500);
        EXPECT_EQ(watcher.registrations, expected);
        if (drops == 1) {
            EXPECT_EQ(watcher.items().size(), 1);
        }
    }
}

// How the item behaves depends on who hosts it. GNOME Shell's extension is the watcher, inside
// the shell: it finds the icon only by the name it is given, asks AboutToShow when the item
// arrives and sends "opened" when a click opens the menu. Ayatana's indicator service owns the
// watcher and its own name on two connections of one process; its applet opens the item's menu
// on a left click (asking AboutToShowGroup of the root first) and tells of a middle click with
// XAyatanaSecondaryActivate. Other hosts ask AboutToShow before a right-click menu, which is no
// left click, and draw no label.
TEST(TrayBusTest, EachKindOfHostGetsTheLabelTheIconAndTheClicksItCanUse) {
    enum class Host { GnomeShell, Ayatana, Other };
    for (const Host kind : {Host::GnomeShell, Host::Ayatana, Host::Other}) {
        SCOPED_TRACE(int(kind));
        DroppingWatcher watcher(0, QLatin1Char(kind == Host::GnomeShell ? '@' : '/'));
        Desktop desktop(watcher);
        ASSERT_TRUE(desktop.ready);
        PrivateBus& bus = desktop.bus;
        if (kind == Host::GnomeShell) {
            ASSERT_TRUE(desktop.connection.registerService(QStringLiteral("org.gnome.Shell")));
        } else if (kind == Host::Ayatana) {
            ASSERT_TRUE(bus.connect(QStringLiteral("indicator"))
                            .registerService(QStringLiteral("org.ayatana.indicator.application")));
        }
        const bool labels = kind != Host::Other;
        QTemporaryDir icons;
        TrayStatusItem item(bus.connect(QStringLiteral("app")), icons.path());
        QList<StatusClick> clicks;
        QObject::connect(&item, &StatusItem::clicked,
                         [&](const StatusClick& click) { clicks << click; });
        item.setTitle(QStringLiteral("23% 62%"));
        spin(300);
        ASSERT_EQ(watcher.items().size(), 1);
        const QString service = watcher.items()[0].section(QRegularExpression("[/@]"), 0, 0);
        QDBusConnection host = bus.connect(QStringLiteral("host"));
        auto call = [&](const QString& path, const QString& interface, const QString& method,
                        const QVariantList& args) {
            QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
            message.setArguments(args);
            const QDBusMessage reply = host.call(message, QDBus::BlockWithGui, 5000);
            spin(250); // past the burst of the call before
            return reply;
        };
        const QVariantMap properties = qdbus_cast<QVariantMap>(
            call(itemPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                 QStringLiteral("GetAll"), {sniInterface})
                .arguments()
                .value(0));
        EXPECT_EQ(properties.value(QStringLiteral("XAyatanaLabel")).toString(),
                  labels ? QStringLiteral("23% 62%") : QString());
        const QString iconFolder = properties.value(QStringLiteral("IconThemePath")).toString();
        const QString name = properties.value(QStringLiteral("IconName")).toString();
        EXPECT_EQ(name.endsWith(QLatin1String("-symbolic")), kind == Host::GnomeShell);
        EXPECT_TRUE(QFile::exists(iconFolder + '/' + name + ".svg"));
        EXPECT_EQ(QFile::exists(iconFolder + '/' + scissors::iconName + "-symbolic.svg"),
                  kind == Host::GnomeShell);

        call(menuPath, menuInterface, QStringLiteral("AboutToShowGroup"),
             {QVariant::fromValue(QList<int>{0})});
        EXPECT_EQ(clicks.size(), kind == Host::Ayatana ? 1 : 0);
        call(menuPath, menuInterface, QStringLiteral("Event"),
             {0, QStringLiteral("opened"), QVariant::fromValue(QDBusVariant(0)), 0u});
        ASSERT_EQ(clicks.size(), labels ? 1 : 0);
        if (labels) {
            // Told after the press, which may have closed the popover already.
            EXPECT_TRUE(clicks[0].late);
            EXPECT_EQ(clicks[0].button, StatusClick::Button::Left);
        }
        clicks.clear();
        EXPECT_EQ(call(itemPath, sniInterface, QStringLiteral("XAyatanaSecondaryActivate"),
                       {QVariant::fromValue(uint(1234))})
                      .type(),
                  QDBusMessage::ReplyMessage);
        ASSERT_EQ(clicks.size(), 1);
        EXPECT_FALSE(clicks[0].late);
        // Past the check that the host still lists the item: it found itself and stayed.
        spin(600);
        EXPECT_EQ(watcher.registrations, 1);
    }
}

} // namespace

#include "TrayBusTest.moc"
