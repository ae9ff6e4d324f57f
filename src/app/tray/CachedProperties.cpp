#include "app/tray/CachedProperties.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QMetaProperty>

namespace quelmo {

CachedProperties::CachedProperties(QObject* parent, const QDBusContext* context, QString interface)
    : QDBusAbstractAdaptor(parent), context_(context), interface_(std::move(interface)) {}

const QVariantMap& CachedProperties::all() {
    if (!built_) {
        all_.clear();
        const QMetaObject* meta = parent()->metaObject();
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
            const QString name = QString::fromLatin1(meta->property(i).name());
            if (!hidden_.contains(name))
                all_.insert(name, meta->property(i).read(parent()));
        }
        built_ = true;
    }
    return all_;
}

QDBusVariant CachedProperties::Get(const QString& interface, const QString& name) {
    const auto found = all().constFind(name);
    if ((interface.isEmpty() || interface == interface_) && found != all().constEnd())
        return QDBusVariant(*found);
    if (context_->calledFromDBus())
        context_->sendErrorReply(QDBusError::InvalidArgs,
                                 QStringLiteral("No property %1 in %2").arg(name, interface));
    return QDBusVariant(QString());
}

QVariantMap CachedProperties::GetAll(const QString& interface) {
    return interface.isEmpty() || interface == interface_ ? all() : QVariantMap();
}

void CachedProperties::Set(const QString& interface, const QString& name, const QDBusVariant&) {
    if (context_->calledFromDBus())
        context_->sendErrorReply(
            QDBusError::PropertyReadOnly,
            QStringLiteral("Property %1 of %2 is read-only").arg(name, interface));
}

} // namespace quelmo
