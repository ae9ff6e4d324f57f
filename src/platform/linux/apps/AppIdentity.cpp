#include "platform/linux/apps/AppIdentity.h"

#include "platform/linux/apps/CgroupAppId.h"

namespace quelmo::linux_platform {
namespace {

// _KDE_NET_WM_DESKTOP_FILE holds an id, sometimes written as a file name or a path.
QString idFromDesktopFileName(QString name) {
    const qsizetype slash = name.lastIndexOf(QLatin1Char('/'));
    if (slash >= 0)
        name = name.sliced(slash + 1);
    if (name.endsWith(QLatin1String(".desktop")))
        name.chop(8);
    return name;
}

} // namespace

std::optional<QString> appIdFromWindows(const std::vector<WindowHints>& windows,
                                        DesktopEntryIndex& index) {
    for (const WindowHints& window : windows) {
        if (!window.gtkApplicationId.isEmpty())
            return window.gtkApplicationId;
        const QString kdeId = idFromDesktopFileName(window.kdeDesktopFile);
        if (!kdeId.isEmpty())
            return kdeId;
    }
    for (const WindowHints& window : windows) {
        if (const InstalledApp* app = index.findByWindowClass(window.wmInstance, window.wmClass))
            return app->id;
    }
    return std::nullopt;
}

std::optional<QString> resolveAppId(const QByteArray& cgroupFile,
                                    const std::function<std::vector<WindowHints>()>& windows,
                                    DesktopEntryIndex& index) {
    if (auto id = appIdFromCgroup(cgroupFile))
        return id;
    return appIdFromWindows(windows(), index);
}

std::optional<QString> displayNameOf(const QString& appId, DesktopEntryIndex& index,
                                     const QString& lang, const LocaleName& messages) {
    const InstalledApp* app = index.find(appId);
    if (!app)
        return std::nullopt;
    auto name = localizedValue(app->entry, QStringLiteral("Name"), lang, messages);
    if (name && name->isEmpty())
        return std::nullopt;
    return name;
}

LocaleName sessionMessageLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            return LocaleName::fromPosix(value);
    }
    return {};
}

} // namespace quelmo::linux_platform
