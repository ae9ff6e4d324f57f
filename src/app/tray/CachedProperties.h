#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusContext>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

namespace quelmo {

// Answers org.freedesktop.DBus.Properties for its parent object from a map built once and kept
// until the parent says a property changed, instead of reading and converting every property
// for each call: hosts read all of them often, and a flood of such reads must not make the
// program fall behind. Covers the parent's properties in `interface`, all read-only.
class CachedProperties : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.DBus.Properties")

public:
    // `context` is the parent's: QtDBus keeps the call being answered there.
    CachedProperties(QObject* parent, const QDBusContext* context, QString interface);

    // Call whenever a property of the parent changes.
    void invalidate() { built_ = false; }
    // Properties left out, as if the parent had none of that name.
    void setHidden(const QStringList& names) {
        hidden_ = names;
        invalidate();
    }

public slots:
    QDBusVariant Get(const QString& interface, const QString& name);
    QVariantMap GetAll(const QString& interface);
    void Set(const QString& interface, const QString& name, const QDBusVariant& value);

private:
    const QVariantMap& all();

    const QDBusContext* context_;
    QString interface_;
    QVariantMap all_;
    QStringList hidden_;
    bool built_ = false;
};

} // namespace quelmo
