#include "app/preview/PopoverPreview.h"

#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>

// Draws the popover from a state file into a PNG, without a tray or the machine's readings:
//
//     quelmo-preview STATE.json OUT.png [SCALE]
//
// STATE.json holds readings, top lists, language, cat style and expanded sections (see
// PreviewState); SCALE (default 2) is the pixel ratio of the picture.
int main(int argc, char* argv[]) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: quelmo-preview STATE.json OUT.png [SCALE]\n");
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
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
    const QImage image = preview.render();
    if (image.isNull() || !image.save(QString::fromLocal8Bit(argv[2]))) {
        std::fprintf(stderr, "quelmo-preview: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
