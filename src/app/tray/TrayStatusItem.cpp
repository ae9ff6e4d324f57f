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
#include <QRegularExpression>
#include <algorithm>

namespace quelmo {

namespace {

const QString watcherService = QString::fromLatin1(statusNotifierWatcherService);
const QString watcherPath = QString::fromLatin1(statusNotifierWatcherPath);
constexpr int fallbackDelayMs = 2000;
// A host may take an item and drop it again a moment later (GNOME Shell does now and then);
// the item looks for itself this long after each registration.
constexpr int registrationCheckMs = 1500;
constexpr int maxReRegistrations = 5;

QColor iconTint() {
    return QGuiApplication::palette().color(QPalette::Active, QPalette::WindowText);
}

SniPixmaps fallbackPixmaps() {
    // For hosts that cannot load the icon by name: the scissors in the palette's text colour,
    // rimmed so that they stand out on whatever panel the host draws them.
    const QColor tint = iconTint();
    SniPixmaps pixmaps;
    for (const int size : {16, 22, 24, 32, 48})
        pixmaps.append(toSniPixmap(scissors::renderWithRim(size, tint)));
    return pixmaps;
}

} // namespace

TrayStatusItem::TrayStatusItem(std::optional<QDBusConnection> bus, const QString& iconDirectory,
                               QObject* parent)
    : StatusItem(parent), bus_(std::move(bus)), iconDirectory_(iconDirectory) {
    fallbackDelay_.setSingleShot(true);
    fallbackDelay_.setInterval(fallbackDelayMs);
    connect(&fallbackDelay_, &QTimer::timeout, this, &TrayStatusItem::fallBack);
    registrationCheck_.setSingleShot(true);
    registrationCheck_.setInterval(registrationCheckMs);
    connect(&registrationCheck_, &QTimer::timeout, this, &TrayStatusItem::checkRegistration);

    if (bus_ && bus_->isConnected()) {
        notifier_ = std::make_unique<StatusNotifierItem>(*bus_);
        iconWritten_ = scissors::exportTo(iconDirectory_, iconTint(), false);
        notifier_->setIcon(iconWritten_ ? iconDirectory_ : QString(), fallbackPixmaps());
        // Hosts report clicks in device pixels, and some relative to their own widget.
        connect(notifier_.get(), &StatusNotifierItem::activated, this, [this](QPoint at) {
            noteClick({StatusClick::Button::Left, hostClickAnchor(at)});
        });
        // A host opening the menu tells of the click after the press has already taken the
        // focus from an open popover: that click closed it and must not open it again.
        connect(notifier_.get(), &StatusNotifierItem::menuOpenedAsClick, this, [this] {
            noteClick({StatusClick::Button::Left, QCursor::pos(), true});
        });
        connect(notifier_.get(), &StatusNotifierItem::activatedAtPointer, this, [this] {
            noteClick({StatusClick::Button::Left, QCursor::pos()});
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
        bus_->connect(watcherService, watcherPath, watcherService,
                      QStringLiteral("StatusNotifierItemUnregistered"), this,
                      SLOT(itemUnregistered(QString)));
    }
    chooseHost();
}

TrayStatusItem::~TrayStatusItem() = default;

void TrayStatusItem::chooseHost() {
    fallbackDelay_.stop();
    reRegistrations_ = 0;
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
    askWatcher(QStringLiteral("IsStatusNotifierHostRegistered"),
               [answer = std::move(answer)](const QVariant& value) { answer(value.toBool()); });
}

void TrayStatusItem::askWatcher(const QString& property,
                                std::function<void(const QVariant&)> answer) {
    const quint64 asked = ++generation_;
    QDBusMessage get = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << watcherService << property;
    auto* pending = new QDBusPendingCallWatcher(bus_->asyncCall(get, 5000), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, asked, answer = std::move(answer)](QDBusPendingCallWatcher* self) {
                self->deleteLater();
                if (asked != generation_)
                    return;
                const QDBusPendingReply<QDBusVariant> reply = *self;
                answer(reply.isError() ? QVariant() : reply.value().variant());
            });
}

bool TrayStatusItem::namesThisItem(const QString& entry) const {
    // Watchers list an item as its bus name, with or without its object path, which GNOME
    // Shell's extension joins on with '@' ("':1.16@/StatusNotifierItem'").
    const QString busName = entry.left(entry.indexOf(QRegularExpression(QStringLiteral("[/@]"))));
    return busName == bus_->baseService() || busName == notifier_->serviceName();
}

void TrayStatusItem::itemUnregistered(const QString& entry) {
    if (kind_ == Kind::StatusNotifier && namesThisItem(entry))
        checkRegistration();
}

void TrayStatusItem::checkRegistration() {
    if (kind_ != Kind::StatusNotifier)
        return;
    askWatcher(QStringLiteral("RegisteredStatusNotifierItems"), [this](const QVariant& value) {
        const QStringList items = value.toStringList();
        if (std::any_of(items.begin(), items.end(),
                        [this](const QString& entry) { return namesThisItem(entry); })) {
            reRegistrations_ = 0;
            return;
        }
        // Dropped: ask again a few times, then dock where the item is sure to show.
        if (reRegistrations_ >= maxReRegistrations) {
            useXEmbed();
            return;
        }
        ++reRegistrations_;
        useStatusNotifier();
    });
}

void TrayStatusItem::hostRegistered() {
    if (kind_ != Kind::StatusNotifier)
        chooseHost();
}

void TrayStatusItem::useStatusNotifier() {
    const quint64 asked = generation_;
    learnHost([this, asked](Host host) {
        if (asked != generation_)
            return;
        const bool shellHost = host == Host::GnomeShell;
        notifier_->setLabelShown(host != Host::Other);
        // Where the host opens the item's menu on a left click, the menu opening is the
        // click. The shell also now and then drops an item registered by a well-known name
        // ("Argument two may not be null") but never one registered by its object path.
        using Opening = StatusNotifierItem::MenuOpeningClick;
        notifier_->setMenuOpeningClick(shellHost               ? Opening::OpenedEvent
                                       : host == Host::Ayatana ? Opening::AboutToShow
                                                               : Opening::None);
        // The shell draws symbolic icons in the panel's text colour; elsewhere the twin does
        // harm (see exportTo).
        const bool twinWritten =
            iconWritten_ && scissors::exportTo(iconDirectory_, iconTint(), shellHost);
        notifier_->setSymbolicIcon(shellHost && twinWritten);
        notifier_->registerWithWatcher(shellHost, [this, asked](bool accepted) {
            if (asked != generation_)
                return;
            if (!accepted) {
                useXEmbed();
                return;
            }
            fallbackDelay_.stop();
            kind_ = Kind::StatusNotifier;
            xembed_.reset();
            registrationCheck_.start();
        });
    });
}

void TrayStatusItem::learnHost(std::function<void(Host)> answer) {
    // GNOME Shell's extension is the watcher itself, inside the shell, and so is Ayatana's
    // indicator service: the process that owns the watcher also owns the shell's or the
    // service's name (the service owns them on two connections of its own).
    auto ownerOf = [this](const QString& name) {
        return bus_->asyncCall(
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                           QStringLiteral("/org/freedesktop/DBus"),
                                           QStringLiteral("org.freedesktop.DBus"),
                                           QStringLiteral("GetConnectionUnixProcessID"))
                << name,
            5000);
    };
    QDBusPendingReply<uint> watcher = ownerOf(watcherService);
    QDBusPendingReply<uint> shell = ownerOf(QStringLiteral("org.gnome.Shell"));
    QDBusPendingReply<uint> ayatana = ownerOf(QStringLiteral("org.ayatana.indicator.application"));
    auto* all = new QDBusPendingCallWatcher(ayatana, this);
    connect(
        all, &QDBusPendingCallWatcher::finished, this,
        [watcher, shell, ayatana,
         answer = std::move(answer)](QDBusPendingCallWatcher* self) mutable {
            self->deleteLater();
            // Asked first, so answered already.
            watcher.waitForFinished();
            shell.waitForFinished();
            auto owns = [&watcher](QDBusPendingReply<uint>& other) {
                return !watcher.isError() && !other.isError() && watcher.value() == other.value();
            };
            answer(owns(shell) ? Host::GnomeShell : owns(ayatana) ? Host::Ayatana : Host::Other);
        });
}

void TrayStatusItem::useXEmbed() {
    kind_ = Kind::XEmbed;
    registrationCheck_.stop();
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
