#include "app/popover/PopoverQml.h"

#include "app/popover/CardShadowProvider.h"
#include "app/popover/CleanupFeed.h"
#include "app/popover/LocalResourcesOnly.h"
#include "app/popover/MascotBehavior.h"
#include "app/popover/PopoverContext.h"
#include "app/popover/PopoverRulesObject.h"
#include "app/popover/ProcessListModel.h"
#include "app/popover/SymbolImageProvider.h"

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
        qmlRegisterUncreatableType<LoopClock>(uri, 1, 0, "LoopClock",
                                              QStringLiteral("made by the popover"));
        qmlRegisterUncreatableType<ProcessListModel>(uri, 1, 0, "ProcessListModel",
                                                     QStringLiteral("made by the popover"));
        qmlRegisterUncreatableType<PopoverContext>(uri, 1, 0, "PopoverContext",
                                                   QStringLiteral("made by the popover"));
        qmlRegisterUncreatableType<CleanupFeed>(uri, 1, 0, "CleanupFeed",
                                                QStringLiteral("made by the popover"));
        qmlRegisterUncreatableType<CandidateListModel>(uri, 1, 0, "CandidateListModel",
                                                       QStringLiteral("made by the popover"));
        qmlRegisterUncreatableType<CutSequence>(uri, 1, 0, "CutSequence",
                                                QStringLiteral("made by the popover"));
        return true;
    }();
    Q_UNUSED(typesRegistered);
    static LocalResourcesOnly localOnly;
    engine.addUrlInterceptor(&localOnly);
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    engine.addImageProvider(QStringLiteral("cardshadow"), new CardShadowProvider);
}

} // namespace quelmo
