#pragma once

// Typed access to the text settings. A value that is absent, or that is not text (a hand-edited
// or damaged file), reads as the key's default; reading never rewrites what is stored.

#include <QString>

namespace quelmo::Preferences {

// The raw interface-language choice under "quelmo.lang"; "auto" when absent or not text. An
// unknown text is returned as it is: AppLang decides what it means.
QString langRaw();
void setLangRaw(const QString& raw);

// The raw cat style under "quelmo.catStyle"; "white" when absent or not text.
QString catStyleRaw();
void setCatStyleRaw(const QString& raw);

// The model the user asked the advisor to use, under "quelmo.advisor.model"; empty when absent
// or not text. The program never writes it.
QString advisorModel();

} // namespace quelmo::Preferences
