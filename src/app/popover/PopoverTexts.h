#pragma once

#include <QString>

// The popover's own words in both of its languages. Each text is picked when it is drawn, from the
// effective language ("ko" or "en"); an unknown key gives an empty text.
namespace quelmo::PopoverTexts {

QString text(const QString& key, const QString& lang);

// The language picker's label for a stored choice ("auto", "ko", "en"): "System" follows the
// effective language ("시스템" in Korean).
QString languageChoiceLabel(const QString& raw, const QString& lang);

} // namespace quelmo::PopoverTexts
