#include "platform/ollama/RuntimeEndpoint.h"

#include "core/advisor/LoopbackEndpoint.h"

#include <QHostAddress>
#include <optional>

namespace quelmo::ollama_platform {

namespace {

// The address a value names; nothing for an empty value. Says nothing about whether the address
// may be used.
std::optional<QUrl> hostVariableUrl(const QString& value) {
    QString rest = value.trimmed();
    if (rest.isEmpty())
        return std::nullopt;
    QString scheme = QStringLiteral("http");
    const qsizetype schemeEnd = rest.indexOf(QLatin1String("://"));
    if (schemeEnd >= 0) {
        scheme = rest.left(schemeEnd).toLower();
        rest = rest.mid(schemeEnd + 3);
    }
    rest = rest.section(QLatin1Char('/'), 0, 0);

    QString host = rest;
    QString port;
    if (rest.startsWith(QLatin1Char('['))) {
        const qsizetype close = rest.indexOf(QLatin1Char(']'));
        if (close < 0)
            return QUrl(); // unreadable, so refused
        host = rest.mid(1, close - 1);
        if (rest.mid(close + 1).startsWith(QLatin1Char(':')))
            port = rest.mid(close + 2);
    } else if (rest.count(QLatin1Char(':')) == 1) { // more than one: a bare IPv6 address
        host = rest.section(QLatin1Char(':'), 0, 0);
        port = rest.section(QLatin1Char(':'), 1);
    }
    if (host.isEmpty())
        host = QStringLiteral("127.0.0.1");
    const QHostAddress address(host);
    if (address == QHostAddress(QHostAddress::AnyIPv4))
        host = QStringLiteral("127.0.0.1");
    else if (address == QHostAddress(QHostAddress::AnyIPv6))
        host = QStringLiteral("::1");

    bool numeric = false;
    const int number = port.toInt(&numeric);
    QUrl url;
    url.setScheme(scheme);
    url.setHost(host);
    url.setPort(numeric && number > 0 && number <= 65535 ? number : defaultRuntimePort);
    return url;
}

} // namespace

EndpointChoice runtimeEndpoint(const QString& hostVariable) {
    const QUrl fallback(QString::fromLatin1(defaultRuntimeEndpoint));
    const std::optional<QUrl> named = hostVariableUrl(hostVariable);
    if (!named)
        return {fallback, {}};
    // The one rule that keeps requests on this machine decides, here as for every request.
    if (const std::optional<QUrl> local = loopbackEndpoint(*named))
        return {*local, {}};
    return {fallback,
            QStringLiteral("OLLAMA_HOST is \"%1\", which is not a plain http address on this "
                           "machine; the advisor only talks to a runtime on this machine, so it "
                           "asks %2 instead")
                .arg(hostVariable.trimmed(), QString::fromLatin1(defaultRuntimeEndpoint))};
}

} // namespace quelmo::ollama_platform
