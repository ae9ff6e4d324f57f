#include "platform/linux/wayland/KWinScriptLink.h"

#include "platform/linux/wayland/KWinScript.h"

#include <QCoreApplication>
#include <QDBusInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QFile>
#include <unistd.h>

namespace quelmo::linux_platform {

// The object the script calls.
class KWinReportReceiver : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quelmo.KWinWindows")
public:
    explicit KWinReportReceiver(KWinScriptLink& link) : link_(link) {}

public slots:
    void windows(const QString& json) { link_.onWindows(json.toUtf8()); }
    void activated(const QString& json) { link_.onActivated(json.toUtf8()); }

private:
    KWinScriptLink& link_;
};

namespace {

constexpr int callTimeoutMs = 1000;
constexpr int firstReportTimeoutMs = 2000;
const QString kwinService = QStringLiteral("org.kde.KWin");
const QString scriptingInterface = QStringLiteral("org.kde.kwin.Scripting");

QDBusMessage scriptingCall(const QString& method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(kwinService, QStringLiteral("/Scripting"),
                                                       scriptingInterface, method);
    call.setArguments(arguments);
    return call;
}

// Plasma 6 puts a loaded script at /Scripting/Script<id>, Plasma 5 at /<id>.
QDBusMessage runCall(int id, bool plasma6) {
    return QDBusMessage::createMethodCall(
        kwinService,
        plasma6 ? QStringLiteral("/Scripting/Script%1").arg(id) : QStringLiteral("/%1").arg(id),
        QStringLiteral("org.kde.kwin.Script"), QStringLiteral("run"));
}

bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(content) == content.size();
}

} // namespace

std::unique_ptr<KWinScriptLink> KWinScriptLink::connect(QDBusConnection bus) {
    if (!bus.isConnected())
        return nullptr;
    std::unique_ptr<KWinScriptLink> link(new KWinScriptLink(std::move(bus)));
    if (!link->start())
        return nullptr;
    return link;
}

KWinScriptLink::KWinScriptLink(QDBusConnection bus)
    : bus_(std::move(bus)), plugin_(QStringLiteral("quelmo-windows-%1").arg(::getpid())),
      objectPath_(QStringLiteral("/org/quelmo/KWinWindows")),
      receiver_(std::make_unique<KWinReportReceiver>(*this)) {}

KWinScriptLink::~KWinScriptLink() {
    if (reported_)
        bus_.call(scriptingCall(QStringLiteral("unloadScript"), {plugin_}), QDBus::NoBlock);
    bus_.unregisterObject(objectPath_);
}

bool KWinScriptLink::start() {
    if (!scripts_.isValid() ||
        !bus_.registerObject(objectPath_, receiver_.get(), QDBusConnection::ExportAllSlots))
        return false;
    const QString file = scripts_.filePath(QStringLiteral("report.js"));
    if (!writeFile(file, kwin::reportingScript(bus_.baseService(), objectPath_)) ||
        !runScript(file, plugin_))
        return false;
    // The first report is waited for, so the desktop is known from the first look on.
    const QDeadlineTimer deadline(firstReportTimeoutMs);
    while (!reported_ && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 50);
    return reported_;
}

bool KWinScriptLink::runScript(const QString& file, const QString& plugin) {
    const QDBusMessage loaded =
        bus_.call(scriptingCall(QStringLiteral("loadScript"), {file, plugin}), QDBus::BlockWithGui,
                  callTimeoutMs);
    if (loaded.type() != QDBusMessage::ReplyMessage || loaded.arguments().isEmpty())
        return false;
    const int id = loaded.arguments().constFirst().toInt();
    for (const bool plasma6 : {true, false}) {
        if (bus_.call(runCall(id, plasma6), QDBus::BlockWithGui, callTimeoutMs).type() ==
            QDBusMessage::ReplyMessage)
            return true;
    }
    return false;
}

void KWinScriptLink::runScriptAsync(const QString& file, const QString& plugin, bool unloadAfter) {
    auto* loading = new QDBusPendingCallWatcher(
        bus_.asyncCall(scriptingCall(QStringLiteral("loadScript"), {file, plugin}), callTimeoutMs),
        receiver_.get());
    QObject::connect(loading, &QDBusPendingCallWatcher::finished, receiver_.get(),
                     [this, plugin, unloadAfter](QDBusPendingCallWatcher* watcher) {
                         watcher->deleteLater();
                         const QDBusPendingReply<int> id = *watcher;
                         if (id.isError())
                             return;
                         for (const bool plasma6 : {true, false})
                             bus_.call(runCall(id.value(), plasma6), QDBus::NoBlock);
                         if (unloadAfter)
                             bus_.call(scriptingCall(QStringLiteral("unloadScript"), {plugin}),
                                       QDBus::NoBlock);
                     });
}

void KWinScriptLink::onWindows(const QByteArray& json) {
    windows_ = kwin::windowsOfReport(json);
    reported_ = true;
}

void KWinScriptLink::onActivated(const QByteArray& json) {
    if (const auto window = kwin::windowOfReport(json); window && !window->handle.isEmpty()) {
        for (CompositorWindow& known : windows_)
            known.focused = known.handle == window->handle;
        windowFocused(*window);
    }
}

bool KWinScriptLink::close(const CompositorWindow& window) {
    const QByteArray script = kwin::closingScript(window.handle);
    if (script.isEmpty() || !bus_.isConnected())
        return false;
    const QString name = QStringLiteral("close-%1.js").arg(++closeScripts_);
    const QString file = scripts_.filePath(name);
    if (!writeFile(file, script))
        return false;
    runScriptAsync(file, QStringLiteral("%1-close-%2").arg(plugin_).arg(closeScripts_), true);
    return true;
}

} // namespace quelmo::linux_platform

#include "KWinScriptLink.moc"
