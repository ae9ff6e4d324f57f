#include "popover/PopoverQml.h"

#include "popover/CardShadowProvider.h"
#include "popover/MascotBehavior.h"
#include "popover/PopoverContext.h"
#include "popover/PopoverRulesObject.h"
#include "popover/ProcessListModel.h"
#include "popover/SymbolImageProvider.h"

#include <QQmlEngine>

namespace quelmo {

void registerPopoverQml(QQmlEngine& engine) {
    static const bool typesRegistered = [] {
        const char* uri = "Quelmo";
        qmlRegisterSingletonType<PopoverRulesObject>(
            uri, 1, 0, "Rules",
            [](QQmlEngine*, QJSEngine*) -> QObject* { return new PopoverRulesObject; });
        qmlRegisterSingletonType(QUrl(QStringLiteral("qrc:/quelmo/qml/Palette.qml")), uri, 1, 0,
                                 "Palette");
        qmlRegisterType<MascotBehavior>(uri, 1, 0, "MascotBehavior");
        qmlRegisterUncreatableType<ProcessListModel>(uri, 1, 0, "ProcessListModel",
                                                     QStringLiteral("made by the popover"));
        qmlRegisterUncreatableType<PopoverContext>(uri, 1, 0, "PopoverContext",
                                                   QStringLiteral("made by the popover"));
        return true;
    }();
    Q_UNUSED(typesRegistered);
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    engine.addImageProvider(QStringLiteral("cardshadow"), new CardShadowProvider);
}

} // namespace quelmo
