#include "app/popover/PopoverRulesObject.h"

#include "app/popover/CatStyle.h"
#include "app/popover/PopoverRules.h"
#include "app/popover/SymbolImageProvider.h"
#include "core/texts/Percent.h"

namespace quelmo {

QString PopoverRulesObject::pct(double fraction) {
    return PopoverRules::pct(fraction);
}

QString PopoverRulesObject::mem(double bytes) {
    return PopoverRules::mem(bytes);
}

QString PopoverRulesObject::memDetail(double usedBytes, double totalBytes) {
    return PopoverRules::memDetail(usedBytes, totalBytes);
}

QString PopoverRulesObject::fixed(double value, int decimals) {
    return PopoverRules::fixed(value, decimals);
}

QString PopoverRulesObject::watts(double value, int decimals) {
    return PopoverRules::fixed(value, decimals) + QStringLiteral(" W");
}

double PopoverRulesObject::popoverHeight(double contentHeight, double maxHeight) {
    return PopoverRules::popoverHeight(contentHeight, maxHeight);
}

double PopoverRulesObject::barFillWidth(double trackWidth, double value) {
    return PopoverRules::barFillWidth(trackWidth, value);
}

double PopoverRulesObject::coreSpacing(int cores, double width) {
    return PopoverRules::coreSpacing(cores, width);
}

int PopoverRulesObject::coreColumns(int cores, double width) {
    return PopoverRules::coreColumns(cores, width);
}

double PopoverRulesObject::coreFillScale(double load) {
    return PopoverRules::coreFillScale(load);
}

double PopoverRulesObject::processFillWidth(double trackWidth, double value, double maxValue) {
    return PopoverRules::processFillWidth(trackWidth, value, maxValue);
}

QString PopoverRulesObject::processValueText(const QString& kind, double cpu, double rss) {
    if (kind == QLatin1String("cpu"))
        return percentText(cpu);
    return PopoverRules::mem(rss);
}

QStringList PopoverRulesObject::toggled(const QStringList& expanded, const QString& section) {
    return PopoverRules::toggled(expanded, section);
}

QStringList PopoverRulesObject::catStyles() {
    QStringList raws;
    for (const CatStyle style : CatStyle::allCases())
        raws.append(style.rawValue());
    return raws;
}

QColor PopoverRulesObject::catFur(const QString& raw) {
    return CatStyle::forStored(raw).fur();
}

QColor PopoverRulesObject::catEyes(const QString& raw) {
    return CatStyle::forStored(raw).eyeColor();
}

QColor PopoverRulesObject::catOutline(const QString& raw) {
    return CatStyle::forStored(raw).outline();
}

QColor PopoverRulesObject::catInnerEar(const QString& raw) {
    return CatStyle::forStored(raw).innerEar();
}

bool PopoverRulesObject::catStriped(const QString& raw) {
    return CatStyle::forStored(raw).striped();
}

bool PopoverRulesObject::catDotted(const QString& raw) {
    return CatStyle::forStored(raw).dotted();
}

QColor PopoverRulesObject::catStripes() {
    return CatStyle::stripes();
}

QColor PopoverRulesObject::grayMarks() {
    return CatStyle::grayMarks();
}

QString PopoverRulesObject::symbol(const QString& name, const QColor& color,
                                   const QColor& gradientTo) {
    return SymbolImageProvider::url(name, color, gradientTo);
}

QString PopoverRulesObject::symbolAcross(const QString& name, const QList<QColor>& colours) {
    return SymbolImageProvider::urlAcross(name, colours);
}

} // namespace quelmo
