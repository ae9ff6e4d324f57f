#include "core/advisor/LoopbackEndpoint.h"

#include <QHostAddress>

namespace quelmo {

std::optional<QUrl> loopbackEndpoint(const QUrl& url) {
    if (!url.isValid() || url.scheme() != QLatin1String("http"))
        return std::nullopt;
    const QString host = url.host();
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0) {
        QUrl pinned = url;
        pinned.setHost(QStringLiteral("127.0.0.1"));
        return pinned;
    }
    QHostAddress address;
    if (address.setAddress(host) && address.isLoopback())
        return url;
    return std::nullopt;
}

} // namespace quelmo
