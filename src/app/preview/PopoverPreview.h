#pragma once

#include "core/metrics/ProcInfo.h"

#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QStringList>
#include <QVariantMap>
#include <memory>

class QQuickItem;
class QQuickView;

namespace quelmo {

class CleanupFeed;
class PopoverContext;

// What the preview draws: the hub's readings, the top lists, the settings and the view state.
// Every field has a default, so a state file names only what it wants to show. Fields the
// preview does not know yet are kept in `extra` for the views that will read them.
struct PreviewState {
    // "popover" (PopoverView) or "mascot" (the four cat styles' mascots side by side).
    QString view = QStringLiteral("popover");
    QVariantMap readings;
    QList<ProcInfo> topCPU;
    QList<ProcInfo> topMem;
    QString lang = QStringLiteral("en");
    QString catStyle = QStringLiteral("white");
    QStringList expanded;
    bool launchAtLogin = false;
    // The mascot sheet: whether the cats have something to cut (awake), and the screen height the
    // popover's limit is taken from (none: no screen).
    bool hasTargets = false;
    std::optional<double> screenHeight;
    QJsonObject extra;

    static PreviewState fromJson(const QJsonObject& json);
    // The readings every view expects, with neutral values.
    static QVariantMap defaultReadings();
};

// Builds the popover's views from a state, without a tray or the machine's readings, and draws
// them into an image. Needs a QGuiApplication (the offscreen platform will do).
class PopoverPreview {
public:
    explicit PopoverPreview(const PreviewState& state);
    ~PopoverPreview();

    // The QML root: PopoverView, or the mascot sheet. Null when the QML failed to load.
    QQuickItem* root() const;
    QQuickView& window() { return *window_; }
    PopoverContext& context() { return *context_; }
    // The cleanup card's feed: cutting a row removes it, as the hub would.
    CleanupFeed& cleanup() { return *cleanup_; }
    // Error text of a failed load.
    QString errors() const { return errors_; }

    // Lays out and draws the view at its own size.
    QImage render();

private:
    std::unique_ptr<PopoverContext> context_;
    std::unique_ptr<CleanupFeed> cleanup_;
    std::unique_ptr<QQuickView> window_;
    QString errors_;
};

} // namespace quelmo
