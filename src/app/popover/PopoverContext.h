#pragma once

#include "app/popover/LoopClock.h"
#include "app/popover/PopoverReadings.h"
#include "app/popover/PopoverViewState.h"
#include "app/popover/ProcessListModel.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>
#include <functional>
#include <memory>

namespace quelmo {

// What the popover's views see besides the hub's readings: the top lists as models keyed by pid,
// the settings the footer changes (language, cat style, launch at login), the height limit of the
// screen it opens on, and the way out (Quit). One per popover window.
class PopoverContext : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    // The machine's readings. While the popover is hidden they stay as they were when it was
    // last shown, so the views do no work on the hub's ticks; showing it brings them up to date.
    Q_PROPERTY(quelmo::PopoverReadings* readings READ readings CONSTANT)
    Q_PROPERTY(quelmo::ProcessListModel* topCPU READ topCPU CONSTANT)
    Q_PROPERTY(quelmo::ProcessListModel* topMem READ topMem CONSTANT)
    Q_PROPERTY(QString langRaw READ langRaw WRITE setLangRaw NOTIFY langRawChanged)
    // "ko" or "en": the language every text is drawn in.
    Q_PROPERTY(QString lang READ lang NOTIFY langRawChanged)
    Q_PROPERTY(QStringList langChoices READ langChoices CONSTANT)
    // Where the stored choice stands among `langChoices` (an unknown one follows the system).
    Q_PROPERTY(int langChoiceIndex READ langChoiceIndex NOTIFY langRawChanged)
    Q_PROPERTY(QString catStyleRaw READ catStyleRaw WRITE setCatStyleRaw NOTIFY catStyleRawChanged)
    Q_PROPERTY(
        bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(double maxHeight READ maxHeight WRITE setMaxHeight NOTIFY maxHeightChanged)
    // True while the popover is on screen: animations and the mascot's timers run only then.
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY shownChanged)
    // The clock of the endless loops (logo, mascot): it runs only while the popover is shown.
    Q_PROPERTY(quelmo::LoopClock* loops READ loops CONSTANT)
    // The sections the user opened: kept by the popover across its windows.
    Q_PROPERTY(quelmo::PopoverViewState* viewState READ viewState CONSTANT)

public:
    struct Hooks {
        // Called after the language choice has changed and been stored.
        std::function<void()> languageChanged;
        // Launch at login: change it (true when the change took), and read the real state.
        std::function<bool(bool)> setLaunchAtLogin;
        std::function<bool()> launchAtLoginEnabled;
    };

    // Without hooks the real autostart entry is used and a language change asks nothing more.
    // Without a `viewState` (which must outlive the context) it keeps its own.
    explicit PopoverContext(Hooks hooks = {}, PopoverViewState* viewState = nullptr,
                            QObject* parent = nullptr);

    PopoverReadings* readings() { return &readings_; }
    // The latest readings: shown at once while the popover is, else when it next shows.
    void setReadings(const Readings& latest);
    ProcessListModel* topCPU() { return &topCPU_; }
    ProcessListModel* topMem() { return &topMem_; }

    QString langRaw() const { return langRaw_; }
    void setLangRaw(const QString& raw);
    QString lang() const;
    static QStringList langChoices();
    int langChoiceIndex() const;

    QString catStyleRaw() const { return catStyleRaw_; }
    void setCatStyleRaw(const QString& raw);

    bool launchAtLogin() const { return launchAtLogin_; }
    void setLaunchAtLogin(bool enabled);

    double maxHeight() const { return maxHeight_; }
    void setMaxHeight(double height);

    bool shown() const { return shown_; }
    void setShown(bool shown);

    LoopClock* loops() { return &loops_; }
    PopoverViewState* viewState() { return viewState_; }

    // Reads the stored settings and the launch-at-login state again (each time the popover is
    // about to show, so a change made elsewhere is seen).
    Q_INVOKABLE void reload();
    // The footer's Quit.
    Q_INVOKABLE void quit() { emit quitRequested(); }

signals:
    void langRawChanged();
    void catStyleRawChanged();
    void launchAtLoginChanged();
    void maxHeightChanged();
    void shownChanged();
    void quitRequested();

private:
    PopoverReadings readings_;
    Readings latest_;
    Hooks hooks_;
    ProcessListModel topCPU_;
    ProcessListModel topMem_;
    LoopClock loops_;
    PopoverViewState ownViewState_;
    PopoverViewState* viewState_;
    QString langRaw_;
    QString catStyleRaw_;
    bool launchAtLogin_ = false;
    double maxHeight_;
    bool shown_ = false;
};

} // namespace quelmo
