#include "core/cleanup/FocusTracker.h"

#include "core/cleanup/DesktopSession.h"
#include "core/settings/SettingsFile.h"
#include "core/settings/SettingsKeys.h"

#include <QDateTime>
#include <QVariantMap>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace quelmo {

namespace {

bool isNumber(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

} // namespace

FocusTracker::FocusTracker(DesktopSession* desktop) : history_(std::make_shared<History>()) {
    history_->load();
    if (!desktop)
        return;
    if (const auto front = desktop->frontmostAppId(); front && !front->isEmpty())
        history_->lastActive.insert(*front, nowSeconds()); // a seed, not worth a write

    std::weak_ptr<History> weakHistory = history_;
    desktop->setActivationHandler([weakHistory](const QString& appId) {
        const std::shared_ptr<History> history = weakHistory.lock();
        if (!history || appId.isEmpty())
            return;
        history->lastActive.insert(appId, nowSeconds());
        history->save();
    });
}

FocusTracker::~FocusTracker() = default;

std::optional<double> FocusTracker::lastActiveSeconds(const QString& appId) const {
    const auto it = history_->lastActive.constFind(appId);
    if (it == history_->lastActive.constEnd())
        return std::nullopt;
    return *it;
}

double FocusTracker::nowSeconds() {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

std::optional<QHash<QString, double>> FocusTracker::decodeHistory(const QVariant& stored) {
    if (stored.metaType().id() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap map = stored.toMap();
    QHash<QString, double> decoded;
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        // One value that is not a usable instant discards the whole stored history.
        if (!isNumber(*it))
            return std::nullopt;
        const double seconds = it->toDouble();
        if (!std::isfinite(seconds))
            return std::nullopt;
        decoded.insert(it.key(), seconds);
    }
    return decoded;
}

void FocusTracker::History::load() {
    auto stored = decodeHistory(SettingsFile::value(SettingsKeys::focusLastActive));
    if (!stored)
        return;
    lastActive = std::move(*stored);
    trim();
}

void FocusTracker::History::merge(const QHash<QString, double>& other) {
    for (auto it = other.constBegin(); it != other.constEnd(); ++it) {
        const auto ours = lastActive.constFind(it.key());
        if (ours == lastActive.constEnd() || *ours < *it)
            lastActive.insert(it.key(), *it);
    }
}

void FocusTracker::History::trim() {
    const qsizetype excess = lastActive.size() - maxEntries;
    if (excess <= 0)
        return;
    std::vector<std::pair<double, QString>> byTime;
    byTime.reserve(static_cast<std::size_t>(lastActive.size()));
    for (auto it = lastActive.constBegin(); it != lastActive.constEnd(); ++it)
        byTime.emplace_back(*it, it.key());
    const auto cut = byTime.begin() + excess;
    std::nth_element(byTime.begin(), cut, byTime.end());
    for (auto it = byTime.begin(); it != cut; ++it)
        lastActive.remove(it->second);
}

void FocusTracker::History::save() {
    // Another instance of the user's (another seat, a remote session) may have stored its own
    // activations since: both are kept, the later time of each application winning.
    if (const auto stored = decodeHistory(SettingsFile::value(SettingsKeys::focusLastActive)))
        merge(*stored);
    trim();
    QVariantMap map;
    for (auto it = lastActive.constBegin(); it != lastActive.constEnd(); ++it)
        map.insert(it.key(), *it);
    SettingsFile::setValue(SettingsKeys::focusLastActive, map);
}

} // namespace quelmo
