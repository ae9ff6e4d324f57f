#include "app/tray/ContextMenu.h"

#include <QKeyEvent>

namespace quelmo {

ContextMenu::ContextMenu(const QList<StatusMenuEntry>& entries, std::function<void(int)> choose) {
    for (int index = 0; index < entries.size(); ++index) {
        QAction* action = addAction(entries[index].title);
        action->setShortcut(entries[index].shortcut);
        connect(action, &QAction::triggered, this, [choose, index] { choose(index); });
    }
    connect(this, &QMenu::aboutToHide, this, &QObject::deleteLater);
}

void ContextMenu::keyPressEvent(QKeyEvent* event) {
    const QKeySequence pressed(event->keyCombination());
    for (QAction* action : actions()) {
        if (!action->shortcut().isEmpty() && action->shortcut() == pressed) {
            event->accept();
            hide();
            action->trigger();
            return;
        }
    }
    QMenu::keyPressEvent(event);
}

} // namespace quelmo
