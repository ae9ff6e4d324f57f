#include "app/preview/PopoverPreview.h"

#include "app/popover/CleanupFeed.h"
#include "app/popover/PopoverContext.h"
#include "app/popover/PopoverQml.h"
#include "app/popover/PopoverRules.h"
#include "app/preview/CleanupPreviewState.h"
#include "core/settings/AppLang.h"
#include "core/settings/Preferences.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <algorithm>
#include <cmath>

namespace quelmo {

namespace {

QList<ProcInfo> procsFrom(const QJsonArray& rows) {
    QList<ProcInfo> procs;
    for (const QJsonValue& value : rows) {
        const QJsonObject row = value.toObject();
        ProcInfo proc;
        proc.id = row.value(QStringLiteral("pid")).toInteger();
        proc.name = row.value(QStringLiteral("name")).toString();
        proc.cpu = row.value(QStringLiteral("cpu")).toDouble();
        proc.rss = row.value(QStringLiteral("rss")).toDouble();
        proc.user = row.value(QStringLiteral("user")).toString();
        procs.append(proc);
    }
    return procs;
}

} // namespace

QVariantMap PreviewState::defaultReadings() {
    return {
        {QStringLiteral("cpuTotal"), 0.0},
        {QStringLiteral("cpuPerCore"), QVariantList{}},
        {QStringLiteral("gpu"), 0.0},
        {QStringLiteral("aneLoad"), 0.0},
        {QStringLiteral("memUsed"), 0.0},
        {QStringLiteral("memTotal"), 1.0},
        {QStringLiteral("memFraction"), 0.0},
        {QStringLiteral("cpuWatts"), 0.0},
        {QStringLiteral("gpuWatts"), 0.0},
        {QStringLiteral("aneWatts"), 0.0},
        {QStringLiteral("dramWatts"), 0.0},
        {QStringLiteral("totalWatts"), 0.0},
        {QStringLiteral("chipName"), QString()},
        {QStringLiteral("coreSummary"), QString()},
        {QStringLiteral("sensitivity"), 0.5},
    };
}

PreviewState PreviewState::fromJson(const QJsonObject& json) {
    PreviewState state;
    state.readings = defaultReadings();
    const QVariantMap given = json.value(QStringLiteral("readings")).toObject().toVariantMap();
    for (auto it = given.begin(); it != given.end(); ++it)
        state.readings.insert(it.key(), it.value());
    state.view = json.value(QStringLiteral("view")).toString(state.view);
    state.topCPU = procsFrom(json.value(QStringLiteral("topCPU")).toArray());
    state.topMem = procsFrom(json.value(QStringLiteral("topMem")).toArray());
    state.lang = json.value(QStringLiteral("lang")).toString(state.lang);
    state.catStyle = json.value(QStringLiteral("catStyle")).toString(state.catStyle);
    for (const QJsonValue& section : json.value(QStringLiteral("expanded")).toArray())
        state.expanded.append(section.toString());
    state.launchAtLogin = json.value(QStringLiteral("launchAtLogin")).toBool();
    state.hasTargets = json.value(QStringLiteral("hasTargets")).toBool();
    if (json.contains(QStringLiteral("screenHeight")))
        state.screenHeight = json.value(QStringLiteral("screenHeight")).toDouble();
    const QStringList known{QStringLiteral("view"),       QStringLiteral("readings"),
                            QStringLiteral("topCPU"),     QStringLiteral("topMem"),
                            QStringLiteral("lang"),       QStringLiteral("catStyle"),
                            QStringLiteral("expanded"),   QStringLiteral("launchAtLogin"),
                            QStringLiteral("hasTargets"), QStringLiteral("screenHeight")};
    for (auto it = json.begin(); it != json.end(); ++it)
        if (!known.contains(it.key()))
            state.extra.insert(it.key(), it.value());
    return state;
}

namespace {

Readings readingsFrom(const QVariantMap& map) {
    const auto number = [&map](const char* key) {
        return map.value(QLatin1String(key)).toDouble();
    };
    QList<double> perCore;
    for (const QVariant& core : map.value(QStringLiteral("cpuPerCore")).toList())
        perCore.append(core.toDouble());
    return {.cpuTotal = number("cpuTotal"),
            .cpuPerCore = perCore,
            .gpu = number("gpu"),
            .aneLoad = number("aneLoad"),
            .memUsed = number("memUsed"),
            .memTotal = number("memTotal"),
            .memFraction = number("memFraction"),
            .cpuWatts = number("cpuWatts"),
            .gpuWatts = number("gpuWatts"),
            .aneWatts = number("aneWatts"),
            .dramWatts = number("dramWatts"),
            .totalWatts = number("totalWatts"),
            .chipName = map.value(QStringLiteral("chipName")).toString(),
            .coreSummary = map.value(QStringLiteral("coreSummary")).toString()};
}

} // namespace

PopoverPreview::PopoverPreview(const PreviewState& state) {

    // The preview's settings: stored where the caller keeps them (a private folder), read back
    // by the context like the program's own.
    Preferences::setLangRaw(state.lang);
    Preferences::setCatStyleRaw(state.catStyle);
    const bool login = state.launchAtLogin;
    context_ = std::make_unique<PopoverContext>(
        PopoverContext::Hooks{.languageChanged = {},
                              .setLaunchAtLogin = [](bool) { return true; },
                              .launchAtLoginEnabled = [login] { return login; }});
    // Shown once to take the readings, then still: the loops would make every picture different.
    context_->setReadings(readingsFrom(state.readings));
    context_->setShown(true);
    context_->topCPU()->setRows(state.topCPU);
    context_->topMem()->setRows(state.topMem);
    context_->setMaxHeight(PopoverRules::maxHeight(state.screenHeight));
    // Still: the loops would make every picture different.
    context_->setShown(false);

    const CleanupPreviewState cleanup = CleanupPreviewState::fromJson(state.extra);
    context_->viewState()->setExpanded(state.expanded);
    context_->viewState()->setShowCriteria(cleanup.showCriteria);
    cleanup_ = std::make_unique<CleanupFeed>(
        [this, rows = cleanup.candidates,
         verdicts = cleanup.verdicts](const QList<ProcessIdentity>& targets) mutable {
            rows.removeIf([&targets](const CleanupCandidate& c) {
                return std::any_of(targets.begin(), targets.end(),
                                   [&c](const ProcessIdentity& t) { return t.pid == c.id(); });
            });
            cleanup_->setCandidates(rows, verdicts);
        });
    cleanup_->setAdvisorStatus(cleanup.live, cleanup.captured);
    if (cleanup.sensitivity)
        cleanup_->setSensitivity(*cleanup.sensitivity);
    cleanup_->setCandidates(cleanup.candidates, cleanup.verdicts);

    window_ = std::make_unique<QQuickView>();
    window_->setColor(Qt::transparent);
    window_->setResizeMode(QQuickView::SizeViewToRootObject);
    preparePopoverEngine(*window_->engine());
    if (state.view == QLatin1String("mascot")) {
        auto* sheet = new QQmlComponent(window_->engine(),
                                        QUrl(QString::fromLatin1(mascotSheetUrl)), window_.get());
        auto* item = qobject_cast<QQuickItem*>(
            sheet->createWithInitialProperties({{QStringLiteral("hasTargets"), state.hasTargets}}));
        if (item)
            window_->setContent(QUrl(), sheet, item);
        else
            errors_ = sheet->errorString();
    } else {
        window_->setInitialProperties(
            {{QStringLiteral("context"), QVariant::fromValue(context_.get())},
             {QStringLiteral("cleanup"), QVariant::fromValue(cleanup_.get())},
             {QStringLiteral("hoveredID"), static_cast<int>(cleanup.hovered)}});
        window_->setSource(QUrl(QString::fromLatin1(popoverViewUrl)));
        for (const QQmlError& error : window_->errors())
            errors_ += error.toString() + QLatin1Char('\n');
    }
}

PopoverPreview::~PopoverPreview() {
    window_.reset();
}

QQuickItem* PopoverPreview::root() const {
    return window_->rootObject();
}

QImage PopoverPreview::render() {
    QQuickItem* item = root();
    if (!item)
        return {};
    // The popover asks for its size; the mascot sheet has a fixed one.
    const auto side = [](qreal implicit, qreal fixed) {
        return static_cast<int>(std::ceil(implicit > 0 ? implicit : fixed));
    };
    const QSize size(side(item->implicitWidth(), item->width()),
                     side(item->implicitHeight(), item->height()));
    item->setSize(size);
    window_->resize(size);
    window_->show();
    QCoreApplication::processEvents();
    return window_->grabWindow();
}

} // namespace quelmo
