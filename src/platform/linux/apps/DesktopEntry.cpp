#include "platform/linux/apps/DesktopEntry.h"

#include <QList>

namespace quelmo::linux_platform {
namespace {

const QString desktopEntryGroup = QStringLiteral("Desktop Entry");

} // namespace

QString unescapeDesktopValue(QStringView raw) {
    QString out;
    out.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw[i];
        if (c != QLatin1Char('\\') || i + 1 >= raw.size()) {
            out.append(c);
            continue;
        }
        const QChar next = raw[i + 1];
        switch (next.unicode()) {
        case 's':
            out.append(QLatin1Char(' '));
            break;
        case 'n':
            out.append(QLatin1Char('\n'));
            break;
        case 't':
            out.append(QLatin1Char('\t'));
            break;
        case 'r':
            out.append(QLatin1Char('\r'));
            break;
        case '\\':
            out.append(QLatin1Char('\\'));
            break;
        default:
            // Not an escape of a single value (e.g. "\;" in lists): keep both characters.
            out.append(c);
            out.append(next);
            break;
        }
        ++i;
    }
    return out;
}

std::optional<DesktopEntry> parseDesktopEntry(QByteArrayView text) {
    const QString content = QString::fromUtf8(text);
    DesktopEntry entry;
    bool inGroup = false;
    bool sawGroup = false;
    for (QStringView line : QStringView(content).split(QLatin1Char('\n'))) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            if (sawGroup && inGroup)
                break; // the group ended; later groups (actions) are not ours
            inGroup = line == QString(QLatin1Char('[') + desktopEntryGroup + QLatin1Char(']'));
            sawGroup = sawGroup || inGroup;
            continue;
        }
        if (!inGroup)
            continue;
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq <= 0)
            continue;
        const QString key = line.first(eq).trimmed().toString();
        if (key.isEmpty() || entry.values.contains(key))
            continue; // a repeated key is invalid; the first one stands
        entry.values.insert(key, unescapeDesktopValue(line.sliced(eq + 1).trimmed()));
    }
    if (!sawGroup)
        return std::nullopt;
    return entry;
}

LocaleName LocaleName::fromPosix(QStringView name) {
    LocaleName locale;
    QStringView rest = name;
    const qsizetype at = rest.indexOf(QLatin1Char('@'));
    if (at >= 0) {
        locale.modifier = rest.sliced(at + 1).toString();
        rest = rest.first(at);
    }
    const qsizetype dot = rest.indexOf(QLatin1Char('.'));
    if (dot >= 0)
        rest = rest.first(dot);
    const qsizetype underscore = rest.indexOf(QLatin1Char('_'));
    if (underscore >= 0) {
        locale.country = rest.sliced(underscore + 1).toString();
        rest = rest.first(underscore);
    }
    locale.lang = rest.toString();
    return locale;
}

std::optional<QString> localizedValue(const DesktopEntry& entry, const QString& key,
                                      const QString& lang, const LocaleName& messages) {
    const auto lookup = [&](const QString& locale) -> std::optional<QString> {
        const auto it = entry.values.constFind(key + QLatin1Char('[') + locale + QLatin1Char(']'));
        if (it == entry.values.constEnd())
            return std::nullopt;
        return *it;
    };

    if (!lang.isEmpty()) {
        QStringList tries;
        if (messages.lang == lang) {
            if (!messages.country.isEmpty() && !messages.modifier.isEmpty())
                tries << lang + QLatin1Char('_') + messages.country + QLatin1Char('@') +
                             messages.modifier;
            if (!messages.country.isEmpty())
                tries << lang + QLatin1Char('_') + messages.country;
            if (!messages.modifier.isEmpty())
                tries << lang + QLatin1Char('@') + messages.modifier;
        }
        tries << lang;
        for (const QString& locale : tries) {
            if (auto found = lookup(locale))
                return found;
        }
        // Any country variant of the language, in key order so the choice is stable.
        const QString prefix = key + QLatin1Char('[') + lang + QLatin1Char('_');
        for (auto it = entry.values.lowerBound(prefix); it != entry.values.constEnd(); ++it) {
            if (!it.key().startsWith(prefix))
                break;
            if (!it.key().contains(QLatin1Char('@')))
                return it.value();
        }
    }
    const auto plain = entry.values.constFind(key);
    if (plain == entry.values.constEnd())
        return std::nullopt;
    return *plain;
}

} // namespace quelmo::linux_platform
