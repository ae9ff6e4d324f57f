#include "platform/linux/wayland/HyprlandProtocol.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace quelmo::linux_platform::hyprland {
namespace {

QSet<qint64> shownWorkspaces(const QByteArray& monitors) {
    QSet<qint64> shown;
    for (const QJsonValue monitor : QJsonDocument::fromJson(monitors).array()) {
        for (const char* key : {"activeWorkspace", "specialWorkspace"}) {
            const qint64 id = monitor.toObject()
                                  .value(QLatin1String(key))
                                  .toObject()
                                  .value(QLatin1String("id"))
                                  .toInteger(0);
            if (id != 0)
                shown.insert(id);
        }
    }
    return shown;
}

bool isAddress(const QString& text) {
    if (!text.startsWith(QLatin1String("0x")) || text.size() < 3 || text.size() > 18)
        return false;
    bool hex = false;
    text.sliced(2).toULongLong(&hex, 16);
    return hex;
}

} // namespace

std::vector<CompositorWindow> windowsOf(const QByteArray& clients, const QByteArray& monitors) {
    const QSet<qint64> shown = shownWorkspaces(monitors);
    std::vector<CompositorWindow> windows;
    for (const QJsonValue value : QJsonDocument::fromJson(clients).array()) {
        const QJsonObject client = value.toObject();
        CompositorWindow window;
        window.handle = client.value(QLatin1String("address")).toString();
        if (!isAddress(window.handle))
            continue;
        if (const qint64 pid = client.value(QLatin1String("pid")).toInteger(0); pid > 0)
            window.pid = pid;
        window.appId = client.value(QLatin1String("class")).toString();
        window.xwayland = client.value(QLatin1String("xwayland")).toBool();
        window.focused = client.value(QLatin1String("focusHistoryID")).toInteger(-1) == 0;
        const qint64 workspace = client.value(QLatin1String("workspace"))
                                     .toObject()
                                     .value(QLatin1String("id"))
                                     .toInteger(0);
        const bool mapped = client.value(QLatin1String("mapped")).toBool(true);
        const bool hidden = client.value(QLatin1String("hidden")).toBool();
        window.onScreen = mapped && !hidden && shown.contains(workspace);
        window.minimised = workspace < 0 && !shown.contains(workspace);
        const QJsonArray size = client.value(QLatin1String("size")).toArray();
        if (size.size() == 2 && size[1].isDouble())
            window.height = size[1].toDouble();
        windows.push_back(std::move(window));
    }
    return windows;
}

std::optional<Event> parseEvent(QByteArrayView line) {
    const qsizetype separator = line.indexOf(QByteArrayView(">>"));
    if (separator <= 0)
        return std::nullopt;
    return Event{QString::fromUtf8(line.first(separator)),
                 QString::fromUtf8(line.sliced(separator + 2))};
}

QString addressOfActiveWindowEvent(const Event& event) {
    if (event.name != QLatin1String("activewindowv2"))
        return {};
    const QString address = QStringLiteral("0x") + event.data.trimmed();
    return isAddress(address) ? address : QString();
}

QByteArray closeRequest(const CompositorWindow& window) {
    if (!isAddress(window.handle))
        return {};
    return "dispatch closewindow address:" + window.handle.toLatin1();
}

QString socketFolder(const QString& runtimeDir, const QString& signature) {
    if (signature.isEmpty() || signature.contains(QLatin1Char('/')))
        return {};
    for (const QString& base :
         {runtimeDir + QStringLiteral("/hypr"), QStringLiteral("/tmp/hypr")}) {
        const QString folder = base + QLatin1Char('/') + signature;
        if (QFileInfo::exists(folder + QStringLiteral("/.socket.sock")))
            return folder;
    }
    return {};
}

} // namespace quelmo::linux_platform::hyprland
