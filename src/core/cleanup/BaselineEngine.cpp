#include "core/cleanup/BaselineEngine.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QSettings>
#include <cmath>
#include <iterator>

namespace quelmo {

namespace {

constexpr double bytesPerGiB = 1073741824.0;

// A JSON number that is a whole number within the 64-bit range.
std::optional<qint64> wholeNumber(const QJsonValue& value) {
    if (!value.isDouble())
        return std::nullopt;
    const double d = value.toDouble();
    if (std::floor(d) != d || d < -9223372036854775808.0 || d >= 9223372036854775808.0)
        return std::nullopt;
    return value.toInteger();
}

} // namespace

BaselineEngine::BaselineEngine(QString defaultsKey) : defaultsKey_(std::move(defaultsKey)) {
    load();
}

std::optional<QHash<QString, BaselineEngine::Stat>>
BaselineEngine::decode(const QByteArray& document) {
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError || !json.isObject())
        return std::nullopt;
    QHash<QString, Stat> decoded;
    const QJsonObject members = json.object();
    for (auto it = members.constBegin(); it != members.constEnd(); ++it) {
        if (!it->isObject())
            return std::nullopt;
        const QJsonObject fields = it->toObject();
        const QJsonValue mean = fields.value(QLatin1String("mean"));
        const QJsonValue meanSq = fields.value(QLatin1String("meanSq"));
        const std::optional<qint64> samples = wholeNumber(fields.value(QLatin1String("samples")));
        if (!mean.isDouble() || !meanSq.isDouble() || !samples)
            return std::nullopt;
        decoded.insert(it.key(), Stat{mean.toDouble(), meanSq.toDouble(), *samples});
    }
    return decoded;
}

std::optional<QByteArray> BaselineEngine::encode(const QHash<QString, Stat>& baselines) {
    QJsonObject members;
    for (auto it = baselines.constBegin(); it != baselines.constEnd(); ++it) {
        // JSON has no spelling for infinities or NaN: such a document is not written at all.
        if (!std::isfinite(it->mean) || !std::isfinite(it->meanSq))
            return std::nullopt;
        members.insert(it.key(), QJsonObject{{QLatin1String("mean"), it->mean},
                                             {QLatin1String("meanSq"), it->meanSq},
                                             {QLatin1String("samples"), it->samples}});
    }
    return QJsonDocument(members).toJson(QJsonDocument::Compact);
}

void BaselineEngine::load() {
    const QVariant stored = QSettings().value(defaultsKey_);
    if (stored.metaType().id() != QMetaType::QByteArray)
        return;
    if (auto decoded = decode(stored.toByteArray()))
        baselines_ = std::move(*decoded);
}

void BaselineEngine::save() const {
    if (const auto document = encode(baselines_))
        QSettings().setValue(defaultsKey_, *document);
}

void BaselineEngine::observe(const std::vector<ProcInfo>& procs) {
    QSet<qint64> live;
    live.reserve(static_cast<qsizetype>(procs.size()));
    for (const ProcInfo& p : procs)
        live.insert(p.id);
    for (auto it = streak_.begin(); it != streak_.end();)
        it = live.contains(it.key()) ? std::next(it) : streak_.erase(it);

    constexpr double keep = 0.97; // 1 - alpha
    for (const ProcInfo& p : procs) {
        const auto found = baselines_.constFind(p.name);
        const Stat previous = found != baselines_.constEnd() ? *found : Stat{};
        const double m = keep * previous.mean;
        const double q = keep * previous.meanSq;
        baselines_.insert(p.name,
                          Stat{m + alpha * p.cpu, q + alpha * (p.cpu * p.cpu),
                               previous.samples >= maxSamples ? maxSamples : previous.samples + 1});
        qint64& busy = streak_[p.id];
        busy = p.cpu >= hotCPU ? busy + 1 : 0;
    }

    ++saveTick_;
    if (saveTick_ % saveEvery == 0)
        save();
}

std::optional<CleanupReason> BaselineEngine::reason(const ProcInfo& p) const {
    const double s = sensitivity_;
    const double k = static_cast<double>(streak(p.id));
    const double n = std::round(25.0 - 19.0 * s); // halves away from zero

    if (k >= n && p.cpu >= 40.0 - 25.0 * s)
        return CleanupReason::sustained;

    const auto stat = baselines_.constFind(p.name);
    if (stat != baselines_.constEnd() && stat->samples >= 20 && k > 4 && p.cpu >= 15.0) {
        const double d = std::sqrt(stat->meanSq - stat->mean * stat->mean);
        const double band = std::isfinite(d) && d > 2.0 ? d : 2.0;
        if (stat->mean + (4.0 - 2.0 * s) * band < p.cpu)
            return CleanupReason::spike;
    }

    if (p.rss >= (3.0 - 2.0 * s) * bytesPerGiB)
        return CleanupReason::ramHog;

    if (k >= n + 10.0 && p.cpu >= hotCPU)
        return CleanupReason::sustained;

    return std::nullopt;
}

} // namespace quelmo
