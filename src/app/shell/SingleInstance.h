#pragma once

#include "app/shell/ApplicationId.h"
#include "app/tray/ActivationGate.h"

#include <QDBusConnection>
#include <QObject>
#include <optional>

class QLocalServer;

namespace quelmo {

// Keeps one running program per user session. The first owns a well-known name on the session
// bus (or, without a session bus, a local socket named after the user and the display); a later
// launch finds it, asks it to open its popover and steps aside.
class SingleInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quelmo.Quelmo")

public:
    static constexpr const char* serviceName = applicationId;
    static constexpr const char* objectPath = "/org/quelmo/Quelmo";

    explicit SingleInstance(std::optional<QDBusConnection> bus, QObject* parent = nullptr);
    ~SingleInstance() override;

    // True when another instance runs in this session and has been asked to show its popover;
    // false when this one is now the session's instance.
    bool handOver();

    // The local socket's name when the session has no bus.
    static QString socketName();

public slots:
    // Called by a later launch. Launches in a burst (or a program calling it in a loop) open
    // the popover once.
    Q_SCRIPTABLE void Activate();

signals:
    void activationRequested();

private:
    bool handOverOnBus();
    bool handOverOnSocket();

    std::optional<QDBusConnection> bus_;
    QLocalServer* server_ = nullptr;
    ActivationGate gate_;
};

} // namespace quelmo
