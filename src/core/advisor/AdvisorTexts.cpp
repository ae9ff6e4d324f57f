#include "core/advisor/AdvisorTexts.h"

#include "core/texts/Texts.h"

#include <cmath>

namespace quelmo {

namespace {

// "Last seen 2h 5m ago" and its kin: how long ago the app was last in front.
QString signalText(std::optional<double> idleMinutes, Language language) {
    if (!idleMinutes)
        return text(TextKey::neverBroughtToFront, language);
    const double x = *idleMinutes;
    if (x >= 60.0) {
        // The remainder keeps the sign of x (truncating division) and is taken before truncation.
        return textWith(TextKey::lastSeenHoursAgo, language, wholeNumber(x / 60.0),
                        wholeNumber(std::fmod(x, 60.0)));
    }
    return textWith(TextKey::lastSeenMinutesAgo, language, wholeNumber(x));
}

} // namespace

QString advisorInstructions(Language language) {
    return text(TextKey::advisorInstructions, language);
}

QString wholeNumber(double value) {
    const double truncated = std::trunc(value);
    // -0.4 truncates to -0, which is written "0"; a value that is not a number is written "0" too.
    if (truncated == 0.0 || std::isnan(truncated))
        return QStringLiteral("0");
    return QString::number(truncated, 'f', 0);
}

QString buildPrompt(const QString& name, double cpu, double rssMB, const QString& reason,
                    std::optional<double> idleMinutes, bool hasWindow, Language language) {
    return textWith(TextKey::advisorPrompt, language, name, signalText(idleMinutes, language),
                    text(hasWindow ? TextKey::windowShown : TextKey::windowNotShown, language),
                    wholeNumber(cpu), wholeNumber(rssMB), reason);
}

} // namespace quelmo
