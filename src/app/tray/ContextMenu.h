#pragma once

#include "app/tray/StatusItem.h"

#include <QMenu>
#include <functional>

namespace quelmo {

// The status item's context menu as the program draws it itself (hosts that pass a right click
// on, and XEmbed trays). Qt only honours the shortcut of an action that also sits in a window,
// and this menu is the only window there is, so it answers its entries' shortcuts itself while
// it is open. It deletes itself once dismissed.
class ContextMenu : public QMenu {
    Q_OBJECT

public:
    ContextMenu(const QList<StatusMenuEntry>& entries, std::function<void(int)> choose);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace quelmo
