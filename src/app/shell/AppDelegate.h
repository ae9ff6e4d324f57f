#pragma once

#include "app/popover/Popover.h"
#include "app/tray/StatusItem.h"
#include "core/metrics/SystemMetrics.h"

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>

namespace quelmo {

// The application's delegate: owns the metrics hub and the popover, builds the status item
// once launching has finished, keeps the item's title current, opens and closes the popover on
// a left click, offers the one-item context menu on a right click, and switches the hub's
// process polling on from the open popover's first frame until it closes.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    // How the desktop-facing parts are made: the real tray item and QML window in the program,
    // stand-ins in tests.
    struct Shell {
        std::function<std::unique_ptr<StatusItem>()> makeStatusItem;
        std::function<std::unique_ptr<PopoverSurface>(SystemMetrics&, PopoverViewState&)>
            makePopoverSurface;
        // Ends the program; the application's quit when not given.
        std::function<void()> terminate;
    };

    // Constructs the hub from `platform` at once (the hub reads its settings then).
    AppDelegate(Platform platform, Shell shell, QObject* parent = nullptr);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    void togglePopover(StatusClick sender);
    void quit();
    void popoverFirstFrameShown();
    void popoverDidClose();
    // Opens the popover under the item, or keeps it open (another launch handing over).
    void showPopover();

    StatusItem* statusItem() const { return statusItem_.get(); }
    Popover& popover() { return popover_; }
    SystemMetrics& metrics() { return metrics_; }
    // The context menu while it is open.
    QMenu* contextMenu() const { return contextMenu_; }

    // The context menu's entries, in order: only "Quit Nuvex" (Ctrl+Q).
    static QList<StatusMenuEntry> contextMenuEntries();

private:
    void updateStatusTitle();
    void showContextMenu(QPoint at);
    void runMenuEntry(int index);

    // A click the host tells of late may come after the same click has already closed the
    // popover by taking the focus from it: it is then not one to open it again.
    static constexpr qint64 lateClickMs = 1000;

    std::unique_ptr<StatusItem> statusItem_;
    qint64 closedAtMs_ = -1;
    Popover popover_;
    SystemMetrics metrics_;
    Shell shell_;
    QPointer<QMenu> contextMenu_;
};

} // namespace quelmo
