#pragma once

#include <QDBusAbstractAdaptor>
#include <QString>

namespace quelmo {

// Answers org.freedesktop.DBus.Introspectable for its parent object with a description written
// once, from the parent's generated adaptors, instead of generating it again for every call (a
// flood of those made the program grow by tens of megabytes).
class CachedInterfaceXml : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.DBus.Introspectable")

public:
    explicit CachedInterfaceXml(QObject* parent);

public slots:
    QString Introspect();

private:
    QString xml_;
};

} // namespace quelmo
