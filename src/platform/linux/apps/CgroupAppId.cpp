#include "platform/linux/apps/CgroupAppId.h"

#include <QList>

namespace quelmo::linux_platform {
namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::optional<QString> nonEmpty(QByteArrayView escapedId) {
    if (escapedId.isEmpty())
        return std::nullopt;
    const QString id = unescapeUnitName(escapedId);
    if (id.isEmpty())
        return std::nullopt;
    return id;
}

// Everything after "app-" and before the unit suffix, split at the unescaped dashes.
QList<QByteArrayView> dashParts(QByteArrayView body) {
    QList<QByteArrayView> parts;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= body.size(); ++i) {
        if (i == body.size() || body[i] == '-') {
            parts.append(body.sliced(start, i - start));
            start = i + 1;
        }
    }
    return parts;
}

} // namespace

QString unescapeUnitName(QByteArrayView name) {
    QByteArray bytes;
    bytes.reserve(name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i] == '\\' && i + 3 < name.size() && name[i + 1] == 'x') {
            const int high = hexValue(name[i + 2]);
            const int low = hexValue(name[i + 3]);
            if (high >= 0 && low >= 0) {
                bytes.append(static_cast<char>(high * 16 + low));
                i += 3;
                continue;
            }
        }
        bytes.append(name[i]);
    }
    return QString::fromUtf8(bytes);
}

std::optional<QString> appIdFromUnitName(QByteArrayView unit) {
    if (!unit.startsWith("app-"))
        return std::nullopt;
    const QByteArrayView rest = unit.sliced(4);

    if (rest.endsWith(".scope")) {
        // [launcher-]id-random: the random part is required.
        const auto parts = dashParts(rest.chopped(6));
        if (parts.size() == 2 && !parts[1].isEmpty())
            return nonEmpty(parts[0]);
        if (parts.size() == 3 && !parts[2].isEmpty())
            return nonEmpty(parts[1]);
        return std::nullopt;
    }
    if (rest.endsWith(".service")) {
        QByteArrayView body = rest.chopped(8);
        const qsizetype at = body.indexOf('@');
        if (at >= 0)
            body = body.first(at);
        const auto parts = dashParts(body);
        if (parts.size() == 1)
            return nonEmpty(parts[0]);
        if (parts.size() == 2)
            return nonEmpty(parts[1]);
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<QString> appIdFromCgroup(const QByteArray& cgroupFile) {
    QByteArray unified;
    QByteArray systemdNamed;
    for (const QByteArray& line : cgroupFile.split('\n')) {
        // hierarchy-id:controllers:path (the path may itself contain ':')
        const qsizetype first = line.indexOf(':');
        const qsizetype second = first < 0 ? -1 : line.indexOf(':', first + 1);
        if (second < 0)
            continue;
        const QByteArray hierarchy = line.first(first);
        const QByteArray controllers = line.sliced(first + 1, second - first - 1);
        const QByteArray path = line.sliced(second + 1).trimmed();
        if (hierarchy == "0" && controllers.isEmpty())
            unified = path;
        else if (controllers == "name=systemd")
            systemdNamed = path;
    }
    for (const QByteArray& path : {unified, systemdNamed}) {
        const qsizetype slash = path.lastIndexOf('/');
        const QByteArrayView leaf = QByteArrayView(path).sliced(slash + 1);
        if (auto id = appIdFromUnitName(leaf))
            return id;
    }
    return std::nullopt;
}

} // namespace quelmo::linux_platform
