#include "app/popover/LocalResourcesOnly.h"

#include <QLatin1String>
#include <QString>

namespace quelmo {

QUrl LocalResourcesOnly::intercept(const QUrl& url, DataType) {
    const QString scheme = url.scheme();
    if (scheme.isEmpty() || scheme == QLatin1String("qrc") || scheme == QLatin1String("file") ||
        scheme == QLatin1String("image"))
        return url;
    return {};
}

} // namespace quelmo
