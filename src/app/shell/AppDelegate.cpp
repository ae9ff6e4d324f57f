#include "app/shell/AppDelegate.h"

#include "app/tray/ContextMenu.h"
#include "app/tray/StatusTitle.h"
#include "core/texts/Texts.h"

#include <QCoreApplication>

namespace quelmo {

AppDelegate::AppDelegate(Platform platform, Shell shell, QObject* parent)
    : QObject(parent), popover_([this](PopoverViewState& state) -> std::unique_ptr<PopoverSurface> {
          return shell_.makePopoverSurface ? shell_.makePopoverSurface(metrics_, state) : nullptr;
      }),
      metrics_(std::move(platform)), shell_(std::move(shell)) {
    connect(&popover_, &Popover::firstFrameShown, this, &AppDelegate::popoverFirstFrameShown);
    connect(&popover_, &Popover::didClose, this, &AppDelegate::popoverDidClose);
    connect(&popover_, &Popover::quitRequested, this, &AppDelegate::quit);
}

AppDelegate::~AppDelegate() {
    disconnect(&metrics_, nullptr, this, nullptr);
    popover_.discardSurface();
    delete contextMenu_;
}

QList<StatusMenuEntry> AppDelegate::contextMenuEntries() {
    return {{text(TextKey::quitNuvex), QKeySequence(Qt::CTRL | Qt::Key_Q)}};
}

void AppDelegate::applicationDidFinishLaunching() {
    statusItem_ = shell_.makeStatusItem ? shell_.makeStatusItem() : nullptr;
    if (statusItem_) {
        statusItem_->setTitle(QString());
        statusItem_->setMenu(contextMenuEntries());
        connect(statusItem_.get(), &StatusItem::clicked, this, &AppDelegate::togglePopover);
        connect(statusItem_.get(), &StatusItem::menuEntryTriggered, this,
                &AppDelegate::runMenuEntry);
    }

    connect(&metrics_, &SystemMetrics::ticked, this, &AppDelegate::updateStatusTitle);
    metrics_.start();
}

void AppDelegate::updateStatusTitle() {
    if (!statusItem_)
        return;
    statusItem_->setTitle(statusTitle(metrics_.cpuTotal(), metrics_.memFraction()));
}

void AppDelegate::togglePopover(StatusClick sender) {
    if (sender.button == StatusClick::Button::Right) {
        showContextMenu(sender.position);
        return;
    }
    if (!statusItem_)
        return;
    if (sender.late && !popover_.isShown() && closedAtMs_ >= 0 &&
        Popover::monotonicMs() - closedAtMs_ < lateClickMs)
        return;
    popover_.toggle(sender.position);
}

void AppDelegate::showPopover() {
    if (statusItem_)
        popover_.show(statusItem_->anchorHint());
}

void AppDelegate::showContextMenu(QPoint at) {
    delete contextMenu_;
    // Gone as soon as it is dismissed, so that a later left click toggles the popover again.
    contextMenu_ =
        new ContextMenu(contextMenuEntries(), [this](int index) { runMenuEntry(index); });
    contextMenu_->popup(at);
}

void AppDelegate::runMenuEntry(int index) {
    if (index == 0)
        quit();
}

void AppDelegate::quit() {
    if (shell_.terminate)
        shell_.terminate();
    else
        QCoreApplication::quit();
}

// The process table is read once the popover is on screen: its rows fill in a frame later, and
// the opening neither shares the processor with the read nor builds rows before its first frame.
void AppDelegate::popoverFirstFrameShown() {
    metrics_.setPollProcesses(true);
}

void AppDelegate::popoverDidClose() {
    closedAtMs_ = Popover::monotonicMs();
    metrics_.setPollProcesses(false);
}

} // namespace quelmo
