#include "app/popover/PopoverRulesObject.h"

#include "app/popover/CatStyle.h"
#include "app/popover/PopoverRules.h"
#include "app/popover/SymbolImageProvider.h"
#include "core/texts/Percent.h"

#include <QPainterPath>

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

QVariantList PopoverRulesObject::powerShares(double cpu, double gpu, double ane, double dram) {
    QVariantList shares;
    for (double share : PopoverRules::powerShares(cpu, gpu, ane, dram))
        shares.append(share);
    return shares;
}

QString PopoverRulesObject::capsuleSegmentPath(double from, double to, double width,
                                               double height) {
    if (!(to > from) || !(width > 0) || !(height > 0))
        return {};
    QPainterPath capsule;
    capsule.addRoundedRect(QRectF(0, 0, width, height), height / 2, height / 2);
    QPainterPath segment;
    segment.addRect(QRectF(from, 0, to - from, height));
    const QPainterPath part = capsule.intersected(segment);

    QString svg;
    for (int i = 0; i < part.elementCount(); ++i) {
        const QPainterPath::Element e = part.elementAt(i);
        switch (e.type) {
        case QPainterPath::MoveToElement:
            svg += QString::asprintf("M%.3f %.3f ", e.x, e.y);
            break;
        case QPainterPath::LineToElement:
            svg += QString::asprintf("L%.3f %.3f ", e.x, e.y);
            break;
        case QPainterPath::CurveToElement: {
            const QPainterPath::Element c2 = part.elementAt(i + 1);
            const QPainterPath::Element end = part.elementAt(i + 2);
            svg += QString::asprintf("C%.3f %.3f %.3f %.3f %.3f %.3f ", e.x, e.y, c2.x, c2.y, end.x,
                                     end.y);
            i += 2;
            break;
        }
        case QPainterPath::CurveToDataElement:
            break;
        }
    }
    return svg + QLatin1Char('Z');
}

QString PopoverRulesObject::powerSegmentPath(int index, double cpu, double gpu, double ane,
                                             double dram, double width, double height) {
    const auto shares = PopoverRules::powerShares(cpu, gpu, ane, dram);
    if (index < 0 || index >= static_cast<int>(shares.size()))
        return {};
    double start = 0;
    for (int i = 0; i < index; ++i)
        start += shares[static_cast<std::size_t>(i)] * width;
    const double share = shares[static_cast<std::size_t>(index)];
    return capsuleSegmentPath(start, start + share * width, width, height);
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
