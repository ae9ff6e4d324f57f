#include "app/popover/PopoverContext.h"

#include "app/popover/PopoverRules.h"
#include "core/settings/AppLang.h"
#include "core/settings/Preferences.h"

#include <QMetaProperty>
#include <QQmlPropertyMap>

namespace quelmo {

PopoverContext::PopoverContext(QObject* metrics, Hooks hooks, QObject* parent)
    : QObject(parent), metrics_(metrics), hooks_(std::move(hooks)),
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

QObject* PopoverContext::metrics() const {
    return shown_ || !stillMetrics_ ? metrics_.data() : stillMetrics_.get();
}

namespace {

// The readable properties of `source` at this moment, as a map QML reads like the object itself.
std::unique_ptr<QObject> stillCopy(const QObject& source) {
    auto copy = std::make_unique<QQmlPropertyMap>();
    const QMetaObject* meta = source.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        copy->insert(QString::fromLatin1(property.name()), property.read(&source));
    }
    return copy;
}

} // namespace

void PopoverContext::setShown(bool shown) {
    if (shown == shown_)
        return;
    shown_ = shown;
    if (!shown_ && metrics_)
        stillMetrics_ = stillCopy(*metrics_);
    emit metricsChanged();
    if (shown_)
        stillMetrics_.reset();
    loops_.setRunning(shown_);
    emit shownChanged();
}

} // namespace quelmo
