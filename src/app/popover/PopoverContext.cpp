#include "app/popover/PopoverContext.h"

#include "app/popover/PopoverRules.h"
#include "core/settings/AppLang.h"
#include "core/settings/Preferences.h"

namespace quelmo {

PopoverContext::PopoverContext(Hooks hooks, PopoverViewState* viewState, QObject* parent)
    : QObject(parent), hooks_(std::move(hooks)), viewState_(viewState ? viewState : &ownViewState_),
      maxHeight_(PopoverRules::maxHeight(std::nullopt)) {
    // Without a record of the choice the switch stays off and cannot be turned on.
    if (!hooks_.setLaunchAtLogin)
        hooks_.setLaunchAtLogin = [](bool) { return false; };
    if (!hooks_.launchAtLoginEnabled)
        hooks_.launchAtLoginEnabled = [] { return false; };
    reload();
}

void PopoverContext::reload() {
    const QString lang = Preferences::langRaw();
    if (lang != langRaw_) {
        langRaw_ = lang;
        emit langRawChanged();
    }
    const QString style = Preferences::catStyleRaw();
    if (style != catStyleRaw_) {
        catStyleRaw_ = style;
        emit catStyleRawChanged();
    }
    const bool login = hooks_.launchAtLoginEnabled();
    if (login != launchAtLogin_) {
        launchAtLogin_ = login;
        emit launchAtLoginChanged();
    }
}

void PopoverContext::setLangRaw(const QString& raw) {
    if (raw == langRaw_)
        return;
    langRaw_ = raw;
    Preferences::setLangRaw(raw);
    emit langRawChanged();
    if (hooks_.languageChanged)
        hooks_.languageChanged();
}

QString PopoverContext::lang() const {
    return AppLang::resolve(langRaw_, AppLang::preferredLanguages());
}

QStringList PopoverContext::langChoices() {
    QStringList raws;
    for (const AppLang lang : AppLang::allCases())
        raws.append(lang.rawValue());
    return raws;
}

int PopoverContext::langChoiceIndex() const {
    const AppLang choice = AppLang::fromRaw(langRaw_).value_or(AppLang::automatic);
    return static_cast<int>(langChoices().indexOf(choice.rawValue()));
}

void PopoverContext::setCatStyleRaw(const QString& raw) {
    if (raw == catStyleRaw_)
        return;
    catStyleRaw_ = raw;
    Preferences::setCatStyleRaw(raw);
    emit catStyleRawChanged();
}

void PopoverContext::setLaunchAtLogin(bool enabled) {
    if (enabled == launchAtLogin_)
        return;
    launchAtLogin_ = enabled;
    emit launchAtLoginChanged();
    if (!hooks_.setLaunchAtLogin(enabled)) {
        // The switch never shows a state the system refused.
        launchAtLogin_ = hooks_.launchAtLoginEnabled();
        emit launchAtLoginChanged();
    }
}

void PopoverContext::setMaxHeight(double height) {
    if (height == maxHeight_)
        return;
    maxHeight_ = height;
    emit maxHeightChanged();
}

void PopoverContext::setReadings(const Readings& latest) {
    latest_ = latest;
    if (shown_)
        readings_.setValues(latest_);
}

void PopoverContext::setShown(bool shown) {
    if (shown == shown_)
        return;
    shown_ = shown;
    if (shown_)
        readings_.setValues(latest_);
    loops_.setRunning(shown_);
    emit shownChanged();
}

} // namespace quelmo
