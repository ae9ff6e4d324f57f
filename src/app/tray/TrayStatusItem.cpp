#include "app/tray/TrayStatusItem.h"

#include "app/popover/PopoverScreens.h"
#include "app/tray/ScissorsIcon.h"
#include "app/tray/StatusNotifierItem.h"
#include "app/tray/XEmbedTrayIcon.h"

#include <QCursor>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>

namespace quelmo {

namespace {

const QString watcherService = QString::fromLatin1(statusNotifierWatcherService);
const QString watcherPath = QString::fromLatin1(statusNotifierWatcherPath);
constexpr int fallbackDelayMs = 2000;

SniPixmaps fallbackPixmaps() {
    // For hosts that cannot load the icon by name: the scissors in the palette's text colour,
    // rimmed so that they stand out on whatever panel the host draws them.
    const QColor tint = QGuiApplication::palette().color(QPalette::Active, QPalette::WindowText);
    SniPixmaps pixmaps;
    for (const int size : {16, 22, 24, 32, 48})
        pixmaps.append(toSniPixmap(scissors::renderWithRim(size, tint)));
    return pixmaps;
}

} // namespace

TrayStatusItem::TrayStatusItem(std::optional<QDBusConnection> bus, const QString& iconDirectory,
                               QObject* parent)
    : StatusItem(parent), bus_(std::move(bus)) {
    fallbackDelay_.setSingleShot(true);
    fallbackDelay_.setInterval(fallbackDelayMs);
    connect(&fallbackDelay_, &QTimer::timeout, this, &TrayStatusItem::fallBack);

    if (bus_ && bus_->isConnected()) {
        notifier_ = std::make_unique<StatusNotifierItem>(*bus_);
        const bool iconWritten = scissors::exportTo(iconDirectory);
        notifier_->setIcon(iconWritten ? iconDirectory : QString(), fallbackPixmaps());
        // Hosts report clicks in device pixels, and some relative to their own widget.
        connect(notifier_.get(), &StatusNotifierItem::activated, this, [this](QPoint at) {
            noteClick({StatusClick::Button::Left, hostClickAnchor(at)});
        });
        connect(notifier_.get(), &StatusNotifierItem::contextMenuRequested, this,
                [this](QPoint at) {
                    noteClick({StatusClick::Button::Right, hostClickAnchor(at)});
                });
        connect(&notifier_->menu(), &DBusMenuExporter::triggered, this,
                &StatusItem::menuEntryTriggered);
        if (!notifier_->publish())
            notifier_.reset();
    }

    if (notifier_) {
        watcherWatch_ = new QDBusServiceWatcher(watcherService, *bus_,
                                                QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(watcherWatch_, &QDBusServiceWatcher::serviceRegistered, this,
                &TrayStatusItem::chooseHost);
        connect(watcherWatch_, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
            ++generation_;
            fallbackDelay_.start();
        });
        // A watcher may run before any host does; it says so when a host arrives.
        bus_->connect(watcherService, watcherPath, watcherService,
                      QStringLiteral("StatusNotifierHostRegistered"), this, SLOT(hostRegistered()));
    }
    chooseHost();
}

TrayStatusItem::~TrayStatusItem() = default;

void TrayStatusItem::chooseHost() {
    fallbackDelay_.stop();
    if (!notifier_) {
        useXEmbed();
        return;
    }
    askForHost([this](bool hostRuns) {
        if (hostRuns)
            useStatusNotifier();
        else if (kind_ != Kind::XEmbed)
            fallbackDelay_.start();
    });
}

void TrayStatusItem::fallBack() {
    askForHost([this](bool hostRuns) {
        if (hostRuns)
            useStatusNotifier();
        else
            useXEmbed();
    });
}

void TrayStatusItem::askForHost(std::function<void(bool)> answer) {
    const quint64 asked = ++generation_;
    QDBusMessage get = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* pending = new QDBusPendingCallWatcher(bus_->asyncCall(get, 5000), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, asked, answer = std::move(answer)](QDBusPendingCallWatcher* self) {
                self->deleteLater();
                if (asked != generation_)
                    return;
                const QDBusPendingReply<QDBusVariant> reply = *self;
                answer(!reply.isError() && reply.value().variant().toBool());
            });
}

void TrayStatusItem::hostRegistered() {
    if (kind_ != Kind::StatusNotifier)
        chooseHost();
}

void TrayStatusItem::useStatusNotifier() {
    const quint64 asked = generation_;
    notifier_->registerWithWatcher([this, asked](bool accepted) {
        if (asked != generation_)
            return;
        if (!accepted) {
            useXEmbed();
            return;
        }
        fallbackDelay_.stop();
        kind_ = Kind::StatusNotifier;
        xembed_.reset();
    });
}

void TrayStatusItem::useXEmbed() {
    kind_ = Kind::XEmbed;
    if (xembed_)
        return;
    xembed_ = std::make_unique<XEmbedTrayIcon>();
    xembed_->setTitle(title_);
    connect(xembed_.get(), &XEmbedTrayIcon::clicked, this, &TrayStatusItem::noteClick);
}

void TrayStatusItem::setTitle(const QString& title) {
    if (title == title_)
        return; // the title is set every second but changes far less often
    title_ = title;
    if (notifier_)
        notifier_->setTitle(title);
    if (xembed_)
        xembed_->setTitle(title);
}

void TrayStatusItem::setMenu(const QList<StatusMenuEntry>& entries) {
    if (notifier_)
        notifier_->menu().setEntries(entries);
}

QPoint TrayStatusItem::anchorHint() const {
    if (lastClick_)
        return *lastClick_;
    if (xembed_ && xembed_->geometry().isValid())
        return itemAnchor(xembed_->geometry(), popoverScreens());
    return QCursor::pos();
}

void TrayStatusItem::noteClick(StatusClick click) {
    lastClick_ = click.position;
    emit clicked(click);
}

} // namespace quelmo
