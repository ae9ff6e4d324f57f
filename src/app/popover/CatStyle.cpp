#include "app/popover/CatStyle.h"

#include "core/texts/Texts.h"

namespace quelmo {

namespace {

QColor rgb(double r, double g, double b, double a = 1) {
    return QColor::fromRgbF(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b),
                            static_cast<float>(a));
}

} // namespace

std::optional<CatStyle> CatStyle::fromRaw(const QString& raw) {
    for (const CatStyle style : allCases())
        if (style.rawValue() == raw)
            return style;
    return std::nullopt;
}

QList<CatStyle> CatStyle::allCases() {
    return {white, gray, cheese, black};
}

QString CatStyle::rawValue() const {
    switch (value_) {
    case white:
        return QStringLiteral("white");
    case gray:
        return QStringLiteral("gray");
    case cheese:
        return QStringLiteral("cheese");
    case black:
        return QStringLiteral("black");
    }
    return {};
}

QString CatStyle::label(Language language) const {
    switch (value_) {
    case white:
        return text(TextKey::catWhite, language);
    case gray:
        return text(TextKey::catGray, language);
    case cheese:
        return text(TextKey::catCheese, language);
    case black:
        return text(TextKey::catBlack, language);
    }
    return {};
}

QColor CatStyle::fur() const {
    switch (value_) {
    case white:
        return rgb(0.975, 0.975, 0.99);
    case gray:
        return rgb(0.63, 0.65, 0.70);
    case cheese:
        return rgb(0.93, 0.73, 0.43);
    case black:
        return rgb(0.26, 0.27, 0.33);
    }
    return {};
}

QColor CatStyle::eyeColor() const {
    switch (value_) {
    case white:
    case gray:
        return rgb(0.36, 0.59, 0.88);
    case cheese:
        return rgb(0.20, 0.21, 0.27);
    case black:
        return rgb(0.97, 0.92, 0.66);
    }
    return {};
}

QColor CatStyle::innerEar() const {
    return value_ == black ? rgb(0.80, 0.54, 0.58) : rgb(0.97, 0.76, 0.79);
}

QColor CatStyle::outline() const {
    switch (value_) {
    case gray:
        return rgb(0, 0, 0, 0.16);
    case black:
        return rgb(1, 1, 1, 0.18);
    case white:
    case cheese:
        break;
    }
    return rgb(0, 0, 0, 0.13);
}

QColor CatStyle::stripes() {
    return rgb(0.80, 0.53, 0.22);
}

QColor CatStyle::grayMarks() {
    return rgb(0.36, 0.59, 0.88);
}

} // namespace quelmo
