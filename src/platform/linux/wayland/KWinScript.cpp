#include "platform/linux/wayland/KWinScript.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace quelmo::linux_platform::kwin {
namespace {

// Everything is reported as plain JSON text, so that the calls carry a single string.
constexpr auto reportingSource = R"JS(
const service = "%1", path = "%2", iface = "%3";
function all() { return workspace.windowList ? workspace.windowList() : workspace.clientList(); }
function active() {
    return workspace.activeWindow !== undefined ? workspace.activeWindow : workspace.activeClient;
}
function describe(w) {
    const geometry = w.frameGeometry || w.geometry || {};
    const onDesktop = w.onCurrentDesktop === undefined ? true : w.onCurrentDesktop;
    return {
        id: String(w.internalId), pid: w.pid, desktopFile: String(w.desktopFileName || ""),
        windowClass: String(w.resourceClass || ""),
        ordinary: !!(w.normalWindow || w.dialog || w.utility), skipTaskbar: !!w.skipTaskbar,
        minimized: !!w.minimized, onScreen: !w.minimized && onDesktop && !w.hidden,
        height: geometry.height || 0, active: w === active()
    };
}
function report() { callDBus(service, path, iface, "windows", JSON.stringify(all().map(describe))); }
function watch(w) {
    for (const name of ["minimizedChanged", "desktopsChanged", "desktopChanged", "activitiesChanged"])
        if (w[name]) w[name].connect(report);
}
all().forEach(watch);
(workspace.windowAdded || workspace.clientAdded).connect(function (w) { watch(w); report(); });
(workspace.windowRemoved || workspace.clientRemoved).connect(report);
(workspace.currentDesktopChanged).connect(report);
(workspace.windowActivated || workspace.clientActivated).connect(function (w) {
    report();
    if (w) callDBus(service, path, iface, "activated", JSON.stringify(describe(w)));
});
report();
)JS";

constexpr auto closingSource = R"JS(
const list = workspace.windowList ? workspace.windowList() : workspace.clientList();
for (const w of list) { if (String(w.internalId) === "%1") w.closeWindow(); }
)JS";

CompositorWindow windowOf(const QJsonObject& report) {
    CompositorWindow window;
    window.handle = report.value(QLatin1String("id")).toString();
    if (const qint64 pid = report.value(QLatin1String("pid")).toInteger(0); pid > 0)
        window.pid = pid;
    window.appId = report.value(QLatin1String("desktopFile")).toString();
    if (window.appId.isEmpty()) {
        // Only a class: it names an entry through a match, never by itself.
        window.appId = report.value(QLatin1String("windowClass")).toString();
        window.xwayland = true;
    }
    window.focused = report.value(QLatin1String("active")).toBool();
    window.minimised = report.value(QLatin1String("minimized")).toBool();
    window.onScreen = report.value(QLatin1String("onScreen")).toBool();
    window.ordinary = report.value(QLatin1String("ordinary")).toBool(true);
    window.skipTaskbar = report.value(QLatin1String("skipTaskbar")).toBool();
    if (const double height = report.value(QLatin1String("height")).toDouble(0); height > 0)
        window.height = height;
    return window;
}

} // namespace

QByteArray reportingScript(const QString& service, const QString& path) {
    return QString::fromLatin1(reportingSource)
        .arg(service, path, QLatin1String(reportInterface))
        .toUtf8();
}

QByteArray closingScript(const QString& windowId) {
    static const QRegularExpression uuid(QStringLiteral("^\\{?[0-9A-Fa-f-]{8,40}\\}?$"));
    if (!uuid.match(windowId).hasMatch())
        return {};
    return QString::fromLatin1(closingSource).arg(windowId).toUtf8();
}

std::vector<CompositorWindow> windowsOfReport(const QByteArray& json) {
    std::vector<CompositorWindow> windows;
    for (const QJsonValue value : QJsonDocument::fromJson(json).array()) {
        if (value.isObject())
            windows.push_back(windowOf(value.toObject()));
    }
    return windows;
}

std::optional<CompositorWindow> windowOfReport(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return std::nullopt;
    return windowOf(document.object());
}

} // namespace quelmo::linux_platform::kwin
