#include "app/preview/CleanupPreviewState.h"

#include <QJsonArray>

namespace quelmo {

CleanupPreviewState CleanupPreviewState::fromJson(const QJsonObject& state) {
    CleanupPreviewState preview;
    for (const QJsonValue& value : state.value(QLatin1String("candidates")).toArray()) {
        const QJsonObject row = value.toObject();
        CleanupCandidate c;
        c.proc.id = row.value(QLatin1String("pid")).toInteger();
        c.proc.name = row.value(QLatin1String("name")).toString();
        c.proc.rss = row.value(QLatin1String("rss")).toDouble();
        c.proc.cpu = row.value(QLatin1String("cpu")).toDouble();
        c.reason = cleanupReasonFromRaw(row.value(QLatin1String("reason")).toString())
                       .value_or(CleanupReason::sustained);
        if (row.contains(QLatin1String("idleMinutes")))
            c.idleMinutes = row.value(QLatin1String("idleMinutes")).toDouble();
        c.hasWindow = row.value(QLatin1String("hasWindow")).toBool();
        if (row.contains(QLatin1String("displayName")))
            c.displayName = row.value(QLatin1String("displayName")).toString();
        preview.candidates.append(c);
    }

    const QJsonObject judged = state.value(QLatin1String("verdicts")).toObject();
    for (auto it = judged.constBegin(); it != judged.constEnd(); ++it) {
        const QJsonObject v = it.value().toObject();
        const QString recommendation = v.value(QLatin1String("recommendation")).toString();
        preview.verdicts.insert(
            it.key(), AIVerdict{v.value(QLatin1String("explanation")).toString(),
                                recommendation == QLatin1String("cut"),
                                v.value(QLatin1String("risk")).toString(), recommendation});
    }

    const QJsonObject advisor = state.value(QLatin1String("advisor")).toObject();
    const bool available = advisor.value(QLatin1String("available")).toBool();
    const QString captured = advisor.value(QLatin1String("capturedReason")).toString();
    preview.live = {available, available ? QString() : captured};
    preview.captured = {captured.isEmpty(), captured};
    if (state.contains(QLatin1String("sensitivity")))
        preview.sensitivity = state.value(QLatin1String("sensitivity")).toDouble();
    preview.hovered = state.value(QLatin1String("hovered")).toInteger(-1);
    preview.showCriteria = state.value(QLatin1String("showCriteria")).toBool();
    return preview;
}

} // namespace quelmo
