#include "app/popover/QuickPopoverSurface.h"

#include "app/popover/CleanupFeed.h"
#include "app/popover/Popover.h"
#include "app/popover/PopoverContext.h"
#include "app/popover/PopoverPlacement.h"
#include "app/popover/PopoverQml.h"
#include "app/popover/PopoverRules.h"
#include "app/popover/PopoverScreens.h"
#include "app/shell/X11Desktop.h"
#include "core/metrics/SystemMetrics.h"
#include "core/settings/LoginItem.h"
#include "platform/linux/wayland/SwayWindowPlacer.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QScreen>
#include <cmath>
#include <utility>

namespace quelmo {

namespace {

Readings readingsOf(const SystemMetrics& hub) {
    return {.cpuTotal = hub.cpuTotal(),
            .cpuPerCore = hub.cpuPerCore(),
            .gpu = hub.gpu(),
            .aneLoad = hub.aneLoad(),
            .memUsed = hub.memUsed(),
            .memTotal = hub.memTotal(),
            .memFraction = hub.memFraction(),
            .cpuWatts = hub.cpuWatts(),
            .gpuWatts = hub.gpuWatts(),
            .aneWatts = hub.aneWatts(),
            .dramWatts = hub.dramWatts(),
            .totalWatts = hub.totalWatts(),
            .chipName = hub.chipName(),
            .coreSummary = hub.coreSummary()};
}

} // namespace

class QuickPopoverSurface::Window : public QQuickView {
public:
    explicit Window(QuickPopoverSurface& owner) : owner_(owner) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        QQuickView::keyPressEvent(event);
        if (!event->isAccepted() && event->key() == Qt::Key_Escape) {
            event->accept();
            owner_.closeBy(CloseReason::Escape);
        }
    }

private:
    QuickPopoverSurface& owner_;
};

QuickPopoverSurface::QuickPopoverSurface(SystemMetrics& metrics,
                                         std::unique_ptr<LoginItemService> loginItem,
                                         PopoverViewState& viewState, QObject* parent)
    : PopoverSurface(parent), window_(std::make_unique<Window>(*this)),
      loginItem_(std::move(loginItem)) {
    PopoverContext::Hooks hooks;
    hooks.setLaunchAtLogin = [this](bool enabled) { return LoginItem::set(*loginItem_, enabled); };
    hooks.launchAtLoginEnabled = [this] { return loginItem_->isEnabled(); };
    // Verdicts are asked for again in the new language.
    hooks.languageChanged = [&metrics] { metrics.reevaluateAI(); };
    context_ = new PopoverContext(std::move(hooks), &viewState, this);
    context_->setReadings(readingsOf(metrics));
    connect(&metrics, &SystemMetrics::ticked, context_,
            [this, &metrics] { context_->setReadings(readingsOf(metrics)); });
    connect(&metrics, &SystemMetrics::topCPUChanged, context_,
            [this, &metrics] { context_->topCPU()->setRows(metrics.topCPU()); });
    connect(&metrics, &SystemMetrics::topMemChanged, context_,
            [this, &metrics] { context_->topMem()->setRows(metrics.topMem()); });
    context_->topCPU()->setRows(metrics.topCPU());
    context_->topMem()->setRows(metrics.topMem());
    connect(context_, &PopoverContext::quitRequested, this, &PopoverSurface::quitRequested);
    cleanup_ = new CleanupFeed(metrics, this);

    QQuickView& w = *window_;
    w.setTitle(QStringLiteral("Quelmo"));
    w.setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    w.setColor(Qt::transparent);
    w.setResizeMode(QQuickView::SizeRootObjectToView);
    preparePopoverEngine(*w.engine());
    w.setInitialProperties({{QStringLiteral("context"), QVariant::fromValue(context_)},
                            {QStringLiteral("cleanup"), QVariant::fromValue(cleanup_)}});
    w.setSource(QUrl(QString::fromLatin1(popoverViewUrl)));
    connect(
        &w, &QQuickWindow::frameSwapped, this,
        [this] {
            if (std::exchange(awaitingFirstFrame_, false))
                emit firstFrameShown();
        },
        Qt::QueuedConnection);
    // On the GUI thread, before the frame takes in the scene: loop steps due in a moment come
    // along on this frame instead of drawing one more.
    connect(&w, &QQuickWindow::afterAnimating, context_->loops(), &LoopClock::frameComing);
    if (QQuickItem* view = w.rootObject())
        connect(view, &QQuickItem::implicitHeightChanged, this, &QuickPopoverSurface::fitToContent);

    // The focus as the window manager sees it (its active window) where there is one: Qt's
    // activation state can lag behind it when the popover is hidden and shown again quickly,
    // and then misses the moment the focus leaves.
    activeWindow_ = new x11::ActiveWindowWatch(this);
    if (activeWindow_->isWatching())
        connect(activeWindow_, &x11::ActiveWindowWatch::changed, this,
                [this](quint32 active) { focusMoved(active == window_->winId()); });
    else
        connect(&w, &QWindow::activeChanged, this, [this] { focusMoved(window_->isActive()); });

    // sway centres the window whatever position it asks for; it is placed over sway's IPC.
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        compositorPlacer_ =
            linux_platform::SwayWindowPlacer::connect(qEnvironmentVariable("SWAYSOCK"));
}

