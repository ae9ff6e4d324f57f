#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

namespace quelmo {

// A click on the status item, with the pointer's position on the screen.
struct StatusClick {
    enum class Button { Left, Right };
    Button button = Button::Left;
    QPoint position;
    // The host told of the click only a while after it happened (GNOME Shell waits out the
    // double-click time before it opens the item's menu, which is how the click is learnt).
    bool late = false;
};

// One entry of the status item's context menu.
struct StatusMenuEntry {
    QString title;
    QKeySequence shortcut;
};

// The program's item in the desktop's tray or panel: a scissors icon with a short text.
class StatusItem : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Shown beside the icon where the host shows labels, and as the tooltip everywhere.
    virtual void setTitle(const QString& title) = 0;
    // The context menu, for hosts that draw the menu themselves on a right click.
    virtual void setMenu(const QList<StatusMenuEntry>& entries) = 0;
    // Where to hang the popover when no click says where the item is: the last click on it,
    // else the item's own position when the tray tells it.
    virtual QPoint anchorHint() const = 0;

signals:
    // A left or right click, on release.
    void clicked(quelmo::StatusClick click);
    // An entry of a host-drawn context menu was chosen.
    void menuEntryTriggered(int index);
};

} // namespace quelmo

Q_DECLARE_METATYPE(quelmo::StatusClick)
