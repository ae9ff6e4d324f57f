#pragma once

#include "core/texts/Language.h"
#include "core/texts/TextKey.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The program's texts as the QML singleton `Texts`: one property per text the views show, all in
// the language of `lang` and all changing together when it changes. The views bind to these and
// hold no words of their own.
class UiTexts : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Texts)
    QML_SINGLETON
    // "ko" or "en", the language the popover draws in (anything else is English).
    Q_PROPERTY(QString lang READ lang WRITE setLang NOTIFY languageChanged)
    Q_PROPERTY(QString appName READ appName NOTIFY languageChanged)
    Q_PROPERTY(QString totalPower READ totalPower NOTIFY languageChanged)
    Q_PROPERTY(QString power READ power NOTIFY languageChanged)
    Q_PROPERTY(QString cpu READ cpu NOTIFY languageChanged)
    Q_PROPERTY(QString gpu READ gpu NOTIFY languageChanged)
    Q_PROPERTY(QString neuralEngine READ neuralEngine NOTIFY languageChanged)
    Q_PROPERTY(QString ane READ ane NOTIFY languageChanged)
    Q_PROPERTY(QString memory READ memory NOTIFY languageChanged)
    Q_PROPERTY(QString ram READ ram NOTIFY languageChanged)
    Q_PROPERTY(QString language READ language NOTIFY languageChanged)
    Q_PROPERTY(QString cat READ cat NOTIFY languageChanged)
    Q_PROPERTY(QString launchAtLogin READ launchAtLogin NOTIFY languageChanged)
    Q_PROPERTY(QString updatedEverySecond READ updatedEverySecond NOTIFY languageChanged)
    Q_PROPERTY(QString quit READ quit NOTIFY languageChanged)
    Q_PROPERTY(QString showPerProcessUsage READ showPerProcessUsage NOTIFY languageChanged)
    Q_PROPERTY(QString collecting READ collecting NOTIFY languageChanged)
    Q_PROPERTY(QString cutPick READ cutPick NOTIFY languageChanged)
    Q_PROPERTY(QString cutAll READ cutAll NOTIFY languageChanged)
    Q_PROPERTY(QString cut READ cut NOTIFY languageChanged)
    Q_PROPERTY(QString keep READ keep NOTIFY languageChanged)
    Q_PROPERTY(QString cutKeptTip READ cutKeptTip NOTIFY languageChanged)
    Q_PROPERTY(QString cutNowTip READ cutNowTip NOTIFY languageChanged)
    Q_PROPERTY(QString nothingToCleanUp READ nothingToCleanUp NOTIFY languageChanged)
    Q_PROPERTY(QString judgedByAI READ judgedByAI NOTIFY languageChanged)
    Q_PROPERTY(QString aiNotesOff READ aiNotesOff NOTIFY languageChanged)
    Q_PROPERTY(QString onDevice READ onDevice NOTIFY languageChanged)
    Q_PROPERTY(QString seeHowItDecides READ seeHowItDecides NOTIFY languageChanged)
    Q_PROPERTY(QString howItPicks READ howItPicks NOTIFY languageChanged)
    Q_PROPERTY(QString aiIsThinking READ aiIsThinking NOTIFY languageChanged)
    Q_PROPERTY(QString sensitivity READ sensitivity NOTIFY languageChanged)
    Q_PROPERTY(QString lax READ lax NOTIFY languageChanged)
    Q_PROPERTY(QString keen READ keen NOTIFY languageChanged)
    // The language picker's entries, in the order of its choices.
    Q_PROPERTY(QStringList languageChoices READ languageChoices NOTIFY languageChanged)
    // The cat styles' names, in the order of the swatches.
    Q_PROPERTY(QStringList catLabels READ catLabels NOTIFY languageChanged)
    // The selection criteria: items {symbol, color, title, detail, groupEnd}.
    Q_PROPERTY(QVariantList criteriaItems READ criteriaItems NOTIFY languageChanged)

public:
    // In the interface language in force when it is made, until told otherwise.
    explicit UiTexts(QObject* parent = nullptr);

    QString lang() const;
    void setLang(const QString& lang);
    Language current() const { return language_; }

    QString appName() const { return of(TextKey::appName); }
    QString totalPower() const { return of(TextKey::totalPower); }
    QString power() const { return of(TextKey::power); }
    QString cpu() const { return of(TextKey::cpu); }
    QString gpu() const { return of(TextKey::gpu); }
    QString neuralEngine() const { return of(TextKey::neuralEngine); }
    QString ane() const { return of(TextKey::ane); }
    QString memory() const { return of(TextKey::memory); }
    QString ram() const { return of(TextKey::ram); }
    QString language() const { return of(TextKey::language); }
    QString cat() const { return of(TextKey::cat); }
    QString launchAtLogin() const { return of(TextKey::launchAtLogin); }
    QString updatedEverySecond() const { return of(TextKey::updatedEverySecond); }
    QString quit() const { return of(TextKey::quit); }
    QString showPerProcessUsage() const { return of(TextKey::showPerProcessUsage); }
    QString collecting() const { return of(TextKey::collecting); }
    QString cutPick() const { return of(TextKey::cutPick); }
    QString cutAll() const { return of(TextKey::cutAll); }
    QString cut() const { return of(TextKey::cut); }
    QString keep() const { return of(TextKey::keep); }
    QString cutKeptTip() const { return of(TextKey::cutKeptTip); }
    QString cutNowTip() const { return of(TextKey::cutNowTip); }
    QString nothingToCleanUp() const { return of(TextKey::nothingToCleanUp); }
    QString judgedByAI() const { return of(TextKey::judgedByAI); }
    QString aiNotesOff() const { return of(TextKey::aiNotesOff); }
    QString onDevice() const { return of(TextKey::onDevice); }
    QString seeHowItDecides() const { return of(TextKey::seeHowItDecides); }
    QString howItPicks() const { return of(TextKey::howItPicks); }
    QString aiIsThinking() const { return of(TextKey::aiIsThinking); }
    QString sensitivity() const { return of(TextKey::sensitivity); }
    QString lax() const { return of(TextKey::lax); }
    QString keen() const { return of(TextKey::keen); }
    QStringList languageChoices() const;
    QStringList catLabels() const;
    QVariantList criteriaItems() const;
    // "Cut — Cut now": what assistive technologies are told of a control with a tooltip.
    Q_INVOKABLE QString withTip(const QString& name, const QString& tip) const;
    // "Cut pick 3".
    Q_INVOKABLE QString withCount(const QString& name, int count) const;

signals:
    void languageChanged();

private:
    QString of(TextKey key) const;

    Language language_ = Language::english;
};

} // namespace quelmo