QuickPopoverSurface::~QuickPopoverSurface() = default;

void QuickPopoverSurface::showAt(QPoint anchor) {
    anchor_ = anchor;
    compositorArea_.reset();
    QScreen* screen = QGuiApplication::screenAt(anchor);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    QQuickView& w = *window_;
    if (screen)
        w.setScreen(screen);
    context_->setMaxHeight(PopoverRules::maxHeight(
        screen ? std::optional<double>(screen->availableGeometry().height()) : std::nullopt));
    context_->reload();
    context_->setShown(true);
    awaitingFirstFrame_ = true;
    placeFrame();
    // Keep the panel out of taskbars and pagers: it belongs to the tray item, not to the window
    // list. (Window managers drop the state of a hidden window, so it is set on every show.)
    x11::skipTaskbarAndPager(w);
    w.show();
    w.raise();
    // The popover opens because of a click on the tray, which the program itself never saw;
    // asking the window manager as a pager would keeps focus-stealing prevention from
    // refusing the keyboard to it.
    if (!x11::activateAsPager(w))
        w.requestActivate();
    if (compositorPlacer_)
        compositorPlacer_->placeWhenMapped(
            static_cast<quint32>(w.winId()),
            [this](QPoint pointer, const QRect& area) -> std::optional<QPoint> {
                return placeForCompositor(pointer, area);
            });
}

QPoint QuickPopoverSurface::placeForCompositor(QPoint pointer, const QRect& area) {
    const QList<ScreenSpace> screens = popoverScreens();
    anchor_ = logicalFromDevice(pointer, screens).value_or(pointer);
    const QPoint topLeft = logicalFromDevice(area.topLeft(), screens).value_or(area.topLeft());
    const QPoint bottomRight =
        logicalFromDevice(area.bottomRight(), screens).value_or(area.bottomRight());
    compositorArea_ = QRect(topLeft, bottomRight);
    placeFrame();
    return deviceFromLogical(frame_.window.topLeft(), screens);
}

void QuickPopoverSurface::focusMoved(bool toThisWindow) {
    qCDebug(lcPopover) << "focus moved, to the popover:" << toThisWindow << "had it" << hadFocus_
                       << "visible" << window_->isVisible();
    if (toThisWindow)
        hadFocus_ = true;
    else if (hadFocus_ && window_->isVisible())
        closeBy(CloseReason::FocusLost);
}

namespace {

int viewHeight(const QQuickItem* view) {
    return view ? static_cast<int>(std::ceil(view->implicitHeight()))
                : static_cast<int>(PopoverRules::initialContentHeight);
}

} // namespace

void QuickPopoverSurface::placeFrame() {
    QQuickView& w = *window_;
    QQuickItem* view = w.rootObject();
    const int height = viewHeight(view);
    const QScreen* screen = w.screen();
    const QRect available = compositorArea_ ? *compositorArea_
                            : screen        ? screen->availableGeometry()
                                            : QRect(anchor_, QSize(width, height));
    frame_ = popoverFrame(anchor_, width, height,
                          static_cast<int>(std::ceil(context_->maxHeight())), available);
    if (view)
        view->setProperty("contentAtBottom", frame_.contentAtBottom);
    w.setMinimumSize(frame_.window.size());
    w.setMaximumSize(frame_.window.size());
    const QRect before = w.geometry();
    w.setGeometry(frame_.window);
    w.setMask(frame_.contentArea(height));
    if (compositorPlacer_ && w.isVisible() && before != frame_.window)
        compositorPlacer_->moveAgain(deviceFromLogical(frame_.window.topLeft(), popoverScreens()));
}

void QuickPopoverSurface::fitToContent() {
    const int height = viewHeight(window_->rootObject());
    if (!frame_.fits(height)) {
        placeFrame();
        return;
    }
    // Only the shape changes: no new buffer, and Qt Quick redraws just what changed.
    window_->setMask(frame_.contentArea(height));
}

void QuickPopoverSurface::hide() {
    hadFocus_ = false;
    if (compositorPlacer_)
        compositorPlacer_->forget();
    compositorArea_.reset();
    context_->setShown(false);
    window_->hide();
}

bool QuickPopoverSurface::isBusy() const {
    return cleanup_->cut()->catTravelY() != 0;
}

void QuickPopoverSurface::closeBy(CloseReason reason) {
    hide();
    emit closedByUser(reason);
}

} // namespace quelmo
