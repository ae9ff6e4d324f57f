#include "core/cleanup/BaselineEngine.h"

#include "core/settings/SettingsFile.h"
#include "core/settings/SettingsKeys.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QSettings>
#include <QThreadPool>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>

namespace quelmo {

namespace {

constexpr double bytesPerGiB = 1073741824.0;

// A JSON number that is a whole number within the 64-bit range.
std::optional<qint64> jsonWholeNumber(const QJsonValue& value) {
    if (!value.isDouble())
        return std::nullopt;
    const double d = value.toDouble();
    if (std::floor(d) != d || d < -9223372036854775808.0 || d >= 9223372036854775808.0)
        return std::nullopt;
    return value.toInteger();
}

} // namespace

BaselineEngine::BaselineEngine(QString defaultsKey, DayClock today)
    : defaultsKey_(std::move(defaultsKey)), today_(std::move(today)),
      writer_(std::make_unique<QThreadPool>()) {
    writer_->setMaxThreadCount(1);
    load();
}

BaselineEngine::~BaselineEngine() {
    waitForWrites();
}

void BaselineEngine::flush() {
    save();
    waitForWrites();
}

void BaselineEngine::waitForWrites() {
    writer_->waitForDone();
}

qint64 BaselineEngine::utcDay() {
    return QDateTime::currentSecsSinceEpoch() / 86400;
}

std::optional<qint64> BaselineEngine::lastSeen(const QString& name) const {
    const auto it = store_.lastSeen.constFind(name);
    if (it == store_.lastSeen.constEnd())
        return std::nullopt;
    return *it;
}

std::optional<BaselineEngine::Document> BaselineEngine::decode(const QByteArray& document,
                                                               qint64 today) {
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError || !json.isObject())
        return std::nullopt;
    Document decoded;
    const QJsonObject members = json.object();
    decoded.baselines.reserve(members.size());
    decoded.lastSeen.reserve(members.size());
    for (auto it = members.constBegin(); it != members.constEnd(); ++it) {
        if (!it->isObject())
            return std::nullopt;
        const QJsonObject fields = it->toObject();
        const QJsonValue mean = fields.value(QLatin1String("mean"));
        const QJsonValue meanSq = fields.value(QLatin1String("meanSq"));
        const std::optional<qint64> samples =
            jsonWholeNumber(fields.value(QLatin1String("samples")));
        if (!mean.isDouble() || !meanSq.isDouble() || !samples)
            return std::nullopt;
        // Written by older versions without it: the entry counts as seen today.
        const QJsonValue seen = fields.value(QLatin1String("lastSeen"));
        const std::optional<qint64> seenDay = seen.isUndefined() ? today : jsonWholeNumber(seen);
        if (!seenDay)
            return std::nullopt;
        decoded.baselines.insert(it.key(), Stat{mean.toDouble(), meanSq.toDouble(), *samples});
        decoded.lastSeen.insert(it.key(), *seenDay);
    }
    return decoded;
}

std::optional<QByteArray> BaselineEngine::encode(const Document& document) {
    QJsonObject members;
    for (auto it = document.baselines.constBegin(); it != document.baselines.constEnd(); ++it) {
        // JSON has no spelling for infinities or NaN: such a document is not written at all.
        if (!std::isfinite(it->mean) || !std::isfinite(it->meanSq))
            return std::nullopt;
        members.insert(it.key(),
                       QJsonObject{{QLatin1String("mean"), it->mean},
                                   {QLatin1String("meanSq"), it->meanSq},
                                   {QLatin1String("samples"), it->samples},
                                   {QLatin1String("lastSeen"), document.lastSeen.value(it.key())}});
    }
    return QJsonDocument(members).toJson(QJsonDocument::Compact);
}

void BaselineEngine::prune(Document& document, qint64 today) {
    for (auto it = document.baselines.begin(); it != document.baselines.end();) {
        const qint64 idle = today - document.lastSeen.value(it.key(), today);
        const qint64 limit = it->samples < spikeSamples ? youngIdleDays : maxIdleDays;
        if (idle > limit) {
            document.lastSeen.remove(it.key());
            it = document.baselines.erase(it);
        } else {
            ++it;
        }
    }
    const qsizetype excess = document.baselines.size() - maxEntries;
    if (excess <= 0)
        return;
    struct Age {
        qint64 lastSeen;
        qint64 samples;
        QString name;
    };
    std::vector<Age> ages;
    ages.reserve(static_cast<std::size_t>(document.baselines.size()));
    for (auto it = document.baselines.constBegin(); it != document.baselines.constEnd(); ++it)
        ages.push_back({document.lastSeen.value(it.key(), today), it->samples, it.key()});
    const auto older = [](const Age& a, const Age& b) {
        return std::tie(a.lastSeen, a.samples, a.name) < std::tie(b.lastSeen, b.samples, b.name);
    };
    const auto cut = ages.begin() + excess;
    std::nth_element(ages.begin(), cut, ages.end(), older);
    for (auto it = ages.begin(); it != cut; ++it) {
        document.baselines.remove(it->name);
        document.lastSeen.remove(it->name);
    }
}

std::unique_ptr<QSettings> BaselineEngine::openStore() {
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                       QCoreApplication::organizationName(),
                                       QLatin1String(SettingsKeys::baselinesFile));
}

void BaselineEngine::load() {
    const std::unique_ptr<QSettings> store = openStore();
    QVariant stored = store->value(defaultsKey_);
    if (!stored.isValid()) {
        // Earlier versions kept the document in the settings file itself: it moves out, as it is.
        QSettings settings;
        stored = settings.value(defaultsKey_);
        if (stored.isValid()) {
            store->setValue(defaultsKey_, stored);
            store->sync();
            settings.remove(defaultsKey_);
        }
    }
    if (stored.metaType().id() != QMetaType::QByteArray)
        return;
    const qint64 today = today_();
    if (auto decoded = decode(stored.toByteArray(), today)) {
        prune(*decoded, today);
        store_ = std::move(*decoded);
    }
}

void BaselineEngine::save() {
    // The document has a file of its own; the other settings are put back with it if their
    // file has gone.
    SettingsFile::restoreIfLost();
    prune(store_, today_());
    // The copy shares the tables with the store until the next observation changes them.
    writer_->start([document = store_, key = defaultsKey_] {
        if (const auto bytes = encode(document))
            openStore()->setValue(key, *bytes);
    });
}

void BaselineEngine::observe(const std::vector<ProcInfo>& procs) {
    QSet<qint64> live;
    live.reserve(static_cast<qsizetype>(procs.size()));
    for (const ProcInfo& p : procs)
        live.insert(p.id);
    for (auto it = streak_.begin(); it != streak_.end();)
        it = live.contains(it.key()) ? std::next(it) : streak_.erase(it);

    constexpr double keep = 0.97; // 1 - alpha
    const qint64 today = procs.empty() ? 0 : today_();
    for (const ProcInfo& p : procs) {
        const auto found = store_.baselines.constFind(p.name);
        const Stat previous = found != store_.baselines.constEnd() ? *found : Stat{};
        const double m = keep * previous.mean;
        const double q = keep * previous.meanSq;
        store_.lastSeen.insert(p.name, today);
        store_.baselines.insert(
            p.name, Stat{m + alpha * p.cpu, q + alpha * (p.cpu * p.cpu),
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

    const auto stat = store_.baselines.constFind(p.name);
    if (stat != store_.baselines.constEnd() && stat->samples >= spikeSamples && k > 4 &&
        p.cpu >= 15.0) {
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
