#include "app/popover/PopoverContext.h"
#include "app/preview/PopoverPreview.h"

#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QQuickView>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>

// Draws the popover from a state file into a PNG, without a tray or the machine's readings:
//
//     quelmo-preview STATE.json OUT.png [SCALE]
//     quelmo-preview STATE.json --show
//
// With --show the popover is put on the screen instead, animating, until the program is ended
// (for measuring its cost in a real window).
//
// STATE.json holds readings, top lists, language, cat style and expanded sections (see
// PreviewState); SCALE (default 2) is the pixel ratio of the picture.
int main(int argc, char* argv[]) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: quelmo-preview STATE.json OUT.png [SCALE]\n");
        return 2;
    }
    const bool show = QByteArray(argv[2]) == "--show";
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !show)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!show)
        qputenv("QT_SCALE_FACTOR", argc > 3 ? QByteArray(argv[3]) : QByteArray("2"));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("quelmo"));
    QGuiApplication::setApplicationName(QStringLiteral("quelmo"));

    // Never the user's own settings.
    QTemporaryDir settingsDir;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());

    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "quelmo-preview: cannot read %s\n", argv[1]);
        return 1;
    }
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!json.isObject()) {
        std::fprintf(stderr, "quelmo-preview: %s: %s\n", argv[1],
                     qPrintable(parseError.errorString()));
        return 1;
    }

    quelmo::PopoverPreview preview(quelmo::PreviewState::fromJson(json.object()));
    if (!preview.root()) {
        std::fprintf(stderr, "quelmo-preview: %s\n", qPrintable(preview.errors()));
        return 1;
    }
    if (show) {
        preview.context().setShown(true);
        // As tall as the popover may grow, like the program's window, so that the content
        // changes its height inside it without resizing it.
        preview.window().setResizeMode(QQuickView::SizeRootObjectToView);
        preview.window().resize(320, static_cast<int>(preview.context().maxHeight()));
        preview.window().show();
        return QGuiApplication::exec();
    }
    const QImage image = preview.render();
    if (image.isNull() || !image.save(QString::fromLocal8Bit(argv[2]))) {
        std::fprintf(stderr, "quelmo-preview: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
