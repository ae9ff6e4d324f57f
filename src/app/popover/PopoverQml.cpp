#include "app/popover/PopoverQml.h"

#include "app/popover/CardShadowProvider.h"
#include "app/popover/LocalResourcesOnly.h"
#include "app/popover/SymbolImageProvider.h"

#include <QFont>
#include <QGuiApplication>
#include <QQmlEngine>

// Generated with the module: registers its C++ types. Referring to it keeps the registration in
// every program that links the popover.
void qml_register_types_Quelmo();

namespace quelmo {

void preparePopoverEngine(QQmlEngine& engine) {
    [[maybe_unused]] static volatile auto keepRegistration = &qml_register_types_Quelmo;
    static LocalResourcesOnly localOnly;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addUrlInterceptor(&localOnly);
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    engine.addImageProvider(QStringLiteral("cardshadow"), new CardShadowProvider);
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    // Digits of one width in every font: figures that change every second do not jitter. (Older
    // Qt cannot ask this of a font; the usual desktop fonts have such digits anyway.)
    QFont font = QGuiApplication::font();
    font.setFeature("tnum", 1);
    QGuiApplication::setFont(font);
#endif
}

} // namespace quelmo
