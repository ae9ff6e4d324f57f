#include "app/popover/UiTexts.h"

#include "app/popover/CatStyle.h"
#include "app/popover/CleanupRules.h"
#include "core/settings/AppLang.h"
#include "core/texts/Texts.h"

namespace quelmo {

UiTexts::UiTexts(QObject* parent) : QObject(parent), language_(currentLanguage()) {}

QString UiTexts::lang() const {
    return language_ == Language::korean ? QStringLiteral("ko") : QStringLiteral("en");
}

void UiTexts::setLang(const QString& lang) {
    const Language language = lang == QLatin1String("ko") ? Language::korean : Language::english;
    if (language == language_)
        return;
    language_ = language;
    emit languageChanged();
}

QString UiTexts::of(TextKey key) const {
    return text(key, language_);
}

QStringList UiTexts::languageChoices() const {
    QStringList labels;
    for (const AppLang choice : AppLang::allCases())
        labels.append(choice.pickerLabel(language_));
    return labels;
}

QStringList UiTexts::catLabels() const {
    QStringList labels;
    for (const CatStyle style : CatStyle::allCases())
        labels.append(style.label(language_));
    return labels;
}

QVariantList UiTexts::criteriaItems() const {
    return cleanup_rules::criteriaItems(language_);
}

QString UiTexts::withTip(const QString& name, const QString& tip) const {
    return textWith(TextKey::nameWithTip, language_, name, tip);
}

QString UiTexts::withCount(const QString& name, int count) const {
    return textWith(TextKey::nameWithCount, language_, name, QString::number(count));
}

} // namespace quelmo
