#pragma once

#include "core/advisor/AIAdvisor.h"
#include "core/advisor/AIVerdict.h"
#include "core/cleanup/CleanupCandidate.h"
#include "core/texts/Language.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariantList>
#include <optional>

// The cleanup card's rules: which candidates a bulk cut takes, the colours and words of a row,
// the idle line, the footer, and how far the mascot travels for a cut. Pure functions of their
// arguments; callers choose the language when they produce the text.
namespace quelmo::cleanup_rules {

using Verdicts = QHash<QString, AIVerdict>;

// The verdict stored under the candidate's key, if any.
std::optional<AIVerdict> verdictOf(const CleanupCandidate& c, const Verdicts& verdicts);
// The advisor asked for this candidate to be kept.
bool isKeep(const std::optional<AIVerdict>& verdict);
bool isKeep(const CleanupCandidate& c, const Verdicts& verdicts);
// The candidates a bulk cut takes, in list order: every one the advisor did not ask to keep.
QList<CleanupCandidate> cutTargets(const QList<CleanupCandidate>& candidates,
                                   const Verdicts& verdicts);
// "Cut all" is offered from this many targets on.
inline constexpr qsizetype cutAllMinimum = 2;

// Colour names ("gray", "sage", "rose", "peach", "lav", "blue", "pink"), as the views
// look them up. A reason's colour and symbol are in its `infoOf`.
QString statusColor(const std::optional<AIVerdict>& verdict);
QString riskColor(const QString& risk);
// The verdict's badge: the keep badge's colour when kept, else the risk's.
QString badgeColor(const std::optional<AIVerdict>& verdict);
QString riskLabel(const QString& risk, Language language);

// How long ago, from whole minutes: "5m ago", "2h ago", "2h 5m ago" (or the Korean forms).
QString idleText(double minutes, Language language);
// The row's idle line: when it was last used, whether it has a window; possibly empty.
QString idleDetail(const CleanupCandidate& c, Language language);

// The footer's status line, from the advisor's status now and the one captured at start.
QString footerText(const AIAdvisor::Status& live, const AIAdvisor::Status& captured,
                   Language language);

// The mascot's journey for a cut. `rowYs` holds the vertical mid-points of the rows (by pid) and
// of the mascot lane (under `laneKey`), in the card's coordinates.
inline constexpr qint64 laneKey = -1;
inline constexpr double laneToRowOffset = 22.0; // the mascot stands this far above the line
inline constexpr double minimumJourney = 6.0;   // shorter trips are not animated
double travelDistance(const QHash<qint64, double>& rowYs, std::optional<qint64> travelTo);
inline bool hasJourney(double distance) {
    return distance > minimumJourney;
}

// A spring of the given response (its period, in seconds) and damping fraction, as the
// parameters of Qt Quick's SpringAnimation (mass 1), which steps its motion every 16 ms.
struct SpringParameters {
    double spring = 0;
    double damping = 0;
};
SpringParameters springFor(double response, double dampingFraction);

// The selection criteria explained: items {symbol, color, title, detail, groupEnd}.
QVariantList criteriaItems(Language language);

} // namespace quelmo::cleanup_rules
