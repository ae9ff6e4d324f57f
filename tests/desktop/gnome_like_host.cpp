// A stand-in for GNOME Shell with its AppIndicator extension, which cannot run headless here: the
// StatusNotifierWatcher and a host in one process that also owns the shell's bus name, drawing
// each item as a small window that takes clicks the way the extension does:
// - left click: when the item's menu has entries, the menu opens once the double-click time has
//   passed without a second click; without entries nothing happens; a double click calls
//   Activate (and no menu opens);
// - middle click: SecondaryActivate; right click: the menu opens (or closes) at once.
// Opening the menu sends the item Event(0, "opened") and AboutToShow(0), as the extension does;
// like it, the stand-in also asks AboutToShow(0) when the item arrives, and lists items as
// "service@path". With --drop-first N it drops each of the first N items a second after it
// came, as the shell does when it fails to set up its proxy for an item.
#include <QApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <cstdio>

namespace {

constexpr int doubleClickMs = 400; // Clutter's default
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");

QVariant itemProperty(const QString& service, const QString& path, const QString& name) {
    QDBusMessage get = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QStringLiteral("org.kde.StatusNotifierItem") << name;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(get, QDBus::Block, 5000);
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

// The labels of the visible entries at the top of a dbusmenu layout.
QStringList menuEntries(const QString& service, const QString& menuPath) {
    QDBusMessage get = QDBusMessage::createMethodCall(
        service, menuPath, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("GetLayout"));
    get << 0 << -1 << QStringList();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(get, QDBus::Block, 5000);
    QStringList labels;
    if (reply.arguments().size() != 2)
        return labels;
    const QDBusArgument layout = reply.arguments().at(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    layout.beginStructure();
    layout >> id >> properties;
    layout.beginArray();
    while (!layout.atEnd()) {
        QDBusVariant child;
        layout >> child;
        const QDBusArgument item = child.variant().value<QDBusArgument>();
        QVariantMap itemProperties;
        item.beginStructure();
        item >> id >> itemProperties;
        item.beginArray();
        while (!item.atEnd()) {
            QDBusVariant ignored;
            item >> ignored;
        }
        item.endArray();
        item.endStructure();
        if (itemProperties.value(QStringLiteral("visible"), true).toBool())
            labels << itemProperties.value(QStringLiteral("label")).toString();
    }
    layout.endArray();
    layout.endStructure();
    return labels;
}

// One item in the panel.
class ItemIcon : public QWidget {
public:
    ItemIcon(QString service, QString path, int slot)
        : service_(std::move(service)), path_(std::move(path)) {
        setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool);
        setWindowTitle(QStringLiteral("gnome-like-host item"));
        setFixedSize(28, 28);
        move(1280 - 28 * (slot + 1) - 40, 0);
        menuPath_ =
            itemProperty(service_, path_, QStringLiteral("Menu")).value<QDBusObjectPath>().path();
        waitForDoubleClick_.setSingleShot(true);
        waitForDoubleClick_.setInterval(doubleClickMs);
        connect(&waitForDoubleClick_, &QTimer::timeout, this, &ItemIcon::toggleMenu);
        aboutToShowRoot();
        show();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect().adjusted(4, 4, -4, -4), QColor(0x30, 0x30, 0x30));
    }

    void mousePressEvent(QMouseEvent* event) override {
        waitForDoubleClick_.stop();
        const QPoint at = event->globalPosition().toPoint();
        if (event->button() == Qt::MiddleButton) {
            call(QStringLiteral("SecondaryActivate"), at);
            return;
        }
        if (event->button() == Qt::RightButton) {
            toggleMenu();
            return;
        }
        if (event->button() != Qt::LeftButton)
            return;
        const qint64 now = clock_.isValid() ? clock_.elapsed() : -1;
        const bool second = lastClick_ >= 0 && now - lastClick_ <= doubleClickMs;
        clicks_ = second ? clicks_ % 2 + 1 : 1;
        if (!clock_.isValid())
            clock_.start();
        lastClick_ = clock_.elapsed();
        if (clicks_ == 2) {
            call(QStringLiteral("Activate"), at);
            return;
        }
        if (!menuEntries(service_, menuPath_).isEmpty())
            waitForDoubleClick_.start();
    }

private:
    void call(const QString& method, QPoint at) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service_, path_, QStringLiteral("org.kde.StatusNotifierItem"), method);
        message << at.x() << at.y();
        QDBusConnection::sessionBus().asyncCall(message);
        std::printf("%s %d %d\n", qPrintable(method), at.x(), at.y());
        std::fflush(stdout);
    }

    void menuEvent(int id, const QString& event) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service_, menuPath_, QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("Event"));
        message << id << event << QVariant::fromValue(QDBusVariant(0)) << 0u;
        QDBusConnection::sessionBus().asyncCall(message);
    }

    void aboutToShowRoot() {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service_, menuPath_, QStringLiteral("com.canonical.dbusmenu"),
            QStringLiteral("AboutToShow"));
        message << 0;
        QDBusConnection::sessionBus().asyncCall(message);
    }

    void toggleMenu() {
        if (menu_ && menu_->isVisible()) {
            menu_->close();
            return;
        }
        const QStringList entries = menuEntries(service_, menuPath_);
        if (entries.isEmpty())
            return; // an empty menu does not open
        delete menu_;
        menu_ = new QMenu;
        for (int i = 0; i < entries.size(); ++i)
            menu_->addAction(entries[i], this,
                             [this, i] { menuEvent(i + 1, QStringLiteral("clicked")); });
        connect(menu_, &QMenu::aboutToHide, this,
                [this] { menuEvent(0, QStringLiteral("closed")); });
        menuEvent(0, QStringLiteral("opened"));
        aboutToShowRoot();
        menu_->popup(mapToGlobal(QPoint(0, height())));
        std::printf("menu %s\n", qPrintable(entries.join(QLatin1Char('|'))));
        std::fflush(stdout);
    }

    QString service_, path_, menuPath_;
    QTimer waitForDoubleClick_;
    QElapsedTimer clock_;
    qint64 lastClick_ = -1;
    int clicks_ = 0;
    QMenu* menu_ = nullptr;
};

class Watcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    explicit Watcher(int dropFirst) : dropsLeft_(dropFirst) {}

    QStringList items() const { return items_; }
    bool hostRegistered() const { return true; }
    int protocolVersion() const { return 0; }

public slots:
    void RegisterStatusNotifierItem(const QString& serviceOrPath) {
        const bool byPath = serviceOrPath.startsWith(QLatin1Char('/'));
        const QString service = byPath ? message().service() : serviceOrPath;
        const QString path = byPath ? serviceOrPath : QStringLiteral("/StatusNotifierItem");
        // The extension lists an item as "service@path".
        const QString entry = service + QLatin1Char('@') + path;
        if (items_.contains(entry))
            return;
        items_ << entry;
        // Like the extension, it drops an item whose owner leaves the bus.
        auto* owner = new QDBusServiceWatcher(service, QDBusConnection::sessionBus(),
                                              QDBusServiceWatcher::WatchForUnregistration, this);
        QTimer::singleShot(0, this, [this, service, path, entry, owner] {
            auto* icon = new ItemIcon(service, path, int(items_.size()) - 1);
            auto drop = [this, entry, icon, owner] {
                items_.removeAll(entry);
                icon->deleteLater();
                owner->deleteLater();
                emit StatusNotifierItemUnregistered(entry);
            };
            connect(owner, &QDBusServiceWatcher::serviceUnregistered, this, drop);
            emit StatusNotifierItemRegistered(entry);
            if (dropsLeft_ > 0) {
                --dropsLeft_;
                QTimer::singleShot(1000, icon, drop);
                std::printf("dropping %s\n", qPrintable(entry));
                std::fflush(stdout);
            }
        });
        std::printf("registered %s\n", qPrintable(entry));
        std::fflush(stdout);
    }
    void RegisterStatusNotifierHost(const QString&) {}

signals:
    void StatusNotifierItemRegistered(const QString& entry);
    void StatusNotifierItemUnregistered(const QString& entry);
    void StatusNotifierHostRegistered();

private:
    QStringList items_;
    int dropsLeft_;
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const qsizetype drop = arguments.indexOf(QStringLiteral("--drop-first"));
    Watcher watcher(drop > 0 ? arguments.value(drop + 1).toInt() : 0);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                            QDBusConnection::ExportAllContents) ||
        !bus.registerService(watcherName) ||
        !bus.registerService(QStringLiteral("org.gnome.Shell"))) {
        std::fprintf(stderr, "gnome_like_host: cannot take the watcher's or the shell's name\n");
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    return QApplication::exec();
}

#include "gnome_like_host.moc"
