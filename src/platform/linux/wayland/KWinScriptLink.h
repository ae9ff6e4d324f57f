#pragma once

// KWin through a script of ours that it runs (see KWinScript.h): the script reports the windows
// and activations to an object we export on the session bus, and a one-off script closes a
// window. The script is loaded at start (bounded D-Bus calls) and unloaded when the link goes;
// everything after that arrives through the main event loop.

#include "platform/linux/wayland/CompositorLink.h"

#include <QDBusConnection>
#include <QTemporaryDir>
#include <memory>

namespace quelmo::linux_platform {

class KWinReportReceiver;

class KWinScriptLink final : public CompositorLink {
public:
    // Nothing when KWin does not answer on `bus` or never reports.
    static std::unique_ptr<KWinScriptLink>
    connect(QDBusConnection bus = QDBusConnection::sessionBus());
    ~KWinScriptLink() override;
    KWinScriptLink(const KWinScriptLink&) = delete;
    KWinScriptLink& operator=(const KWinScriptLink&) = delete;

    const std::vector<CompositorWindow>& windows() const override { return windows_; }
    bool close(const CompositorWindow& window) override;

    // Reports from the script.
    void onWindows(const QByteArray& json);
    void onActivated(const QByteArray& json);

private:
    explicit KWinScriptLink(QDBusConnection bus);
    bool start();
    // Loads and runs the script in `file` under `plugin`: at start, waiting (boundedly) for KWin;
    // later, without waiting, unloading it once it has run when `unloadAfter`.
    bool runScript(const QString& file, const QString& plugin);
    void runScriptAsync(const QString& file, const QString& plugin, bool unloadAfter);

    QDBusConnection bus_;
    QTemporaryDir scripts_;
    QString plugin_;
    QString objectPath_;
    std::unique_ptr<KWinReportReceiver> receiver_;
    std::vector<CompositorWindow> windows_;
    bool reported_ = false;
    int closeScripts_ = 0;
};

} // namespace quelmo::linux_platform
