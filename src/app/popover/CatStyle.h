#pragma once

#include "core/texts/Language.h"

#include <QColor>
#include <QList>
#include <QString>
#include <optional>

namespace quelmo {

// The four colourings of the cat in the logo and the mascot, in the order of the footer's
// swatches. Stored as its raw value under "quelmo.catStyle". A stored text that is none of the
// four draws like `white`.
class CatStyle {
public:
    enum Value { white, gray, cheese, black };

    constexpr CatStyle(Value value = white) : value_(value) {}

    static std::optional<CatStyle> fromRaw(const QString& raw);
    // The style to draw for any stored text: unknown text draws as `white`.
    static CatStyle forStored(const QString& raw) { return fromRaw(raw).value_or(white); }
    static QList<CatStyle> allCases();

    constexpr Value value() const { return value_; }
    QString rawValue() const;
    // "흰둥이"/"White", "회색이"/"Grey", "치즈"/"Cheese", "까망이"/"Black".
    QString label(Language language) const;
    QColor fur() const;
    QColor eyeColor() const;
    QColor innerEar() const;
    // The line around every part of the figure.
    QColor outline() const;
    // Tabby stripes, drawn only for `cheese` (also the marks on its swatch).
    constexpr bool striped() const { return value_ == cheese; }
    static QColor stripes();
    // Only the grey swatch carries dots.
    constexpr bool dotted() const { return value_ == gray; }
    // The dots on the grey swatch.
    static QColor grayMarks();

    friend constexpr bool operator==(CatStyle, CatStyle) = default;

private:
    Value value_;
};

} // namespace quelmo
